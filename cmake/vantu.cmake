# Each folder of the tree is one library. Its sources are the folder's *.cc
# files except tests (*_unittest.cc), test helpers (*_test_util.cc) and the
# Windows implementations (*_win.cc); its tests are the *_unittest.cc files,
# built into one test program per folder.

function(vantu_folder_sources out dir)
  file(GLOB all CONFIGURE_DEPENDS "${dir}/*.cc")
  set(result "")
  foreach(f ${all})
    if(NOT f MATCHES "_unittest\\.cc$" AND NOT f MATCHES "_test_util\\.cc$"
       AND NOT f MATCHES "_win\\.cc$" AND NOT f MATCHES "_fuzzer\\.cc$"
       AND NOT f MATCHES "_benchmark\\.cc$")
      if(WIN32 AND f MATCHES "_posix\\.cc$")
        continue()
      endif()
      list(APPEND result ${f})
    endif()
  endforeach()
  if(WIN32)
    file(GLOB win CONFIGURE_DEPENDS "${dir}/*_win.cc")
    list(APPEND result ${win})
  endif()
  set(${out} ${result} PARENT_SCOPE)
endfunction()

# vantu_library(NAME name DEPS libs...)
function(vantu_library)
  cmake_parse_arguments(A "" "NAME" "DEPS" ${ARGN})
  vantu_folder_sources(srcs ${CMAKE_CURRENT_SOURCE_DIR})
  if(NOT srcs)
    # A folder whose code has not landed yet.
    add_library(${A_NAME} INTERFACE)
    target_link_libraries(${A_NAME} INTERFACE ${A_DEPS})
    return()
  endif()
  add_library(${A_NAME} STATIC ${srcs})
  target_link_libraries(${A_NAME} PUBLIC ${A_DEPS})
endfunction()

# vantu_tests(NAME name DEPS libs...): one test program from the folder's
# *_unittest.cc files. Test helpers (*_test_util.cc) are libraries of their
# own, declared where they live.
function(vantu_tests)
  cmake_parse_arguments(A "" "NAME" "DEPS" ${ARGN})
  file(GLOB tests CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*_unittest.cc")
  if(NOT tests)
    return()
  endif()
  add_executable(${A_NAME} ${tests})
  target_link_libraries(${A_NAME} PRIVATE ${A_DEPS} GTest::gtest GTest::gtest_main)
  target_compile_definitions(${A_NAME} PRIVATE
      VANTU_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
      VANTU_BINARY_DIR="${CMAKE_BINARY_DIR}")
  add_test(NAME ${A_NAME} COMMAND ${A_NAME})
  set_tests_properties(${A_NAME} PROPERTIES TIMEOUT 600)
endfunction()
