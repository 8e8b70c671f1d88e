# Public headers stand in one folder and are included as <vantorAudioEngine/Name.h>, inside the project as well as by
# its users.
set(VANTORAUDIO_PUBLIC_INCLUDE_DIR "${PROJECT_SOURCE_DIR}/include")

# vantor_add_folder(NAME SOURCES file... [PUBLIC_HEADERS name...] [LINK library...] [PRIVATE_LINK library...])
#
# Makes the object library vantor_NAME of the current folder. Code includes the project's private headers by
# their path from the project's root, so that every include line shows which folder it reaches into.
function(vantor_add_folder name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;PUBLIC_HEADERS;LINK;PRIVATE_LINK")
  set(target vantor_${name})
  list(TRANSFORM arg_PUBLIC_HEADERS PREPEND "${VANTORAUDIO_PUBLIC_INCLUDE_DIR}/vantorAudioEngine/")
  add_library(${target} OBJECT ${arg_SOURCES} ${arg_PUBLIC_HEADERS})
  target_link_libraries(${target} PUBLIC ${arg_LINK} PRIVATE vantor_settings ${arg_PRIVATE_LINK})
  target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}" "${VANTORAUDIO_PUBLIC_INCLUDE_DIR}")
  target_compile_definitions(${target} PRIVATE VANTORAUDIOENGINE_BUILD)
endfunction()
