# Shared by the MinGW-w64 toolchain files: VANTU_WINDOWS_ARCH (x86_64 or
# i686) is set by the file that includes this one.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${VANTU_WINDOWS_ARCH})

# The posix-thread flavour of the compiler: std::thread and std::mutex need it.
set(triple ${VANTU_WINDOWS_ARCH}-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

# The libraries scripts/setup-windows.sh builds: SQLCipher with libtomcrypt,
# GoogleTest, and a folder showing the header-only Debian libraries.
if(NOT VANTU_WINDOWS_CACHE)
  if(DEFINED ENV{VANTU_WINDOWS_CACHE})
    set(VANTU_WINDOWS_CACHE $ENV{VANTU_WINDOWS_CACHE})
  elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(VANTU_WINDOWS_CACHE $ENV{XDG_CACHE_HOME}/vantu-windows)
  else()
    set(VANTU_WINDOWS_CACHE $ENV{HOME}/.cache/vantu-windows)
  endif()
endif()
set(VANTU_WINDOWS_DEPS ${VANTU_WINDOWS_CACHE}/${VANTU_WINDOWS_ARCH} CACHE PATH
    "Libraries built for this architecture by scripts/setup-windows.sh")

set(CMAKE_FIND_ROOT_PATH /usr/${triple} ${VANTU_WINDOWS_DEPS})
file(GLOB gtest_dirs ${VANTU_WINDOWS_DEPS}/googletest-*)
list(APPEND CMAKE_FIND_ROOT_PATH ${gtest_dirs})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Test programs run under Wine, in the prefix the caller sets (WINEPREFIX).
if(VANTU_WINDOWS_ARCH STREQUAL "x86_64")
  find_program(VANTU_WINE NAMES wine64 PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
else()
  find_program(VANTU_WINE NAMES wine NO_CMAKE_FIND_ROOT_PATH)
endif()
if(VANTU_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${VANTU_WINE})
endif()
