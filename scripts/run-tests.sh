#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
build=${VANTU_BUILD_DIR:-$root/build}
cd "$build"
ctest --output-on-failure -j "$(nproc)"
