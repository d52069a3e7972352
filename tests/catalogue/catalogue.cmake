# Compares what a program calls with what it should. Given CATALOGUE (its name), OBJECTS (a file that lists its object files),
# NM and ROOT.
cmake_minimum_required(VERSION 3.22)

# The functions that these public headers declare.
function(declared_functions names)
  set(all "")
  foreach(header IN LISTS ARGN)
    file(READ ${header} text)
    string(REGEX MATCHALL "NADIR_API [^;(]*[^A-Za-z0-9_][A-Za-z0-9_]+\\(" declarations "${text}")
    list(TRANSFORM declarations REPLACE "^.*[^A-Za-z0-9_]([A-Za-z0-9_]+)\\($" "\\1")
    list(APPEND all ${declarations})
  endforeach()
  set(${names} "${all}" PARENT_SCOPE)
endfunction()

file(STRINGS ${ROOT}/tests/abi/exports.txt wanted)
if(CATALOGUE STREQUAL "timed")
  # Only these work through pictures; a call of the others is over before a clock says anything.
  list(TRANSFORM ROOT APPEND /include/nadir OUTPUT_VARIABLE headers)
  declared_functions(wanted ${headers}/image.h ${headers}/imgproc.h ${headers}/segment.h ${headers}/stereo.h)
endif()

file(STRINGS ${OBJECTS} objects)
execute_process(COMMAND ${NM} --undefined-only --format=posix ${objects} OUTPUT_VARIABLE symbols RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR wanted STREQUAL "")
  message(FATAL_ERROR "nothing to compare: nm ended with ${result}, wanted are \"${wanted}\"")
endif()
string(REGEX MATCHALL "[^\n]+" called "${symbols}")
list(TRANSFORM called REPLACE " .*" "")

file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/exceptions.txt excepted REGEX "^${CATALOGUE} ")
list(TRANSFORM excepted REPLACE "^[^ ]+ ([^ ]+) .*" "\\1")

foreach(function IN LISTS wanted)
  if(NOT function IN_LIST called AND NOT function IN_LIST excepted)
    message(SEND_ERROR "${function} is exported, but not ${CATALOGUE}: call it, or say why not in exceptions.txt")
  endif()
endforeach()
foreach(function IN LISTS excepted)
  if(function IN_LIST called OR NOT function IN_LIST wanted)
    message(SEND_ERROR "${function} needs no line \"${CATALOGUE}\" in exceptions.txt")
  endif()
endforeach()
list(LENGTH wanted count)
message("${count} functions, ${CATALOGUE}")
