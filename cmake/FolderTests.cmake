# FolderTests.cmake: the tests of a folder of host or tools, in a folder of the same name and a program of its own.
#
#     stopngo_folder_tests(train)
#
# makes train_tests of the sources in tests/tools/train; `ctest -L train` runs them. They link the folder's library
# and what that uses. host/gstreamer makes gstreamer_tests.
#   USES FOLDER…  others' folders that the tests need besides
#   NEEDS TARGET…  what has to be built before they run
#   LINKS LIBRARY…  libraries of others
function(stopngo_folder_tests folder)
  cmake_parse_arguments(PARSE_ARGV 1 folder "" "" "USES;NEEDS;LINKS")
  set(path ${folder})
  if(NOT folder MATCHES "^host")
    set(path tools/${folder})
  endif()
  string(REPLACE "/" "." prefix ${path})
  string(REPLACE "/" "_" library stopngo_${folder})
  get_filename_component(name ${folder} NAME)
  set(program ${name}_tests)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${path}/*.cpp)
  add_executable(${program} ${sources})
  list(TRANSFORM folder_USES PREPEND stopngo_)
  target_link_libraries(${program} PRIVATE ${library} ${folder_USES} ${folder_LINKS} stopngo_test_support
    stopngo_options test_options)
  # A sanitizer's checks in thousands of assertions take longer to optimise than to run.
  target_compile_options(${program} PRIVATE $<$<CONFIG:Debug>:-O0>)
  add_dependencies(${program} zetstopngo ${folder_NEEDS})
  compile_together(${program} ALWAYS)
  gtest_discover_tests(${program} TEST_PREFIX ${prefix}. DISCOVERY_TIMEOUT 60 PROPERTIES LABELS ${name})
endfunction()
