#!/usr/bin/env bash
# Prepares this Debian machine for the Windows build: installs the MinGW-w64
# cross compiler, Wine and the tools below when missing, then builds for each
# architecture (x86_64 and i686, or those given as arguments) the libraries
# the Windows build links statically:
#   - SQLCipher, from Debian's own source package of the version the Linux
#     build links, as one amalgamation using libtomcrypt for its cipher;
#   - libtomcrypt, from Debian's source package, with its own makefile;
#   - GoogleTest, from the sources Debian's googletest package ships.
# Everything goes to a cache outside the tree,
#   ${VANTU_WINDOWS_CACHE:-${XDG_CACHE_HOME:-~/.cache}/vantu-windows}/<arch>/
# in folders named by version; a second run finds them and does nothing.
# Prints nothing but progress; fails on the first error.
set -euo pipefail

archs=("$@")
[ ${#archs[@]} -eq 0 ] && archs=(x86_64 i686)
cache=${VANTU_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/vantu-windows}
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"

packages=(mingw-w64 g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix
          gcc-mingw-w64-x86-64-posix gcc-mingw-w64-i686-posix
          wine wine64 tcl dpkg-dev googletest cmake make
          libboost-dev nlohmann-json3-dev libutfcpp-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
updated=false
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing missing packages: ${missing[*]}"
  $sudo apt-get update
  updated=true
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
fi

# The source version of SQLCipher the Linux build links (the Windows build
# must write the same format); falls back to the candidate of the archive.
package_version() {
  local v
  v=$(dpkg-query -W -f='${source:Version}' "$1" 2>/dev/null || true)
  [ -n "$v" ] || v=$(apt-cache policy "$1" | awk '/Candidate:/ {print $2}')
  echo "$v"
}
sqlcipher_version=$(package_version libsqlcipher-dev)
tomcrypt_version=$(package_version libtomcrypt-dev)
gtest_version=$(package_version googletest)
if [ -z "$sqlcipher_version" ] || [ "$sqlcipher_version" = "(none)" ]; then
  $updated || { $sudo apt-get update; updated=true; }
  sqlcipher_version=$(package_version libsqlcipher-dev)
  tomcrypt_version=$(package_version libtomcrypt-dev)
fi
upstream() { local v=${1#*:}; echo "${v%-*}"; }

all_built=true
for arch in "${archs[@]}"; do
  [ -f "$cache/$arch/sqlcipher-$(upstream "$sqlcipher_version")-tomcrypt-$(upstream "$tomcrypt_version")/done" ] || all_built=false
  [ -f "$cache/$arch/googletest-$(upstream "$gtest_version")/done" ] || all_built=false
done
if $all_built; then
  echo "Windows libraries up to date in $cache"
  exit 0
fi

# apt-get source needs deb-src entries. They repeat the URIs and suites of
# the machine's Debian binary sources, in a file of their own, in deb822 form
# (read from .sources files) or one-line form (from sources.list files).
ensure_source_entries() {
  if apt-get indextargets 2>/dev/null | grep -q '^Created-By: Sources'; then
    return
  fi
  local entries
  entries=$(
    for f in /etc/apt/sources.list.d/*.sources; do
      [ -f "$f" ] || continue
      # One stanza per blank-line-separated block; keep those of type deb.
      awk 'BEGIN { RS=""; FS="\n" }
           {
             types=""; uris=""; suites=""; comps=""; signed="";
             for (i = 1; i <= NF; i++) {
               if ($i ~ /^#/) continue;
               split($i, kv, ":"); key=kv[1]; value=substr($i, length(key) + 2);
               gsub(/^[ \t]+|[ \t]+$/, "", value);
               if (key == "Types") types=value;
               else if (key == "URIs") uris=value;
               else if (key == "Suites") suites=value;
               else if (key == "Components") comps=value;
               else if (key == "Signed-By") signed=value;
             }
             if (types ~ /(^| )deb( |$)/ && uris != "") {
               printf "Types: deb-src\nURIs: %s\nSuites: %s\nComponents: %s\n", uris, suites, comps;
               if (signed != "") printf "Signed-By: %s\n", signed;
               printf "\n";
             }
           }' "$f"
    done
    for f in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
      [ -f "$f" ] || continue
      # "deb [options] URI suite components..." -> one stanza each.
      awk '$1 == "deb" {
             i = 2; signed = "";
             if ($2 ~ /^\[/) {
               while (i <= NF) {
                 if ($i ~ /^\[?signed-by=/) { signed = $i; sub(/^\[?signed-by=/, "", signed); sub(/\]$/, "", signed) }
                 if ($i ~ /\]$/) { i++; break }
                 i++;
               }
             }
             uri = $i; suite = $(i + 1); comps = "";
             for (j = i + 2; j <= NF; j++) comps = comps (comps == "" ? "" : " ") $j;
             printf "Types: deb-src\nURIs: %s\nSuites: %s\nComponents: %s\n", uri, suite, comps;
             if (signed != "") printf "Signed-By: %s\n", signed;
             printf "\n";
           }' "$f"
    done)
  if [ -z "$entries" ]; then
    echo "No Debian binary source entry found to repeat as deb-src" >&2
    exit 1
  fi
  echo "Adding deb-src entries in /etc/apt/sources.list.d/vantu-deb-src.sources"
  printf '%s\n' "$entries" | $sudo tee /etc/apt/sources.list.d/vantu-deb-src.sources >/dev/null
  $sudo apt-get update
}

sources="$cache/sources"
fetch_sources() {
  local dir="$sources/sqlcipher-$(upstream "$sqlcipher_version")"
  if [ -f "$sources/fetched-$sqlcipher_version-$tomcrypt_version" ]; then
    return
  fi
  ensure_source_entries
  rm -rf "$sources"
  mkdir -p "$sources"
  (cd "$sources" && apt-get source "sqlcipher=$sqlcipher_version" libtomcrypt >/dev/null 2>&1) || {
    echo "apt-get source sqlcipher libtomcrypt failed" >&2
    exit 1
  }
  [ -d "$dir" ] || { echo "apt-get source gave no $dir" >&2; exit 1; }
  local tomcrypt_dir
  tomcrypt_dir=$(ls -d "$sources"/libtomcrypt-*/ | head -n1)
  ln -sfn "$tomcrypt_dir" "$sources/libtomcrypt"
  touch "$sources/fetched-$sqlcipher_version-$tomcrypt_version"
}

# The amalgamation is made once on the build machine (it is plain C and the
# same for every target): ./configure, then make sqlite3.c.
amalgamation() {
  local tree="$sources/sqlcipher-$(upstream "$sqlcipher_version")"
  if [ ! -f "$tree/sqlite3.c" ]; then
    echo "Making the SQLCipher amalgamation" >&2
    (cd "$tree" && ./configure --disable-tcl >/dev/null 2>&1 && make sqlite3.c >/dev/null 2>&1)
  fi
  echo "$tree"
}

build_engine() {
  local arch=$1
  local out="$cache/$arch/sqlcipher-$(upstream "$sqlcipher_version")-tomcrypt-$(upstream "$tomcrypt_version")"
  [ -f "$out/done" ] && return
  fetch_sources
  local tree
  tree=$(amalgamation)
  local tomcrypt_src="$sources/libtomcrypt/"
  local cc="$arch-w64-mingw32-gcc-posix"
  echo "Building libtomcrypt and SQLCipher for $arch"
  rm -rf "$out" && mkdir -p "$out/lib" "$out/include" "$out/build"
  cp -r "$tomcrypt_src" "$out/build/tomcrypt"
  make -C "$out/build/tomcrypt" -f makefile -j"$(nproc)" \
       CC="$cc" AR="$arch-w64-mingw32-ar" RANLIB="$arch-w64-mingw32-ranlib" \
       CFLAGS="-O2" library >/dev/null 2>&1
  cp "$out/build/tomcrypt/libtomcrypt.a" "$out/lib/"
  cp "$out/build/tomcrypt/src/headers/"*.h "$out/include/"
  "$cc" -O2 -c "$tree/sqlite3.c" -o "$out/build/sqlite3.o" -I"$out/include" \
        -DSQLITE_HAS_CODEC -DSQLCIPHER_CRYPTO_LIBTOMCRYPT -DSQLITE_TEMP_STORE=2 \
        -DSQLITE_THREADSAFE=1 -DSQLITE_OMIT_LOAD_EXTENSION
  "$arch-w64-mingw32-ar" rcs "$out/lib/libsqlcipher.a" "$out/build/sqlite3.o"
  mkdir -p "$out/include/sqlcipher"
  cp "$tree/sqlite3.h" "$out/include/sqlcipher/"
  rm -rf "$out/build"
  touch "$out/done"
}

build_gtest() {
  local arch=$1
  local out="$cache/$arch/googletest-$(upstream "$gtest_version")"
  [ -f "$out/done" ] && return
  echo "Building GoogleTest for $arch"
  rm -rf "$out" && mkdir -p "$out"
  cmake -S /usr/src/googletest -B "$out/build" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_SYSTEM_PROCESSOR="$arch" \
        -DCMAKE_C_COMPILER="$arch-w64-mingw32-gcc-posix" \
        -DCMAKE_CXX_COMPILER="$arch-w64-mingw32-g++-posix" \
        -DCMAKE_RC_COMPILER="$arch-w64-mingw32-windres" \
        -DCMAKE_INSTALL_PREFIX="$out" -DBUILD_GMOCK=ON -DINSTALL_GTEST=ON \
        -Dgtest_force_shared_crt=OFF >/dev/null
  cmake --build "$out/build" -j"$(nproc)" >/dev/null
  cmake --install "$out/build" >/dev/null
  rm -rf "$out/build"
  touch "$out/done"
}

for arch in "${archs[@]}"; do
  build_engine "$arch"
  build_gtest "$arch"
  # The header-only libraries come from their Debian packages, seen through
  # a folder of their own so that no other header of /usr/include is.
  mkdir -p "$cache/$arch/headers"
  for h in boost nlohmann utf8cpp; do
    ln -sfn "/usr/include/$h" "$cache/$arch/headers/$h"
  done
done
echo "Windows libraries ready in $cache"
