# Counts and compares with the table, or with RECORD replaces it. Given EMULATOR, PROGRAM, PLUGIN, NAMES, TABLE, COUNTS
# (a file for the result) and COMPILER.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/compare.cmake)

separate_arguments(EMULATOR UNIX_COMMAND "${EMULATOR}")

function(run output)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE text RESULT_VARIABLE result OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN} failed: ${result}")
  endif()
  set(${output} "${text}" PARENT_SCOPE)
endfunction()

run(libc ${EMULATOR} ${PROGRAM} --libc)
set(made_by "# ${COMPILER}, ${libc}")
set(table "")
if(EXISTS ${TABLE})
  file(STRINGS ${TABLE} table)
endif()
if(table AND NOT RECORD AND NOT made_by IN_LIST table)
  list(GET table 0 recorded)
  message("skipped: the table is of other versions (${recorded}) than this build (${made_by})")
  return()
endif()

run(printed ${EMULATOR} -plugin ${PLUGIN},names=${NAMES},out=${COUNTS} ${PROGRAM})
file(STRINGS ${COUNTS} counts)
if(RECORD)
  list(JOIN counts "\n" lines)
  file(WRITE ${TABLE} "${made_by}\n# function, calls, instructions in all of them (scripts/record/counts)\n${lines}\n")
endif()

file(STRINGS ${TABLE} recorded)
compare_counts(failures gains "${recorded}" "${counts}")

# Pixels that the calls work through, and the most that the road behind the match may take of what the matcher takes for
# each.
set(pixels_of_IP_SgmFull 6683)
set(pixels_of_nadir_road_process 76800)
set(most_percent 60)
find_count(matcher "${counts}" IP_SgmFull)
find_count(road "${counts}" nadir_road_process)
math(EXPR percent "100 * ${road_instructions} * ${pixels_of_IP_SgmFull}
                   / (${matcher_instructions} * ${pixels_of_nadir_road_process})")
message("behind the match the road takes ${percent} % of the matcher's instructions per pixel")
if(percent GREATER ${most_percent})
  list(APPEND failures "the road behind the match: ${percent} % of the matcher's instructions per pixel, not ${most_percent}")
endif()

list(LENGTH counts functions)
message("${functions} functions counted")
list(JOIN gains "\n  " gains)
if(gains)
  message("fewer than in the table; scripts/record/counts records it:\n  ${gains}")
endif()
list(JOIN failures "\n  " failures)
if(failures)
  message(FATAL_ERROR "more instructions than in ${TABLE}, or other calls:\n  ${failures}\n"
                      "If that is meant, scripts/record/counts records it.")
endif()
