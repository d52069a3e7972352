# Describes what programs rely on that were compiled against a library, and fails where anything of it is not as it was
# described before; new functions pass. No new member of a record does: the comparison would overlook what else changes
# beside it. -DRECORD=ON writes the description instead.
#   cmake -DLIBRARY=... -DDESCRIPTION=... -DNOW=... [-DRECORD=ON] -P changes.cmake
if(RECORD)
  set(NOW ${DESCRIPTION})
endif()
execute_process(COMMAND abidw --exported-interfaces-only --short-locs --no-corpus-path --no-comp-dir-path --no-elf-needed
                        --type-id-style hash --out-file ${NOW} ${LIBRARY}
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND abidiff --no-added-syms --suppressions ${CMAKE_CURRENT_LIST_DIR}/private.ini ${DESCRIPTION} ${NOW}
                RESULT_VARIABLE result OUTPUT_VARIABLE changes ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "abidiff says ${result}; what is meant, scripts/record/abi records\n${changes}${errors}")
endif()
