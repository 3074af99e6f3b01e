#!/usr/bin/env bash
# One command for the Windows build: prepares the machine (setup-windows.sh),
# then cross-builds data_importer.dll and vantu-import.exe for x86_64 and
# i686 (or the architectures given as arguments) into build-win-<arch>/
# (or $VANTU_WINDOWS_BUILD_DIR-<arch>) and checks each DLL's exports and
# imports. With VANTU_WINDOWS_TESTS=1 the test programs are built too
# (BUILD_TESTING), ready for scripts/run-windows-tests.sh.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
archs=("$@")
[ ${#archs[@]} -eq 0 ] && archs=(x86_64 i686)

"$root/scripts/setup-windows.sh" "${archs[@]}"

testing=OFF
[ "${VANTU_WINDOWS_TESTS:-0}" = "1" ] && testing=ON
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
for arch in "${archs[@]}"; do
  build=${VANTU_WINDOWS_BUILD_DIR:-$root/build-win}-$arch
  echo "Building for Windows $arch in $build"
  cmake -S "$root" -B "$build" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-mingw-$arch.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DVANTU_BENCHMARK=OFF -DBUILD_TESTING=$testing \
        "${launcher[@]}" >/dev/null
  targets=(--target data_importer vantu-import)
  [ $testing = ON ] && targets=()
  cmake --build "$build" -j "$(nproc)" "${targets[@]}"
  "$root/scripts/check-windows-dll.sh" "$build" "$arch-w64-mingw32-objdump"
done
