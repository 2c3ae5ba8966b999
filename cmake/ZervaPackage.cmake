# Debian packages, one a component, of the word size that is built; scripts/package.sh makes those of
# both. They are of the architecture that the programs are for, i386 or amd64, and may be installed
# beside each other: what both have is the same file.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zerva)
set(CPACK_PACKAGE_CONTACT "the developers of zerva <zerva@localhost>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/package/Documents.cmake")
set(CPACK_ZERVA_SOURCE "${PROJECT_SOURCE_DIR}")
# So that what knows the prefix knows the right one.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL runtime systemd development examples)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
if(ZERVA_BITS EQUAL 32)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
else()
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
endif()
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
# This version of CPack has no setting for the second of these fields; it writes what it is given.
set(CPACK_DEBIAN_PACKAGE_PRIORITY "optional\nMulti-Arch: same")

# Written down, since the packages of the other word size need not be there to be asked. The C library
# is the one in which the newest function that is called came up: pidfd_open.
set(runtime_depends "libc6 (>= 2.36), libstdc++6 (>= 12), libgcc-s1 (>= 3.0)")
set(exact "(= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_ZERVA_PACKAGE_NAME zerva)
set(CPACK_DEBIAN_ZERVA_PACKAGE_DEPENDS "${runtime_depends}")
set(CPACK_DEBIAN_ZERVA_DESCRIPTION "runs services from shared libraries as a directive file says
One process, one directive file, any number of services. They reach each
other over named channels only, within a process and between processes.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME zerva-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "zerva ${exact}, libstdc++-12-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "headers and packages to build services for zerva
With a CMake package and files for pkg-config.")
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_NAME zerva-examples)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_DEPENDS "zerva ${exact}, ${runtime_depends}")
set(CPACK_DEBIAN_EXAMPLES_DESCRIPTION "a small weather station, to copy services for zerva from
Sources, libraries and directive files.")

# Who has /usr/bin/zerva where both word sizes are installed is the administrator's choice.
foreach(script postinst prerm)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/package/${script}.in"
                 "${PROJECT_BINARY_DIR}/package/${script}" @ONLY)
endforeach()
set(CPACK_DEBIAN_ZERVA_PACKAGE_CONTROL_EXTRA
  "${PROJECT_BINARY_DIR}/package/postinst;${PROJECT_BINARY_DIR}/package/prerm")
set(CPACK_DEBIAN_ZERVA_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The unit goes with the program.
set(CPACK_COMPONENT_RUNTIME_GROUP zerva)
set(CPACK_COMPONENT_SYSTEMD_GROUP zerva)
set(CPACK_COMPONENT_DEVELOPMENT_GROUP development)
set(CPACK_COMPONENT_EXAMPLES_GROUP examples)

include(CPack)
