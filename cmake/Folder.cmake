# Folder.cmake: the folders of host and tools, each a static library that is linked to exactly what it names.
#
#     stopngo_folder(video USES base host LINKS PkgConfig::FFMPEG)
#
# makes stopngo_video of the sources in tools/video. USES names folders declared before it, so that there is no
# way back up; LINKS names libraries of others. Every #include "folder/…" of the folder is read when the build is
# configured: one that reaches a folder that is not named stops the build. `src` stands for the record of the
# module's context, which only those see who show what the module saw.
#   WITHOUT FILE…  sources that this build leaves out

# The folder that a quoted include leads to; headers of the module name none.
function(stopngo_included_folder out include)
  get_filename_component(folder "${include}" DIRECTORY)
  if(folder STREQUAL "" AND NOT EXISTS "${PROJECT_SOURCE_DIR}/include/${include}")
    set(folder src)
  endif()
  set(${out} "${folder}" PARENT_SCOPE)
endfunction()

# Stops when a file of a folder includes anything that is neither the folder's own nor one of those it may use.
function(stopngo_check_includes folder uses files)
  foreach(file IN LISTS files)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    file(READ "${file}" text)
    if(NOT text MATCHES "#include \"")
      continue()
    endif()
    # Semicolons and brackets would fall apart in a list of lines.
    string(REGEX REPLACE "[][;]" " " text "${text}")
    string(REPLACE "\n" ";" lines "${text}")
    set(number 0)
    foreach(line IN LISTS lines)
      math(EXPR number "${number} + 1")
      if(NOT line MATCHES "^#include \"([^\"]+)\"")
        continue()
      endif()
      stopngo_included_folder(reached "${CMAKE_MATCH_1}")
      if(NOT reached STREQUAL "" AND NOT reached STREQUAL folder AND NOT reached IN_LIST uses)
        message(FATAL_ERROR "${file}:${number}: ${CMAKE_MATCH_1} is of ${reached}, which ${folder} does not name: "
          "stopngo_folder(${folder} USES ${uses})")
      endif()
    endforeach()
  endforeach()
endfunction()

function(stopngo_folder folder)
  cmake_parse_arguments(PARSE_ARGV 1 folder "" "" "USES;LINKS;WITHOUT")
  if(folder MATCHES "^host")
    set(place ${PROJECT_SOURCE_DIR}/${folder})
  else()
    set(place ${PROJECT_SOURCE_DIR}/tools/${folder})
  endif()
  file(GLOB sources CONFIGURE_DEPENDS ${place}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${place}/*.h)
  stopngo_check_includes(${folder} "${folder_USES}" "${sources};${headers}")
  list(TRANSFORM folder_WITHOUT PREPEND ${place}/)
  if(folder_WITHOUT)
    list(REMOVE_ITEM sources ${folder_WITHOUT})
  endif()

  string(REPLACE "/" "_" target stopngo_${folder})
  if(sources)
    add_library(${target} STATIC ${sources})
    set(kind PUBLIC)
    target_link_libraries(${target} PRIVATE stopngo_options)
    compile_together(${target})
  else()
    add_library(${target} INTERFACE)
    set(kind INTERFACE)
  endif()
  target_include_directories(${target} ${kind} ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/tools ${PROJECT_SOURCE_DIR}/include)
  foreach(used IN LISTS folder_USES)
    if(used STREQUAL "src")
      target_include_directories(${target} ${kind} ${PROJECT_SOURCE_DIR}/src)
      continue()
    endif()
    string(REPLACE "/" "_" library stopngo_${used})
    if(NOT TARGET ${library})
      message(FATAL_ERROR "${folder} uses ${used}, which is not declared before it")
    endif()
    target_link_libraries(${target} ${kind} ${library})
  endforeach()
  target_link_libraries(${target} ${kind} ${folder_LINKS})
endfunction()
