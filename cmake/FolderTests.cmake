# FolderTests.cmake: the tests of a folder of host or tools, in a folder of the same name and a program of its own.
#
#     stopngo_folder_tests(train)
#
# makes train_tests of the sources in tests/tools/train; `ctest -L train` runs them. They link the folder's library
# and what that uses.
#   USES FOLDER…  others' folders that the tests need besides
#   NEEDS TARGET…  what has to be built before they run
function(stopngo_folder_tests folder)
  cmake_parse_arguments(PARSE_ARGV 1 folder "" "" "USES;NEEDS")
  if(folder STREQUAL "host")
    set(place ${CMAKE_CURRENT_SOURCE_DIR})
    set(prefix host)
  else()
    set(place ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
    set(prefix tools.${folder})
  endif()
  set(program ${folder}_tests)
  file(GLOB sources CONFIGURE_DEPENDS ${place}/*.cpp)
  add_executable(${program} ${sources})
  list(TRANSFORM folder_USES PREPEND stopngo_)
  target_link_libraries(${program} PRIVATE stopngo_${folder} ${folder_USES} stopngo_test_support
    stopngo_options test_options)
  # A sanitizer's checks in thousands of assertions take longer to optimise than to run.
  target_compile_options(${program} PRIVATE $<$<CONFIG:Debug>:-O0>)
  add_dependencies(${program} zetstopngo ${folder_NEEDS})
  compile_together(${program} ALWAYS)
  gtest_discover_tests(${program} TEST_PREFIX ${prefix}. DISCOVERY_TIMEOUT 60 PROPERTIES LABELS ${folder})
endfunction()
