# Manual.cmake: man pages and shell completions, which the command that was built writes out of its own tables.
#
# Pages are what docs/man/ has, with the tables put in; scdoc makes them. Not of a command that this machine cannot run,
# itself or under the emulator.
if(STOPNGO_SANITIZE OR (CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR))
  return()
endif()

set(made ${PROJECT_BINARY_DIR}/share)
set(make_page ${PROJECT_SOURCE_DIR}/cmake/MakePage.cmake)
set(program ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:stopngo>)
# stopngo_made(file DEPENDS… ARGUMENTS -D…): a file that the command writes.
function(stopngo_made file)
  cmake_parse_arguments(PARSE_ARGV 1 made "" "" "DEPENDS;ARGUMENTS")
  add_custom_command(OUTPUT ${file} VERBATIM
    COMMAND ${CMAKE_COMMAND} -D "PROGRAM=${program}" -D OUT=${file} ${made_ARGUMENTS} -P ${make_page}
    DEPENDS stopngo ${make_page} ${made_DEPENDS} COMMENT "Writing ${file}")
endfunction()

# Where each shell looks, and under which name.
set(completions
  bash ${CMAKE_INSTALL_DATADIR}/bash-completion/completions stopngo
  zsh ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions _stopngo
  fish ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d stopngo.fish)
set(files)
while(completions)
  list(POP_FRONT completions shell folder name)
  set(file ${made}/completion/${shell}/${name})
  stopngo_made(${file} ARGUMENTS -D SHELL=${shell})
  install(FILES ${file} DESTINATION ${folder} COMPONENT command)
  list(APPEND files ${file})
endwhile()

find_program(STOPNGO_SCDOC scdoc)
mark_as_advanced(STOPNGO_SCDOC)
file(GLOB pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/man/*.[1-9].scd)
set(header ${PROJECT_SOURCE_DIR}/include/vel_stopngo.h)
if(NOT STOPNGO_SCDOC)
  message(STATUS "No man pages: scdoc is missing")
  set(pages)
endif()
foreach(page IN LISTS pages)
  string(REGEX REPLACE "^.*/(.*\\.([1-9]))\\.scd$" "\\1;\\2" parts ${page})
  list(POP_FRONT parts name section)
  set(file ${made}/man/man${section}/${name})
  stopngo_made(${file} DEPENDS ${page} ${header} ${PROJECT_SOURCE_DIR}/docs/man/common.scd
    ARGUMENTS -D PAGE=${page} -D HEADER=${header} -D SCDOC=${STOPNGO_SCDOC})
  if(section EQUAL 3)
    set(component development)
  else()
    set(component command)
  endif()
  install(FILES ${file} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${component})
  list(APPEND files ${file})
endforeach()
add_custom_target(manual ALL DEPENDS ${files})
