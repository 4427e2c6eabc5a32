# The RVPCV_ISA cap: each level runs at the lower of the cap and the
# processor's own level, an unknown value changes nothing, and the test suite
# offers no dispatch level above the cap.
# Usage: cmake -DTOOL=<rvpcv> -DTESTS=<rvpcv_tests> -P check_dispatch_cap.cmake
function(run_level cap out_var)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env RVPCV_ISA=${cap} "${TOOL}" --version
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0 OR NOT out MATCHES "kernels: ([a-z0-9]+) \\(processor: ([a-z0-9]+)\\)")
    message(FATAL_ERROR "RVPCV_ISA=${cap} rvpcv --version: exit ${rc}\n${out}${err}")
  endif()
  set(${out_var} "${CMAKE_MATCH_1};${CMAKE_MATCH_2}" PARENT_SCOPE)
endfunction()

set(levels sse3 avx2 avx512)
run_level("" native)
list(GET native 1 cpu)
list(FIND levels "${cpu}" cpu_index)
foreach(cap sse3 avx2 avx512 bogus)
  run_level("${cap}" got)
  list(GET got 0 ran)
  list(FIND levels "${cap}" cap_index)
  if(cap_index EQUAL -1 OR cap_index GREATER cpu_index)
    set(cap_index ${cpu_index})
  endif()
  list(GET levels ${cap_index} want)
  if(NOT ran STREQUAL want)
    message(FATAL_ERROR "RVPCV_ISA=${cap} on a ${cpu} processor ran ${ran}, expected ${want}")
  endif()
endforeach()

execute_process(COMMAND ${CMAKE_COMMAND} -E env RVPCV_ISA=sse3 "${TESTS}" --gtest_list_tests
                RESULT_VARIABLE rc OUTPUT_VARIABLE out)
if(NOT rc EQUAL 0 OR out MATCHES "avx2_t|avx512_t")
  message(FATAL_ERROR "under RVPCV_ISA=sse3 the test suite still lists wider levels")
endif()
message(STATUS "RVPCV_ISA caps the level on this ${cpu} processor")
