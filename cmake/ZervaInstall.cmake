# Where everything goes when it is installed. What depends on the word size is in a tree of its own,
#
#     lib/i386-linux-gnu/zerva/{bin,lib}    or    lib/x86_64-linux-gnu/zerva/{bin,lib}
#
# laid out as the build tree is, so that programs find their libraries, and the host those that
# directives name, without any path; both word sizes can be installed with one prefix. All else is
# the same for both: headers, the CMake package's entry, documents.
#
# Components: runtime, development, examples; command, which is the link bin/zerva only; and systemd,
# whose unit has the prefix in it; so has what pkg-config reads. Of two word sizes the one that is
# installed last has the link; bin/zerva32 and bin/zerva64 stay.

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

# zerva_install_link(COMPONENT LINK TO)
#
# A symbolic link; both are paths below the prefix.
function(zerva_install_link component link to)
  get_filename_component(directory "${link}" DIRECTORY)
  set(made "${PROJECT_BINARY_DIR}/package/${link}")
  file(RELATIVE_PATH target "/prefix/${directory}" "/prefix/${to}")
  file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/package/${directory}")
  file(CREATE_LINK "${target}" "${made}" SYMBOLIC)
  install(FILES "${made}" DESTINATION "${directory}" COMPONENT ${component})
endfunction()

# zerva_install_with_prefix(COMPONENT TEMPLATE TO)
#
# A file with the prefix in place of @PREFIX@, which is known when it is installed; its place in
# DESTDIR is not a part of it. TO is a path below the prefix.
function(zerva_install_with_prefix component template to)
  install(CODE "
    file(READ [[${template}]] text)
    string(REPLACE \"@PREFIX@\" \"\${CMAKE_INSTALL_PREFIX}\" text \"\${text}\")
    set(file \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${to}\")
    file(WRITE \"\${file}\" \"\${text}\")
    file(CHMOD \"\${file}\" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    message(STATUS \"Installing: \${file}\")
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${file}\")"
    COMPONENT ${component})
endfunction()

# zerva_install_package()
#
# All that is no target: links, headers, the CMake package and what pkg-config reads. Called when
# every target is there.
function(zerva_install_package)
  set(program "${ZERVA_INSTALL_TREE}/bin/zerva")
  zerva_install_link(runtime "${CMAKE_INSTALL_BINDIR}/zerva${ZERVA_BITS}" "${program}")
  zerva_install_link(command "${CMAKE_INSTALL_BINDIR}/zerva" "${program}")

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

  # The prefix is written down: reckoned from where the file is, it would lead every program that is
  # linked through the directory pkgconfig, which need not be there when it runs.
  foreach(name zerva zerva-configurator)
    set(PREFIX "@PREFIX@")
    configure_file("${source}/${name}.pc.in" "${made}/${name}.pc.in" @ONLY)
    zerva_install_with_prefix(development "${made}/${name}.pc.in"
                              "${ZERVA_INSTALL_ARCHDIR}/pkgconfig/${name}.pc")
  endforeach()

  set(manual "${PROJECT_SOURCE_DIR}/docs/man")
  install(FILES "${manual}/zerva.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT runtime)
  file(WRITE "${made}/zerva${ZERVA_BITS}.1" ".so man1/zerva.1\n")
  install(FILES "${made}/zerva${ZERVA_BITS}.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1"
          COMPONENT runtime)
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
      file(CHMOD \"\${file}\" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
      message(STATUS \"Installing: \${file}\")
      list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${file}\")"
      COMPONENT runtime)
  endforeach()
  # These shells look for a file of the command's name; zsh reads the names in the file.
  foreach(place bash-completion/completions/zerva@ fish/vendor_completions.d/zerva@.fish)
    string(REPLACE "@" "" whole "${place}")
    string(REPLACE "@" "${ZERVA_BITS}" own "${place}")
    zerva_install_link(runtime "${CMAKE_INSTALL_DATADIR}/${own}"
                       "${CMAKE_INSTALL_DATADIR}/${whole}")
  endforeach()

  install(FILES "${PROJECT_SOURCE_DIR}/host/systemd/zerva.conf" DESTINATION lib/sysusers.d
          COMPONENT systemd)
  zerva_install_with_prefix(systemd "${PROJECT_SOURCE_DIR}/host/systemd/zerva@.service.in"
                            "lib/systemd/system/zerva@.service")
endfunction()
