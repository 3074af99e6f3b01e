#!/usr/bin/env bash
# Builds the Windows test programs for x86_64 and runs the suite under Wine in
# a fresh prefix in a temporary folder (removed afterwards). Extra arguments
# go to ctest (e.g. -L unit, -R Markup).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
VANTU_WINDOWS_TESTS=1 "$root/scripts/build-windows.sh" x86_64
build=${VANTU_WINDOWS_BUILD_DIR:-$root/build-win}-x86_64

export WINEPREFIX
WINEPREFIX=$(mktemp -d "${TMPDIR:-/tmp}/vantu-wine-XXXXXX")
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver64)
cleanup() {
  "$wineserver" -k 2>/dev/null || true
  rm -rf "$WINEPREFIX"
}
trap cleanup EXIT
# The prefix is made, and Wine's background services started, before the
# tests: a service started by a test would keep that test's output pipe
# open. The server stays up between the tests' processes.
"$wineserver" -p
/usr/lib/wine/wine64 wineboot -i >/dev/null 2>&1 </dev/null
cd "$build"
ctest --output-on-failure -j "$(nproc)" "$@"

# The host as a user runs it: its demo's verdict line, which the Linux build
# (when built in build/) must print the same.
verdict=$(/usr/lib/wine/wine64 "$build/vantu-import.exe" --demo </dev/null | tr -d '\r' | grep '^Imported ')
echo "Windows demo: $verdict"
if [ -x "$root/build/vantu-import" ]; then
  linux=$("$root/build/vantu-import" --demo </dev/null | grep '^Imported ')
  if [ "$verdict" != "$linux" ]; then
    echo "The Linux build's demo says otherwise: $linux" >&2
    exit 1
  fi
  echo "Same verdict as the Linux build"
fi
