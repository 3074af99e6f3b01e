# The Windows build's dependencies, from the folder scripts/setup-windows.sh
# fills (VANTU_WINDOWS_DEPS, set by the toolchain file). They are given the
# names the Linux build's packages give them, so the folders' CMake files
# are the same for both builds.
if(NOT VANTU_WINDOWS_DEPS)
  message(FATAL_ERROR "Configure the Windows build with cmake/toolchain-mingw-<arch>.cmake "
                      "after scripts/setup-windows.sh")
endif()
file(GLOB engine_dir ${VANTU_WINDOWS_DEPS}/sqlcipher-*-tomcrypt-*)
if(NOT engine_dir OR NOT EXISTS ${engine_dir}/lib/libsqlcipher.a)
  message(FATAL_ERROR "No SQLCipher in ${VANTU_WINDOWS_DEPS}: run scripts/setup-windows.sh")
endif()

# SQLCipher, whose cipher is libtomcrypt's (both static).
add_library(PkgConfig::SQLCIPHER STATIC IMPORTED)
set_target_properties(PkgConfig::SQLCIPHER PROPERTIES
    IMPORTED_LOCATION ${engine_dir}/lib/libsqlcipher.a
    INTERFACE_INCLUDE_DIRECTORIES ${engine_dir}/include/sqlcipher
    INTERFACE_COMPILE_DEFINITIONS SQLITE_HAS_CODEC
    INTERFACE_LINK_LIBRARIES ${engine_dir}/lib/libtomcrypt.a)

# The header-only libraries, from their Debian packages.
foreach(name utf8cpp Boost::boost nlohmann_json::nlohmann_json)
  add_library(${name} INTERFACE IMPORTED)
  set_target_properties(${name} PROPERTIES
      INTERFACE_INCLUDE_DIRECTORIES ${VANTU_WINDOWS_DEPS}/headers)
endforeach()
set_property(TARGET utf8cpp APPEND PROPERTY
    INTERFACE_INCLUDE_DIRECTORIES ${VANTU_WINDOWS_DEPS}/headers/utf8cpp)

# The system libraries the Windows layer calls into.
add_library(vantu_platform INTERFACE)
target_link_libraries(vantu_platform INTERFACE
    advapi32 shell32 ole32 uuid bcrypt version dbghelp psapi shlwapi)

# UTF-16 wide calls throughout; no min/max macros.
add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601)

# Nothing ships beside the library: the C and C++ runtimes and winpthread are
# linked in.
add_link_options(-static-libgcc -static-libstdc++ -static)
