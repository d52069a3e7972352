# What the checks of this folder share. They run with cmake -P and are given LIBRARY, NM, READELF and SONAME.

function(run output)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE text RESULT_VARIABLE result)
  if(NOT result EQUAL 0 OR text STREQUAL "")
    message(FATAL_ERROR "${ARGN} failed or printed nothing: ${result}")
  endif()
  set(${output} "${text}" PARENT_SCOPE)
endfunction()

# The library's dynamic symbols that nm selects by `which`, without their versions.
function(dynamic_symbols names which)
  run(text ${NM} -D ${which} --format=posix ${LIBRARY})
  string(REGEX MATCHALL "[^\n]+" lines "${text}")
  list(TRANSFORM lines REPLACE "[@ ].*" "")
  set(${names} "${lines}" PARENT_SCOPE)
endfunction()

# Fails if `found` has elements that `allowed` lacks.
function(expect_none what found allowed)
  list(REMOVE_ITEM found ${allowed} "")
  if(found)
    list(JOIN found " " found)
    message(SEND_ERROR "${LIBRARY}: ${what}: ${found}")
  endif()
endfunction()
