# Each folder of the tree is one library. Its sources are the folder's *.cc
# files except tests (*_unittest.cc), test helpers (*_test_util.cc) and the
# Windows implementations (*_win.cc); its tests are the *_unittest.cc files,
# built into one test program per folder (*_posix_unittest.cc and
# *_win_unittest.cc only on their own system).

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

# vantu_discover_tests(TARGET program [END_TO_END patterns...]
#                      [PLAYER_PATH patterns...]): registers
# each test of a GoogleTest program with CTest on its own ("Suite.Name"),
# run in a process of its own with a time limit. Tests matching one of the
# END_TO_END GoogleTest filter patterns (those that run DataImporterMain or
# the host program on whole profiles) get the label "end-to-end", the others
# "unit"; a program whose tests all run end to end passes "*". The tests are
# listed when ctest starts (not at build time), so a build never runs a
# program, and a sanitizer's start-up cost only slows the listing.
function(vantu_discover_tests)
  cmake_parse_arguments(A "" "TARGET" "END_TO_END;PLAYER_PATH" ${ARGN})
  set(common DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)
  # Tests that run as the player does, on the real user's folders and
  # registry: labelled "player-path", one at a time.
  set(others "")
  if(A_PLAYER_PATH)
    list(JOIN A_PLAYER_PATH ":" player_path)
    gtest_discover_tests(${A_TARGET} ${common} TEST_FILTER "${player_path}"
                         PROPERTIES LABELS player-path RUN_SERIAL TRUE TIMEOUT 600)
    set(others ":${player_path}")
  endif()
  if(NOT A_END_TO_END)
    if(others)
      gtest_discover_tests(${A_TARGET} ${common} TEST_FILTER "-${player_path}"
                           PROPERTIES LABELS unit TIMEOUT 600)
    else()
      gtest_discover_tests(${A_TARGET} ${common} PROPERTIES LABELS unit TIMEOUT 600)
    endif()
    return()
  endif()
  list(JOIN A_END_TO_END ":" end_to_end)
  if(end_to_end STREQUAL "*")
    gtest_discover_tests(${A_TARGET} ${common} TEST_FILTER "*-${player_path}"
                         PROPERTIES LABELS end-to-end TIMEOUT 600)
    return()
  endif()
  gtest_discover_tests(${A_TARGET} ${common} TEST_FILTER "${end_to_end}"
                       PROPERTIES LABELS end-to-end TIMEOUT 600)
  gtest_discover_tests(${A_TARGET} ${common} TEST_FILTER "-${end_to_end}${others}"
                       PROPERTIES LABELS unit TIMEOUT 600)
endfunction()

# vantu_tests(NAME name DEPS libs... [END_TO_END patterns...]
#             [PLAYER_PATH patterns...]): one test
# program from the folder's *_unittest.cc files, its tests registered by
# vantu_discover_tests. Test helpers (*_test_util.cc) are libraries of their
# own, declared where they live. Nothing is built when BUILD_TESTING is off.
function(vantu_tests)
  cmake_parse_arguments(A "" "NAME" "DEPS;END_TO_END;PLAYER_PATH" ${ARGN})
  if(NOT BUILD_TESTING)
    return()
  endif()
  file(GLOB tests CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*_unittest.cc")
  # Tests of one system's layer: *_posix_unittest.cc and *_win_unittest.cc.
  if(WIN32)
    list(FILTER tests EXCLUDE REGEX "_posix_unittest\\.cc$")
  else()
    list(FILTER tests EXCLUDE REGEX "_win_unittest\\.cc$")
  endif()
  if(NOT tests)
    return()
  endif()
  add_executable(${A_NAME} ${tests})
  target_link_libraries(${A_NAME} PRIVATE ${A_DEPS} GTest::gtest GTest::gtest_main)
  target_compile_definitions(${A_NAME} PRIVATE
      VANTU_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
      VANTU_BINARY_DIR="${PROJECT_BINARY_DIR}")
  vantu_discover_tests(TARGET ${A_NAME} END_TO_END ${A_END_TO_END} PLAYER_PATH ${A_PLAYER_PATH})
endfunction()
