# CheckModule.cmake: what the shared object has to be on the device.
#
# MODULE: the shared object, EXPORTS: its version script, READELF: the target's readelf. Checked: it
# exports exactly the names of the version script, 26 of them; it needs libc, with its loader, and nothing else; it
# has no text relocations; code and data stay under LIMIT bytes.

include(${CMAKE_CURRENT_LIST_DIR}/ReadElf.cmake)

read_elf(dynamic ${MODULE} -d)
string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*" needed "${dynamic}")
# The stack protector's secret lies in the loader on Arm.
list(FILTER needed EXCLUDE REGEX "\\[ld-linux-aarch64\\.so\\.1\\]")
if(NOT "${needed}" MATCHES "^\\(NEEDED\\) +Shared library: \\[libc\\.so\\.6\\]$")
  message(FATAL_ERROR "needs more than libc: ${needed}")
endif()
if(dynamic MATCHES "TEXTREL")
  message(FATAL_ERROR "text relocations")
endif()

read_elf(segments ${MODULE} -l)
string(REGEX MATCHALL "LOAD +[x0-9a-f]+ [x0-9a-f]+ [x0-9a-f]+ [x0-9a-f]+ [x0-9a-f]+" loads "${segments}")
set(bytes 0)
foreach(load IN LISTS loads)
  string(REGEX REPLACE ".* ([x0-9a-f]+)$" "\\1" memory "${load}")
  math(EXPR bytes "${bytes} + ${memory}")
endforeach()
if(bytes EQUAL 0 OR bytes GREATER LIMIT)
  message(FATAL_ERROR "code and data take ${bytes} bytes, allowed are ${LIMIT}")
endif()

read_elf(symbols ${MODULE} --dyn-syms)
string(REGEX MATCHALL "(GLOBAL|WEAK) +DEFAULT +[0-9]+ [^\n]+" defined "${symbols}")
list(TRANSFORM defined REPLACE ".* +([^ @]+)(@.*)?$" "\\1")
list(SORT defined)
file(STRINGS ${EXPORTS} wanted REGEX "^    [A-Za-z_0-9]+;$")
list(TRANSFORM wanted REPLACE "^ +|;$" "")
list(SORT wanted)
list(LENGTH wanted count)
if(NOT count EQUAL 26 OR NOT "${defined}" STREQUAL "${wanted}")
  message(FATAL_ERROR "exports\n${defined}\nwanted\n${wanted}")
endif()
message(STATUS "26 names exported, ${bytes} of ${LIMIT} bytes")
