#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite. Extra
# arguments go to ctest (e.g. -L unit, -LE seeded, -R Markup).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
build=${VANTU_BUILD_DIR:-$root/build}
cd "$build"
ctest --output-on-failure -j "$(nproc)" "$@"
