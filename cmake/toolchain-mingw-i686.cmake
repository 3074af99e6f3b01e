# Cross build for i686 Windows with MinGW-w64:
#   cmake -S . -B build-win-i686 -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw-i686.cmake
set(VANTU_WINDOWS_ARCH i686)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw-common.cmake)
