# Targets of this project. A header is found only through the target whose folder holds it, so that
# a folder can include just what its target links: each library gets an include directory of its
# own with nothing in it but its headers.

add_library(lumetry_options INTERFACE)
target_compile_options(lumetry_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Werror)
if(LUMETRY_SANITIZE)
  target_compile_options(lumetry_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(lumetry_options INTERFACE -fsanitize=address,undefined)
endif()
if(LUMETRY_FUZZ)
  target_compile_options(lumetry_options INTERFACE -fsanitize=fuzzer-no-link -O1)
endif()

# lumetry_library(NAME USES target... [PRIVATELY target...] [ROOT folder])
#
# A static library of all sources of the calling folder. Its headers are included by their path
# below ROOT (by default the project's src).
function(lumetry_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "ROOT" "USES;PRIVATELY")
  if(NOT arg_ROOT)
    set(arg_ROOT ${PROJECT_SOURCE_DIR}/src)
  endif()
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  file(RELATIVE_PATH folder ${arg_ROOT} ${CMAKE_CURRENT_SOURCE_DIR})

  set(include_root ${PROJECT_BINARY_DIR}/include/${name})
  file(REMOVE_RECURSE ${include_root})
  file(MAKE_DIRECTORY ${include_root}/${folder})
  foreach(header IN LISTS headers)
    get_filename_component(file ${header} NAME)
    file(CREATE_LINK ${header} ${include_root}/${folder}/${file} SYMBOLIC)
  endforeach()

  if(sources)
    add_library(${name} STATIC ${sources} ${headers})
    target_include_directories(${name} PUBLIC ${include_root})
    target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE ${arg_PRIVATELY} lumetry_options)
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${include_root})
    target_link_libraries(${name} INTERFACE ${arg_USES})
  endif()
endfunction()

# lumetry_program(NAME USES target...): a program of all sources of the calling folder.
function(lumetry_program name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "USES")
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp
                                      ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE ${arg_USES} lumetry_options)
endfunction()

# lumetry_test(NAME LABEL label USES target... [PROPERTIES ...]): a GoogleTest program of all
# sources of the calling folder, its cases registered with CTest. LABEL sets what CTest knows the
# cases by.
function(lumetry_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "LABEL" "USES;PROPERTIES")
  lumetry_program(${name} USES ${arg_USES} GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS ${arg_LABEL} ${arg_PROPERTIES})
endfunction()

# lumetry_wayland_protocols(NAME protocol.xml...)
#
# A static library that speaks Wayland protocols: for each file a header PROTOCOL-client-protocol.h,
# written by wayland-scanner, beside libwayland-client itself. They are written right away, so that
# what is not built can be checked, too.
function(lumetry_wayland_protocols name)
  pkg_get_variable(scanner wayland-scanner wayland_scanner)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${name})
  file(MAKE_DIRECTORY ${folder})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ARGN})
  set(sources)
  foreach(protocol IN LISTS ARGN)
    get_filename_component(stem ${protocol} NAME_WE)
    set(header ${folder}/${stem}-client-protocol.h)
    set(source ${folder}/${stem}-protocol.c)
    if(${protocol} IS_NEWER_THAN ${source})
      execute_process(COMMAND ${scanner} --strict client-header ${protocol} ${header}
        COMMAND_ERROR_IS_FATAL ANY)
      execute_process(COMMAND ${scanner} --strict private-code ${protocol} ${source}
        COMMAND_ERROR_IS_FATAL ANY)
    endif()
    list(APPEND sources ${header} ${source})
  endforeach()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} SYSTEM PUBLIC ${folder})
  target_link_libraries(${name} PUBLIC PkgConfig::wayland_client)
endfunction()
