# finish.cmake: what cpack cannot say of a package, put into those that it made.
#
# Library and development files of several processors may be installed beside each other. And ldconfig is called by the
# trigger, once after all packages, not by the scripts that cpack adds to a package with a library.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(root ${package}.root)
  file(REMOVE_RECURSE ${root})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${root} COMMAND_ERROR_IS_FATAL ANY)
  if(package MATCHES "/libzetstopngo")
    file(READ ${root}/DEBIAN/control control)
    file(WRITE ${root}/DEBIAN/control "Multi-Arch: same\n${control}")
  endif()
  file(REMOVE ${root}/DEBIAN/postinst ${root}/DEBIAN/postrm)
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${root} ${package} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${root})
endforeach()
