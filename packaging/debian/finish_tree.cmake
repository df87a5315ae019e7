# What Debian asks of the files of a package and cmake --install leaves as it is: manual pages and
# the changelog are compressed, without a time so that the same file gives the same package.
file(GLOB_RECURSE readable
  ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share/man/*.1
  ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share/doc/*/changelog)
if(NOT readable)
  message(FATAL_ERROR
    "There is nothing to compress below ${CPACK_TEMPORARY_INSTALL_DIRECTORY}.")
endif()
execute_process(COMMAND gzip -9n -- ${readable} COMMAND_ERROR_IS_FATAL ANY)
