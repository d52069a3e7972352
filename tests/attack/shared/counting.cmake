# Makes a build count which lines of the libraries and of the program run (gcov): -DCMAKE_PROJECT_INCLUDE=<this file>.
#
# The tests do not count, so that they are the same objects as in other builds, and as fast. NADIR_COUNTED says how what
# counts is optimised.
function(nadir_count_lines)
  foreach(target IN ITEMS nadir_objects nadirground_objects nadir_road_kernels nadir_tool_files nadir_tool_rooms nadir-tool)
    if(TARGET ${target})
      target_compile_options(${target} PRIVATE ${NADIR_COUNTED} --coverage -fprofile-update=single)
    endif()
  endforeach()
endfunction()
add_link_options(--coverage)
cmake_language(DEFER CALL nadir_count_lines)
