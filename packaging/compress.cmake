# compress.cmake: man pages and change logs of what is packaged, compressed without a time or a name.
set(root ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share)
file(GLOB plain ${root}/man/man*/*.[1-9] ${root}/doc/*/changelog)
foreach(file IN LISTS plain)
  execute_process(COMMAND gzip -9n ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
