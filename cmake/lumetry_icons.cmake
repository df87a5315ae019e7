# lumetry_install_icons(ID SIZES pixels...)
#
# Renders the icon of an application for the sizes named and installs it, as drawn and rendered, in
# the hicolor theme. The drawings are icons/ID.svg, icons/ID-symbolic.svg and, for sizes at which the
# strokes of the first would blur, icons/ID-SIZE.svg. The target lumetry_icons renders them.
find_program(LUMETRY_RSVG_CONVERT rsvg-convert)
if(NOT LUMETRY_RSVG_CONVERT)
  message(FATAL_ERROR "The icons cannot be rendered without rsvg-convert: install librsvg2-bin.")
endif()

function(lumetry_install_icons id)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SIZES")
  set(drawings ${CMAKE_CURRENT_SOURCE_DIR}/icons)
  set(theme ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  install(FILES ${drawings}/${id}.svg DESTINATION ${theme}/scalable/apps)
  install(FILES ${drawings}/${id}-symbolic.svg DESTINATION ${theme}/symbolic/apps)
  set(pictures)
  foreach(size IN LISTS arg_SIZES)
    set(drawing ${drawings}/${id}-${size}.svg)
    if(NOT EXISTS ${drawing})
      set(drawing ${drawings}/${id}.svg)
    endif()
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/icons/${size}x${size})
    file(MAKE_DIRECTORY ${folder})
    add_custom_command(OUTPUT ${folder}/${id}.png
      COMMAND ${LUMETRY_RSVG_CONVERT} --width ${size} --height ${size}
              --output ${folder}/${id}.png ${drawing}
      DEPENDS ${drawing} VERBATIM)
    install(FILES ${folder}/${id}.png DESTINATION ${theme}/${size}x${size}/apps)
    list(APPEND pictures ${folder}/${id}.png)
  endforeach()
  add_custom_target(lumetry_icons ALL DEPENDS ${pictures})
endfunction()
