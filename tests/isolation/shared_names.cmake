# Finds the names in an object that the linker may merge with those of other objects.

# Sets `names` to the weak names that the listing of `nm` defines and that do not contain the level's name. The linker
# keeps one definition of a weak name, from whichever object it likes: a plain inline function that is compiled for AVX2
# too could then run on a processor without it. What has the level in its name, be it as the name of a template's
# argument, is nobody else's.
function(find_shared_names names level listing)
  set(found "")
  string(REPLACE "\n" ";" lines "${listing}")
  foreach(line IN LISTS lines)
    if(line MATCHES "^[0-9a-f]+ [VWu] (.+)$")
      set(name "${CMAKE_MATCH_1}")
      string(TOLOWER "${name}" lower)
      if(NOT lower MATCHES "${level}")
        list(APPEND found "${name}")
      endif()
    endif()
  endforeach()
  set(${names} "${found}" PARENT_SCOPE)
endfunction()
