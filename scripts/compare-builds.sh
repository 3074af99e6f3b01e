#!/usr/bin/env bash
# Both builds give the same answers: imports each sample profile (the
# generation-6, generation-7, re-import and version-2 demos) with the Linux
# host and with the Windows host under Wine, then compares what each wrote:
# both target databases, every table, row and column (the sqlcipher tool's
# dump with the importer's key), the "Settings" section of Vantu.ini value by
# value, and the settings file's encoding mark. Then each build runs the
# upgrade of the version-3 databases on the other build's profile: each
# engine opens the other's encrypted files with the key.
#
#   scripts/compare-builds.sh [linux build folder] [windows build folder]
#
# Defaults: build/ and build-win-x86_64/. Wine runs in the prefix of
# $WINEPREFIX when set (scripts/run-windows-tests.sh sets one), otherwise in a
# fresh one in a temporary folder.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
linux=${1:-$root/build}/vantu-import
windows=${2:-$root/build-win-x86_64}/vantu-import.exe
key=3C5A0F1E9D2B47A6B8E1C4D7F0A29B63
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
for program in "$linux" "$windows"; do
  [ -e "$program" ] || { echo "compare-builds: no $program; build both first" >&2; exit 2; }
done
work=$(mktemp -d "${TMPDIR:-/tmp}/vantu-compare-XXXXXX")
own_prefix=false
if [ -z "${WINEPREFIX:-}" ]; then
  export WINEPREFIX=$work/wine WINEDEBUG=-all
  own_prefix=true
fi
cleanup() {
  if $own_prefix; then (wineserver -k || true) 2>/dev/null; fi
  rm -rf "$work"
}
trap cleanup EXIT

# What a run left in data folder $1, in a form to compare: the databases'
# dumps, the settings file's first two bytes and its Settings section.
describe() {
  local folder=$1 db
  for db in VTMusicV3.db playlistV3.db; do
    echo "== $db"
    if [ -f "$folder/$db" ]; then
      printf "PRAGMA key = '%s';\n.dump\n" "$key" | sqlcipher "$folder/$db" 2>&1
    else
      echo "(missing)"
    fi
  done
  local ini
  ini=$(find "$folder" -maxdepth 1 -iname vantu.ini | head -1)
  echo "== Vantu.ini"
  if [ -z "$ini" ]; then echo "(missing)"; return; fi
  echo "mark: $(head -c 2 "$ini" | od -An -tx1 | tr -d ' ')"
  local text
  if [ "$(head -c 2 "$ini" | od -An -tx1 | tr -d ' ')" = "fffe" ]; then
    text=$(iconv -f UTF-16 -t UTF-8 "$ini")
  else
    text=$(cat "$ini")
  fi
  # The Settings section, one "key=value" a line, in key order.
  printf '%s\n' "$text" | tr -d '\r' | awk '
    /^[ \t]*\[/ { inside = (tolower($0) ~ /^[ \t]*\[settings\]/); next }
    inside && /=/ { print }' | sort
}

status=0
for demo in 6 7 v1 v2; do
  linux_out=$("$linux" --demo=$demo --keep </dev/null 2>&1) || true
  linux_folder=$(printf '%s\n' "$linux_out" | sed -n 's/^Data folder: *//p' | head -1)
  windows_out=$("$wine" "$windows" --demo=$demo --keep </dev/null 2>&1 | tr -d '\r') || true
  windows_folder=$(printf '%s\n' "$windows_out" | sed -n 's/^Data folder: *//p' | head -1)
  if [ -z "$linux_folder" ] || [ -z "$windows_folder" ]; then
    echo "demo $demo: a build did not say where it wrote" >&2
    printf 'Linux:\n%s\nWindows:\n%s\n' "$linux_out" "$windows_out" >&2
    status=1
    continue
  fi
  windows_folder=$(winepath -u "$windows_folder" 2>/dev/null)
  describe "$linux_folder" >"$work/linux-$demo.txt"
  describe "$windows_folder" >"$work/windows-$demo.txt"
  if diff -u "$work/linux-$demo.txt" "$work/windows-$demo.txt" >"$work/diff-$demo.txt"; then
    echo "demo $demo: both builds wrote the same ($(grep -c '^INSERT' "$work/linux-$demo.txt") rows, $(sed -n '/^== Vantu.ini/,$p' "$work/linux-$demo.txt" | grep -c '^[^=]*=') settings)"
  else
    echo "demo $demo: the builds differ:" >&2
    head -60 "$work/diff-$demo.txt" >&2
    status=1
  fi
  # The kept demo profiles (the data folder's grandparent's parent).
  linux_profile=$(dirname "$(dirname "$(dirname "$linux_folder")")")
  windows_profile=$(dirname "$(dirname "$(dirname "$windows_folder")")")
  crossed=$("$wine" "$windows" --profile "$(winepath -w "$linux_profile")" </dev/null 2>&1 |
            tr -d '\r') || true
  if ! grep -q '^Ran the upgrade' <<<"$crossed"; then
    echo "demo $demo: the Windows build could not upgrade the Linux build's files:" >&2
    printf '%s\n' "$crossed" >&2
    status=1
  fi
  crossed=$("$linux" --profile "$windows_profile" </dev/null 2>&1) || true
  if ! grep -q '^Ran the upgrade' <<<"$crossed"; then
    echo "demo $demo: the Linux build could not upgrade the Windows build's files:" >&2
    printf '%s\n' "$crossed" >&2
    status=1
  fi
  rm -rf "$linux_profile" "$windows_profile"
done
exit $status
