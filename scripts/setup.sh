#!/usr/bin/env bash
# Installs the Debian packages the project needs, when any is missing, and
# configures and builds the tree in build/ (or $VANTU_BUILD_DIR).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

packages=(cmake g++ make pkg-config libsqlcipher-dev sqlcipher libboost-dev
          nlohmann-json3-dev libssl-dev libgtest-dev libbenchmark-dev libutfcpp-dev
          libhivex-dev libhivex-bin clang-format)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing missing packages: ${missing[*]}"
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  $sudo apt-get update
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y "${missing[@]}"
fi

build=${VANTU_BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo ${VANTU_CMAKE_ARGS:-} >/dev/null
cmake --build "$build" -j "$(nproc)"
