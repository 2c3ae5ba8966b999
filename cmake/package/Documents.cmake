# Run by CPack when the files of each package are together and before they are packed: adds what a
# Debian package has to have, and compresses what it has to have compressed. Nothing has a date, so
# that the packages of both word sizes have the same files.
function(zerva_compress file)
  execute_process(COMMAND gzip -9nf "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(pair zerva=zerva development=zerva-dev examples=zerva-examples)
  string(REGEX MATCH "^[a-z]+" group "${pair}")
  string(REGEX MATCH "[a-z-]+$" package "${pair}")
  set(usr "${CPACK_TEMPORARY_DIRECTORY}/${group}${CPACK_INSTALL_PREFIX}")
  set(documents "${usr}/share/doc/${package}")
  file(MAKE_DIRECTORY "${documents}")
  configure_file("${CPACK_ZERVA_SOURCE}/cmake/package/copyright" "${documents}/copyright" COPYONLY)
  configure_file("${CPACK_ZERVA_SOURCE}/CHANGELOG.md" "${documents}/changelog" COPYONLY)
  file(CHMOD "${documents}/copyright" "${documents}/changelog"
       PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  zerva_compress("${documents}/changelog")
  file(GLOB pages "${usr}/share/man/man*/*.[1-9]")
  foreach(page IN LISTS pages)
    zerva_compress("${page}")
  endforeach()
endforeach()
