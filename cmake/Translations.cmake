# Embeds translations in a library or program. Without Qt's lrelease the build goes on, and the texts stay English.
get_target_property(qmake Qt6::qmake LOCATION)
cmake_path(GET qmake PARENT_PATH qt_programs)
find_program(VANTORAUDIO_LRELEASE lrelease HINTS "${qt_programs}" /usr/lib/qt6/bin)
if(NOT VANTORAUDIO_LRELEASE)
  message(STATUS "lrelease is not here: building without translations")
endif()

# vantor_add_translations(TARGET NAME)
#
# Compiles translations/NAME_*.ts of the current folder and embeds what translations/NAME.qrc lists.
function(vantor_add_translations target name)
  if(NOT VANTORAUDIO_LRELEASE)
    return()
  endif()
  set(built "${CMAKE_CURRENT_BINARY_DIR}/translations")
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/translations/${name}_*.ts")
  foreach(source IN LISTS sources)
    cmake_path(GET source STEM language)
    add_custom_command(OUTPUT "${built}/${language}.qm"
      COMMAND "${VANTORAUDIO_LRELEASE}" -silent "${source}" -qm "${built}/${language}.qm"
      DEPENDS "${source}"
      VERBATIM)
  endforeach()
  configure_file("translations/${name}.qrc" "${built}/${name}.qrc" COPYONLY)
  target_sources(${target} PRIVATE "${built}/${name}.qrc")
endfunction()
