# cpack makes a Debian package of what is installed.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumetry)
set(CPACK_PACKAGE_VENDOR Lumetry)
set(CPACK_PACKAGE_CONTACT "The Lumetry authors <authors@lumetry.app>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Measures the user interface of any application on the screen")
set(CPACK_PACKAGE_DESCRIPTION
"Inspect mode outlines the element under the pointer and says what it is: size,
font, colours, corner radius, padding, gaps and contrast. While Alt is held, it
measures the distance between two elements.
.
The program lumetry lives in the tray; lumetry-measure prints the same
measurements for scripts, and lumetry-audit says what is wrong with a whole
window. Needs an X11 session, or Plasma on Wayland, with accessibility switched
on.")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/finish_tree.cmake)
# Of folders; without it they follow the umask of whoever builds the package.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS at-spi2-core)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-inter, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://lumetry.app)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

install(FILES debian/copyright debian/changelog DESTINATION ${CMAKE_INSTALL_DOCDIR})
include(CPack)
