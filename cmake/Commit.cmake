# Commit.cmake: STOPNGO_COMMIT, the commit that is built: as told, else what git says of this folder, else "unknown".
#
# Sources without git, such as an export, are told it with -DSTOPNGO_COMMIT=…, and give the same files then.
set(STOPNGO_COMMIT "" CACHE STRING "The commit that is built, for sources that are not in git")
if(STOPNGO_COMMIT STREQUAL "" AND EXISTS "${PROJECT_SOURCE_DIR}/.git")
  find_program(STOPNGO_GIT git)
  mark_as_advanced(STOPNGO_GIT)
  if(STOPNGO_GIT)
    execute_process(COMMAND ${STOPNGO_GIT} rev-parse HEAD WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
      OUTPUT_VARIABLE STOPNGO_COMMIT OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    # Grows with every commit, checkout and reset: the next build is configured anew.
    execute_process(COMMAND ${STOPNGO_GIT} rev-parse --git-path logs/HEAD WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
      OUTPUT_VARIABLE moves OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    get_filename_component(moves "${moves}" ABSOLUTE BASE_DIR ${PROJECT_SOURCE_DIR})
    if(EXISTS "${moves}")
      set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${moves}")
    endif()
  endif()
endif()
if(STOPNGO_COMMIT STREQUAL "")
  set(STOPNGO_COMMIT unknown)
elseif(NOT STOPNGO_COMMIT MATCHES "^[0-9A-Za-z.+~_-]+$")
  message(FATAL_ERROR "STOPNGO_COMMIT: '${STOPNGO_COMMIT}' is no commit")
endif()
