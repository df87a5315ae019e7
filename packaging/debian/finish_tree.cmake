# What Debian asks of the files of a package and cmake --install leaves as it is: manual pages are
# compressed, without a time so that the same page gives the same package.
file(GLOB_RECURSE pages "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share/man/*.1")
if(NOT pages)
  message(FATAL_ERROR "There are no manual pages below ${CPACK_TEMPORARY_INSTALL_DIRECTORY}.")
endif()
execute_process(COMMAND gzip -9n -- ${pages} COMMAND_ERROR_IS_FATAL ANY)
