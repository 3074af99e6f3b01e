# Cross build for x86_64 Windows with MinGW-w64:
#   cmake -S . -B build-win-x86_64 -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw-x86_64.cmake
set(VANTU_WINDOWS_ARCH x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw-common.cmake)
