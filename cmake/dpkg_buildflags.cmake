# A toolchain file: compiles and links with the flags that Debian builds its packages with, all of its
# hardening among them.
foreach(flag CPPFLAGS CFLAGS CXXFLAGS LDFLAGS)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env DEB_BUILD_MAINT_OPTIONS=hardening=+all dpkg-buildflags --get ${flag}
    OUTPUT_VARIABLE lumetry_dpkg_${flag} OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
set(CMAKE_C_FLAGS_INIT "${lumetry_dpkg_CPPFLAGS} ${lumetry_dpkg_CFLAGS}")
set(CMAKE_CXX_FLAGS_INIT "${lumetry_dpkg_CPPFLAGS} ${lumetry_dpkg_CXXFLAGS}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${lumetry_dpkg_LDFLAGS}")
# dpkg of Debian 12 does not know the processor's check of where jumps land yet.
execute_process(COMMAND dpkg-architecture -q DEB_HOST_ARCH
  OUTPUT_VARIABLE lumetry_architecture OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(lumetry_architecture STREQUAL "amd64")
  string(APPEND CMAKE_C_FLAGS_INIT " -fcf-protection")
  string(APPEND CMAKE_CXX_FLAGS_INIT " -fcf-protection")
endif()
