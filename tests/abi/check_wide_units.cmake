# Checks that nothing compiled for a wider instruction set can run before the
# dispatcher has looked at the processor. In the objects of the *_avx2.cpp and
# *_avx512.cpp units of the library archive:
#   - no dynamic initialiser (_GLOBAL__sub_I_*) and no .init_array/.ctors
#     section: those run at load, on any processor;
#   - no weak definition outside the unit's own rvcv::avx2 / rvcv::avx512
#     namespace: the linker keeps one copy of a weak (inline, template)
#     function, and the wider copy may then serve baseline callers.
# Usage: cmake -DARCHIVE=<librvpcv_internal.a> -P check_wide_units.cmake
set(wide_member "_(avx2|avx512)\\.cpp\\.o")

execute_process(COMMAND nm -A --defined-only "${ARCHIVE}" OUTPUT_VARIABLE syms RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "nm failed on ${ARCHIVE}")
endif()
string(REPLACE "\n" ";" lines "${syms}")
set(bad "")
set(members "")
foreach(line IN LISTS lines)
  if(NOT line MATCHES "([^:/]+${wide_member}):[0-9a-fA-F]* ([A-Za-z]) (.+)$")
    continue()
  endif()
  set(member "${CMAKE_MATCH_1}")
  set(kind "${CMAKE_MATCH_3}")
  set(sym "${CMAKE_MATCH_4}")
  list(APPEND members "${member}")
  if(sym MATCHES "^_GLOBAL__sub_I_")
    list(APPEND bad "${member}: dynamic initialiser ${sym}")
  elseif(kind MATCHES "^[WVu]$" AND NOT sym MATCHES "4rvcv(4avx2|6avx512)" AND NOT sym STREQUAL "DW.ref.__gxx_personality_v0")
    list(APPEND bad "${member}: weak definition outside the unit's namespace: ${sym}")
  endif()
endforeach()
list(REMOVE_DUPLICATES members)
list(LENGTH members count)
if(count EQUAL 0)
  message(FATAL_ERROR "no *_avx2/*_avx512 objects found in ${ARCHIVE}")
endif()

execute_process(COMMAND objdump -h "${ARCHIVE}" OUTPUT_VARIABLE heads RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "objdump failed on ${ARCHIVE}")
endif()
string(REPLACE "\n" ";" lines "${heads}")
set(current "")
foreach(line IN LISTS lines)
  if(line MATCHES "^([^ :]+):[ \t]+file format")
    set(current "${CMAKE_MATCH_1}")
  elseif(current MATCHES "${wide_member}$" AND line MATCHES " \\.(init_array|ctors|preinit_array)")
    list(APPEND bad "${current}: section .${CMAKE_MATCH_1} runs code at load")
  endif()
endforeach()

if(bad)
  string(REPLACE ";" "\n  " text "${bad}")
  message(FATAL_ERROR "wider-instruction-set code reachable before dispatch:\n  ${text}")
endif()
message(STATUS "${count} wider-instruction-set objects: no load-time code, no shared weak definitions")
