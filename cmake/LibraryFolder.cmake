# Public headers are included as <vantorAudioEngine/Name.h>, inside the project as well as by its users. Here a
# forwarding header stands under that name; the installed package holds the header itself.
set(VANTORAUDIO_PUBLIC_INCLUDE_DIR "${PROJECT_BINARY_DIR}/include")
set_property(GLOBAL PROPERTY VANTORAUDIO_PUBLIC_HEADERS "")

# vantor_add_folder(NAME SOURCES file... [PUBLIC_HEADERS file...] [LINK library...] [PRIVATE_LINK library...])
#
# Makes the object library vantor_NAME of the current folder. Code includes the project's private headers by
# their path from the project's root, so that every include line shows which folder it reaches into.
function(vantor_add_folder name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;PUBLIC_HEADERS;LINK;PRIVATE_LINK")
  set(target vantor_${name})
  add_library(${target} OBJECT ${arg_SOURCES} ${arg_PUBLIC_HEADERS})
  target_link_libraries(${target} PUBLIC ${arg_LINK} PRIVATE vantor_settings ${arg_PRIVATE_LINK})
  target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}" "${VANTORAUDIO_PUBLIC_INCLUDE_DIR}")
  target_compile_definitions(${target} PRIVATE VANTORAUDIOENGINE_BUILD)

  foreach(header IN LISTS arg_PUBLIC_HEADERS)
    get_filename_component(file_name "${header}" NAME)
    set(path "${CMAKE_CURRENT_SOURCE_DIR}/${header}")
    file(CONFIGURE OUTPUT "${VANTORAUDIO_PUBLIC_INCLUDE_DIR}/vantorAudioEngine/${file_name}"
      CONTENT "#include \"@path@\"\n" @ONLY)
    set_property(GLOBAL APPEND PROPERTY VANTORAUDIO_PUBLIC_HEADERS "${path}")
  endforeach()
endfunction()
