# ReadElf.cmake: what the target's readelf, READELF, says of a built file.
function(read_elf out file)
  execute_process(COMMAND ${READELF} -W ${ARGN} ${file} OUTPUT_VARIABLE text RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${READELF} could not read ${file}")
  endif()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()
