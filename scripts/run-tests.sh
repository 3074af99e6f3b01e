#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite. Extra
# arguments go to ctest (e.g. -L unit, -LE seeded, -R Markup).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
build=${VANTU_BUILD_DIR:-$root/build}
cd "$build"
# The longer seeded sets of damaged sources (label "seeded") run only when
# VANTU_SEEDED is set.
skip=(-LE seeded)
[ -n "${VANTU_SEEDED:-}" ] && skip=()
ctest --output-on-failure -j "$(nproc)" "${skip[@]}" "$@"
