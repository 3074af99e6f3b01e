#!/usr/bin/env bash
# Installs a build into a temporary prefix and uses it as a user would:
# compiles and links a small program against the installed header and
# library through pkg-config, runs it on an empty profile, and runs the
# installed host program. Answers 0 when everything works.
#   scripts/check-install.sh BUILD_DIR [C++ compiler [extra compiler flags...]]
set -euo pipefail
build=$1
cxx=${2:-c++}
shift $(( $# < 2 ? $# : 2 ))
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

fail() { echo "check-install: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" >/dev/null
pc_dir=$(dirname "$(find "$prefix" -name vantu-data-importer.pc -print -quit)")
[ -n "$pc_dir" ] || fail "no vantu-data-importer.pc installed"
export PKG_CONFIG_PATH=$pc_dir
libdir=$(pkg-config --variable=libdir vantu-data-importer)

# The library exports the entry point and nothing else.
exports=$(nm -D --defined-only "$libdir/libdata_importer.so" | awk '$2 ~ /^[TDBRVW]$/ {print $3}')
[ "$exports" = "DataImporterMain" ] || fail "library exports: $exports"

cat >"$work/user.cc" <<'CC'
#include <vantu/data_importer_main.h>

int main() {
  DataImporterMain();
  return 0;
}
CC
# shellcheck disable=SC2046  # pkg-config's flags are meant to be split
"$cxx" "$@" "$work/user.cc" -o "$work/user" $(pkg-config --cflags --libs vantu-data-importer) \
    -Wl,-rpath,"$libdir"

# An empty profile: the run finds nothing to import and records that in the
# data folder.
mkdir -p "$work/home" "$work/local" "$work/roaming"
env -u VANTU_REGISTRY_FILE -u USERPROFILE -u VANTU_LOG_STDERR HOME="$work/home" \
    LOCALAPPDATA="$work/local" APPDATA="$work/roaming" "$work/user"
# (The run makes the file as UTF-16.)
settings=$(iconv -f UTF-16 -t UTF-8 "$work/local/VanTu8/Vantu.ini" | tr -d '\r')
grep -q '^BeforceImportEmpty=-1' <<<"$settings" \
    || fail "the program's run left no DBCheck record"
# A run that imports nothing keeps its report in the history of runs only.
compgen -G "$work/local/VanTu8/reports/*-nothing-1.json" >/dev/null \
    || fail "the program's run left no report"

# The installed host runs on its own (it carries the importer's core).
# Outputs are taken whole before they are matched: "grep -q" stops reading
# at the first match, and under pipefail the writer's broken pipe would fail
# the check now and then.
version=$("$prefix/bin/vantu-import" --version)
grep -q '^vantu-import ' <<<"$version" || fail "vantu-import --version: $version"
echo "check-install: installed library, header, pkg-config file and host work"
