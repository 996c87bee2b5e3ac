# Packages.cmake: Debian packages, by `cpack` in a build that is configured to install to /usr (scripts/packages).
#
#     libzetstopngo1            the module
#     libzetstopngo-dev         header, pkg-config file, CMake package, zetstopngo(3)
#     stopngo                   the command, weights, self-test, man pages, completions
#     gstreamer1.0-zetstopngo   the element, where it is built
set(STOPNGO_CONTACT "stopngo maintainers <stopngo@example.org>" CACHE STRING "Who the packages say maintains them")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zetstopngo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${STOPNGO_CONTACT}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL module development command)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Pages and change logs are compressed, as the policy wants them, when all is in its place.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/compress.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/finish.cmake)
# Each package has a first line of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

set(packaging ${PROJECT_SOURCE_DIR}/packaging)
configure_file(${packaging}/changelog.in ${PROJECT_BINARY_DIR}/packaging/changelog @ONLY)

# stopngo_package(component name section synopsis description CONTROL file…): its names, and what every package has.
function(stopngo_package component name section synopsis description)
  cmake_parse_arguments(PARSE_ARGV 5 package "" "" "CONTROL")
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  # The first line and the rest, as dpkg tells them apart.
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${synopsis}\n${description}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA ${package_CONTROL} PARENT_SCOPE)
  install(FILES ${packaging}/copyright ${PROJECT_BINARY_DIR}/packaging/changelog
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

set(of_what "Tells from the luma planes of a forward camera when a vehicle that was waited\nbehind has driven off. The same frames give the same bits on every machine.")
stopngo_package(module libzetstopngo1 libs "stop-and-go detector for camera pictures"
  "${of_what}\n\nThis package has the module, which needs the C library and nothing else."
  CONTROL ${packaging}/symbols ${packaging}/shlibs ${packaging}/triggers)
stopngo_package(development libzetstopngo-dev libdevel "stop-and-go detector for camera pictures - development"
  "${of_what}\n\nThis package has what compilers need: the header, and how pkg-config and CMake\nfind the module.")
stopngo_package(command stopngo video "stop-and-go detector for camera pictures - command"
  "${of_what}\n\nThis package has the command, which replays recordings and cameras, shows why\nthe detector decides, makes weights and judges them; and default weights.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libzetstopngo1 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS stopngo)
# The module is loaded when the command runs, by its own layout of the context: that of the same version.
set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "libzetstopngo1 (= ${PROJECT_VERSION}), fonts-dejavu-core")
if(STOPNGO_WITH_FFMPEG)
  # Loaded late; who only has Y4M does without (video/ffmpeg_calls.h).
  set(late)
  foreach(library IN ITEMS libavformat libavcodec libavdevice)
    string(REGEX MATCH "^[0-9]+" major "${FFMPEG_LOADED_${library}_VERSION}")
    list(APPEND late ${library}${major})
  endforeach()
  list(JOIN late ", " CPACK_DEBIAN_COMMAND_PACKAGE_RECOMMENDS)
endif()
if(TARGET gstzetstopngo)
  list(APPEND CPACK_COMPONENTS_ALL element)
  stopngo_package(element gstreamer1.0-zetstopngo libs "stop-and-go detector for camera pictures - GStreamer element"
    "${of_what}\n\nThis package has the element zetstopngo, which lets video pass and tells\ndecisions on the bus and with the frames.")
  set(CPACK_DEBIAN_ELEMENT_PACKAGE_DEPENDS "libzetstopngo1 (= ${PROJECT_VERSION}), stopngo (= ${PROJECT_VERSION})")
endif()
include(CPack)
