# Where everything goes when it is installed. What depends on the word size is in a tree of its own,
#
#     lib/i386-linux-gnu/zerva/{bin,lib}    or    lib/x86_64-linux-gnu/zerva/{bin,lib}
#
# laid out as the build tree is, so that programs find their libraries, and the host those that
# directives name, without any path; both word sizes can be installed with one prefix. All else is
# the same for both: headers, the CMake package's entry, documents.
#
# Components: runtime, development, examples; command, which is the link bin/zerva only; and systemd,
# whose unit alone has the prefix in it. Of two word sizes the one that is installed last has the
# link; bin/zerva32 and bin/zerva64 stay.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

if(ZERVA_BITS EQUAL 32)
  set(ZERVA_TRIPLET i386-linux-gnu)
else()
  set(ZERVA_TRIPLET x86_64-linux-gnu)
endif()
set(ZERVA_INSTALL_ARCHDIR "lib/${ZERVA_TRIPLET}")
set(ZERVA_INSTALL_TREE "${ZERVA_INSTALL_ARCHDIR}/zerva")
set(ZERVA_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/zerva")
set(ZERVA_INSTALL_PACKAGEDIR "${CMAKE_INSTALL_DATADIR}/cmake/zerva")

# zerva_install_library(TARGET...)
#
# Libraries that are linked with: files for the run, imported targets for development.
function(zerva_install_library)
  install(TARGETS ${ARGN} EXPORT zervaTargets
          LIBRARY DESTINATION "${ZERVA_INSTALL_TREE}/lib" COMPONENT runtime)
endfunction()

# zerva_install_module(COMPONENT TARGET...)
#
# Libraries that directives name.
function(zerva_install_module component)
  install(TARGETS ${ARGN}
          LIBRARY DESTINATION "${ZERVA_INSTALL_TREE}/lib" COMPONENT ${component})
endfunction()

# zerva_install_program(COMPONENT TARGET)
function(zerva_install_program component target)
  install(TARGETS ${target}
          RUNTIME DESTINATION "${ZERVA_INSTALL_TREE}/bin" COMPONENT ${component})
endfunction()

# zerva_install_link(COMPONENT NAME TO)
#
# A symbolic link NAME in the directory of commands; TO is a path below the prefix.
function(zerva_install_link component name to)
  set(link "${PROJECT_BINARY_DIR}/package/${name}")
  file(RELATIVE_PATH target "/prefix/${CMAKE_INSTALL_BINDIR}" "/prefix/${to}")
  file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/package")
  file(CREATE_LINK "${target}" "${link}" SYMBOLIC)
  install(FILES "${link}" DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT ${component})
endfunction()

# zerva_install_package()
#
# All that is no target: links, headers, the CMake package and what pkg-config reads. Called when
# every target is there.
function(zerva_install_package)
  zerva_install_link(runtime "zerva${ZERVA_BITS}" "${ZERVA_INSTALL_TREE}/bin/zerva")
  zerva_install_link(command zerva "${ZERVA_INSTALL_TREE}/bin/zerva")

  install(TARGETS zerva_framework zerva_include zerva_rmi EXPORT zervaTargets
          FILE_SET HEADERS DESTINATION "${ZERVA_INSTALL_INCLUDEDIR}" COMPONENT development)
  install(EXPORT zervaTargets NAMESPACE zerva:: COMPONENT development
          DESTINATION "${ZERVA_INSTALL_ARCHDIR}/cmake/zerva")

  set(source "${PROJECT_SOURCE_DIR}/cmake/package")
  set(made "${PROJECT_BINARY_DIR}/package")
  configure_package_config_file("${source}/zervaConfig.cmake.in" "${made}/zervaConfig.cmake"
    INSTALL_DESTINATION "${ZERVA_INSTALL_PACKAGEDIR}")
  # Which word sizes there are is seen when the package is used.
  write_basic_package_version_file("${made}/zervaConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)
  install(FILES "${made}/zervaConfig.cmake" "${made}/zervaConfigVersion.cmake"
                "${source}/ZervaService.cmake"
          DESTINATION "${ZERVA_INSTALL_PACKAGEDIR}" COMPONENT development)

  foreach(name zerva zerva-configurator)
    configure_file("${source}/${name}.pc.in" "${made}/${name}.pc" @ONLY)
    install(FILES "${made}/${name}.pc" DESTINATION "${ZERVA_INSTALL_ARCHDIR}/pkgconfig"
            COMPONENT development)
  endforeach()

  set(manual "${PROJECT_SOURCE_DIR}/docs/man")
  install(FILES "${manual}/zerva.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT runtime)
  install(FILES "${manual}/zerva-directives.5" DESTINATION "${CMAKE_INSTALL_MANDIR}/man5"
          COMPONENT runtime)
  install(FILES "${manual}/zerva.3" DESTINATION "${CMAKE_INSTALL_MANDIR}/man3"
          COMPONENT development)

  # The program itself knows what there is to complete.
  foreach(place bash-completion/completions/zerva fish/vendor_completions.d/zerva.fish
                zsh/site-functions/_zerva zsh/vendor-completions/_zerva)
    string(REGEX MATCH "^[a-z]+" shell "${place}")
    install(CODE "
      set(prefix \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
      set(file \"\${prefix}/${CMAKE_INSTALL_DATADIR}/${place}\")
      execute_process(COMMAND \"\${prefix}/${ZERVA_INSTALL_TREE}/bin/zerva\" completion ${shell}
                      OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
      file(WRITE \"\${file}\" \"\${text}\")
      message(STATUS \"Installing: \${file}\")
      list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${file}\")"
      COMPONENT runtime)
  endforeach()

  install(FILES "${PROJECT_SOURCE_DIR}/host/systemd/zerva.conf" DESTINATION lib/sysusers.d
          COMPONENT systemd)
  # The prefix is known when it is installed. Its place in DESTDIR is not a part of it.
  set(unit "${PROJECT_SOURCE_DIR}/host/systemd/zerva@.service.in")
  install(CODE "
    file(READ [[${unit}]] text)
    string(REPLACE \"@PREFIX@\" \"\${CMAKE_INSTALL_PREFIX}\" text \"\${text}\")
    set(directory \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/lib/systemd/system\")
    file(WRITE \"\${directory}/zerva@.service\" \"\${text}\")
    message(STATUS \"Installing: \${directory}/zerva@.service\")
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${directory}/zerva@.service\")"
    COMPONENT systemd)
endfunction()
