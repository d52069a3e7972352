# The comparison sees what it is for, at the very edge, and nothing else.
include(${CMAKE_CURRENT_LIST_DIR}/compare.cmake)

function(expect what wanted_failures wanted_gains table counts)
  compare_counts(failures gains "${table}" "${counts}")
  if(NOT failures STREQUAL wanted_failures OR NOT gains STREQUAL wanted_gains)
    message(SEND_ERROR "${what}: wanted \"${wanted_failures}\" and \"${wanted_gains}\", "
                       "got \"${failures}\" and \"${gains}\"")
  endif()
endfunction()

set(table "# a compiler" "IP_A 1 1000" "IP_AB 2 20")
expect("equal counts" "" "" "${table}" "IP_A 1 1000;IP_AB 2 20")
expect("growth by 1 %" "" "" "${table}" "IP_A 1 1010;IP_AB 2 20")
expect("growth by more than 1 %" "IP_A: 1000 -> 1011 instructions, +1.10 %" "" "${table}" "IP_A 1 1011;IP_AB 2 20")
expect("one instruction in a short function" "IP_AB: 20 -> 21 instructions, +5.00 %" "" "${table}"
       "IP_A 1 1000;IP_AB 2 21")
expect("a fall by 1 %" "" "" "${table}" "IP_A 1 990;IP_AB 2 20")
expect("a fall by more than 1 %" "" "IP_A: 1000 -> 989 instructions, -1.10 %" "${table}" "IP_A 1 989;IP_AB 2 20")
expect("growth and fall together" "IP_AB: 20 -> 40 instructions, +100.00 %" "IP_A: 1000 -> 500 instructions, -50.00 %"
       "${table}" "IP_A 1 500;IP_AB 2 40")
expect("another number of calls" "IP_AB: 1 calls, but 2 in the table" "" "${table}" "IP_A 1 1000;IP_AB 1 10")
expect("a function that nobody calls" "IP_A: is never called" "" "${table}" "IP_A 0 0;IP_AB 2 20")
expect("a new function" "IP_B: is not in the table" "" "${table}" "IP_A 1 1000;IP_AB 2 20;IP_B 1 7")
expect("a function that is gone" "in the table, but not counted: IP_AB 2 20" "" "${table}" "IP_A 1 1000")
expect("a call that did not end" "IP_AB did not return" "" "${table}" "IP_A 1 1000;IP_AB 2 20;IP_AB did not return")
