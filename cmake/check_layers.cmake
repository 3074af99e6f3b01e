# Checks that every include of the importer's own headers runs downward in
# its layers. Run as a script:
#   cmake -DIMPORTER_DIR=<folder holding the layer folders> -P check_layers.cmake
# The importer's folders and what each may include besides itself; a folder
# names only the folders below it; the driver also includes the public header
# at the top. Test programs (*_unittest.cc, *_test_util.*) are not part of
# their folder's library and may include any folder: many run whole imports
# to see their folder's part in them. Fails with one line per include
# that runs upward, naming the file, the line and the rule it breaks.

set(layers run_record environment markup database_helper settings target_store
           source_readers version3_upgrade driver)
set(below_run_record "")
set(below_environment run_record)
set(below_markup environment run_record)
set(below_database_helper environment run_record)
set(below_settings markup environment run_record)
set(below_target_store settings markup database_helper environment run_record)
set(below_source_readers target_store settings markup database_helper environment run_record)
set(below_version3_upgrade target_store settings markup database_helper environment run_record)
set(below_driver source_readers version3_upgrade target_store settings markup database_helper
                 environment run_record TOP)

if(NOT IMPORTER_DIR)
  message(FATAL_ERROR "check_layers: IMPORTER_DIR is not set")
endif()
get_filename_component(root "${IMPORTER_DIR}" ABSOLUTE)

set(violations "")
foreach(layer ${layers})
  if(NOT IS_DIRECTORY "${root}/${layer}")
    continue()
  endif()
  file(GLOB_RECURSE files "${root}/${layer}/*.cc" "${root}/${layer}/*.h")
  foreach(file ${files})
    set(allowed ${layer} ${below_${layer}})
    if(file MATCHES "_unittest\\.cc$" OR file MATCHES "_test_util\\.(cc|h)$"
       OR file MATCHES "_fuzzer\\.cc$" OR file MATCHES "_benchmark\\.cc$")
      set(allowed ${layers} TOP)
    endif()
    file(STRINGS "${file}" lines REGEX "^[ \t]*#[ \t]*include[ \t]+\"tools/data_importer/")
    foreach(line ${lines})
      string(REGEX REPLACE "^[^\"]*\"tools/data_importer/([^\"]*)\".*$" "\\1" target "${line}")
      if(target MATCHES "/")
        string(REGEX REPLACE "/.*$" "" target_layer "${target}")
      else()
        set(target_layer TOP)
      endif()
      list(FIND layers "${target_layer}" known)
      if(known EQUAL -1 AND NOT target_layer STREQUAL "TOP")
        # A folder outside the layers (a new one) must be given its place.
        file(RELATIVE_PATH rel "${root}" "${file}")
        list(APPEND violations "${rel}: includes \"tools/data_importer/${target}\", a folder with no place in the layers")
        continue()
      endif()
      list(FIND allowed "${target_layer}" ok)
      if(ok EQUAL -1)
        file(RELATIVE_PATH rel "${root}" "${file}")
        string(REPLACE ";" ", " may "${below_${layer}}")
        if(may STREQUAL "")
          set(may "none of the importer's folders")
        endif()
        list(APPEND violations "${rel}: includes \"tools/data_importer/${target}\", but ${layer}/ may include: ${may}")
      endif()
    endforeach()
  endforeach()
endforeach()

if(violations)
  list(LENGTH violations count)
  string(REPLACE ";" "\n  " text "${violations}")
  message(FATAL_ERROR "Includes that run upward in the importer's layers (${count}):\n  ${text}")
endif()
