# MakePage.cmake: what stopngo writes of itself, as a file.
#
# PROGRAM: stopngo, behind the emulator where it is another processor's, OUT: the file; SHELL: of a completion; or PAGE:
# a man page's text, HEADER: the module's header, SCDOC. The day on which a page was made is left out of it: the same
# sources give the same pages.
if(DEFINED SHELL)
  execute_process(COMMAND ${PROGRAM} completion ${SHELL} OUTPUT_VARIABLE text RESULT_VARIABLE codes)
else()
  execute_process(COMMAND ${PROGRAM} manual ${PAGE} --header ${HEADER} COMMAND ${SCDOC}
    OUTPUT_VARIABLE text RESULTS_VARIABLE codes)
  string(REGEX REPLACE "(\n\\.TH \"[^\"]*\" \"[^\"]*\") \"[-0-9]*\"" "\\1 \"\"" text "${text}")
endif()
if(NOT codes MATCHES "^0(;0)?$")
  message(FATAL_ERROR "${OUT} cannot be made: ${codes}")
endif()
file(WRITE ${OUT} "${text}")
