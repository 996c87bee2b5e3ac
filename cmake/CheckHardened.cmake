# CheckHardened.cmake: whether a built file is hardened as Compile.cmake asks for, by what stands in the file.
#
# FILE: a shared object or a program, READELF: the target's readelf. Checked: it can be loaded anywhere, its stack is
# not executable, what is relocated is read-only before anything runs, and functions with arrays guard their stack.
#   FORTIFIED  true where calls of the C library are to be the fortified ones
#   BRANCHES   what the property note has to say of guarded branches; empty where it need not be there

include(${CMAKE_CURRENT_LIST_DIR}/ReadElf.cmake)

read_elf(segments ${FILE} -l)
if(NOT segments MATCHES "file type is DYN")
  message(FATAL_ERROR "${FILE}: made for one address")
endif()
if(NOT segments MATCHES "GNU_STACK +[x0-9a-f]+ [x0-9a-f]+ [x0-9a-f]+ [x0-9a-f]+ [x0-9a-f]+ RW ")
  message(FATAL_ERROR "${FILE}: executable stack")
endif()
read_elf(dynamic ${FILE} -d)
if(NOT segments MATCHES "GNU_RELRO" OR NOT dynamic MATCHES "BIND_NOW|FLAGS_1[^\n]* NOW")
  message(FATAL_ERROR "${FILE}: relocations that can be overwritten")
endif()
read_elf(symbols ${FILE} --dyn-syms)
if(NOT symbols MATCHES "__stack_chk_fail")
  message(FATAL_ERROR "${FILE}: no stack protector")
endif()
if(FORTIFIED AND NOT symbols MATCHES "__[a-z]+_chk[@ \n]")
  message(FATAL_ERROR "${FILE}: no fortified calls")
endif()
read_elf(notes ${FILE} -n)
if(NOT "${BRANCHES}" STREQUAL "" AND NOT notes MATCHES "feature: ${BRANCHES}\n")
  message(FATAL_ERROR "${FILE}: branches are not marked as guarded, ${BRANCHES}\n${notes}")
endif()
