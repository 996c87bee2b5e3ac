# Install.cmake: what `cmake --install` puts where, for pkg-config and for CMake's find_package.
include(CMakePackageConfigHelpers)

# Components are the packages of cmake/Packages.cmake.
install(TARGETS zetstopngo EXPORT zetstopngoTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  COMPONENT module NAMELINK_COMPONENT development)
install(TARGETS zetstopngo_selftest RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)
install(FILES ${PROJECT_SOURCE_DIR}/include/vel_stopngo.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development)
# Also where there is no command: a host finds them by the variables of both packages.
set(weights_dir ${CMAKE_INSTALL_DATADIR}/zetstopngo)
install(FILES ${PROJECT_SOURCE_DIR}/weights/default.bin ${PROJECT_SOURCE_DIR}/weights/default.bin.json
  ${PROJECT_SOURCE_DIR}/weights/history.bin ${PROJECT_SOURCE_DIR}/weights/history.bin.json
  DESTINATION ${weights_dir} COMPONENT command)
if(STOPNGO_BUILD_TOOLS)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/metrics.jq DESTINATION ${weights_dir} COMPONENT command)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/stopngo@.service DESTINATION lib/systemd/system COMPONENT command)
  install(TARGETS stopngo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)
  if(TARGET gstzetstopngo)
    install(TARGETS gstzetstopngo LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/gstreamer-1.0 COMPONENT element)
  endif()
endif()

# Relative to the file itself: the prefix is known only when it is installed.
file(RELATIVE_PATH pc_to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
configure_file(cmake/zetstopngo.pc.in zetstopngo.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zetstopngo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zetstopngo)
install(EXPORT zetstopngoTargets NAMESPACE zetstopngo:: DESTINATION ${package_dir}
  COMPONENT development)
configure_package_config_file(cmake/zetstopngoConfig.cmake.in zetstopngoConfig.cmake
  INSTALL_DESTINATION ${package_dir} PATH_VARS weights_dir)
write_basic_package_version_file(zetstopngoConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zetstopngoConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/zetstopngoConfigVersion.cmake DESTINATION ${package_dir}
  COMPONENT development)
