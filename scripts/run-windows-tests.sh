#!/usr/bin/env bash
# Builds the Windows test programs for x86_64 and runs the whole suite under
# Wine, with WINEDEBUG=-all, in fresh prefixes in a temporary folder (removed
# afterwards): the tests that take the player's own path (the shell's folders
# and HKEY_CURRENT_USER, label "player-path") one at a time in a prefix of
# their own, the others side by side in another (the long seeded sets of
# damaged sources, label "seeded", are left to the Linux passes). Then the host's demo under
# Wine must print the Linux build's verdict, and scripts/compare-builds.sh
# compares what both builds write (when build/ holds the Linux build).
# Extra arguments go to ctest (e.g. -L unit, -R Markup).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
VANTU_WINDOWS_TESTS=1 "$root/scripts/build-windows.sh" x86_64
build=${VANTU_WINDOWS_BUILD_DIR:-$root/build-win}-x86_64

export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver64)
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
prefixes=()
cleanup() {
  for p in "${prefixes[@]}"; do
    WINEPREFIX=$p "$wineserver" -k 2>/dev/null || true
    rm -rf "$p"
  done
}
trap cleanup EXIT
# A fresh prefix, made and its background services started before any test:
# a service started by a test would keep that test's output pipe open. The
# server stays up between the tests' processes.
new_prefix() {
  WINEPREFIX=$(mktemp -d "${TMPDIR:-/tmp}/vantu-wine-XXXXXX")
  export WINEPREFIX
  prefixes+=("$WINEPREFIX")
  "$wineserver" -p
  "$wine" wineboot -i >/dev/null 2>&1 </dev/null
}

cd "$build"
status=0
new_prefix
ctest --output-on-failure -j "$(nproc)" -LE "player-path|seeded" "$@" || status=1
new_prefix
ctest --output-on-failure -j 1 -L player-path "$@" || status=1

# The host as a user runs it: its demo's verdict line, which the Linux build
# (when built in build/) must print the same.
verdict=$("$wine" "$build/vantu-import.exe" --demo </dev/null | tr -d '\r' | grep '^Imported ')
echo "Windows demo: $verdict"
if [ -x "$root/build/vantu-import" ]; then
  linux=$("$root/build/vantu-import" --demo </dev/null | grep '^Imported ')
  if [ "$verdict" != "$linux" ]; then
    echo "The Linux build's demo says otherwise: $linux" >&2
    status=1
  else
    echo "Same verdict as the Linux build"
  fi
  "$root/scripts/compare-builds.sh" "$root/build" "$build" || status=1
fi
exit $status
