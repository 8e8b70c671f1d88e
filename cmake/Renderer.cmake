# What draws the waveforms. Sets VANTORAUDIO_FIRST_DEVICE, the kind of device that is tried first; the others follow
# where it fails.
set(VANTORAUDIO_RENDERER auto CACHE STRING
  "What draws the waveforms: bgfx, opengl, software, or auto, which is bgfx where it is installed and else opengl")
set_property(CACHE VANTORAUDIO_RENDERER PROPERTY STRINGS auto bgfx opengl software)

if(VANTORAUDIO_RENDERER STREQUAL "auto")
  find_package(bgfx CONFIG QUIET)
  set(VANTORAUDIO_FIRST_DEVICE OpenGL)
  # Packages without the shader compiler are of no use.
  if(bgfx_FOUND AND COMMAND bgfx_compile_shaders)
    set(VANTORAUDIO_FIRST_DEVICE Bgfx)
  endif()
elseif(VANTORAUDIO_RENDERER STREQUAL "bgfx")
  find_package(bgfx CONFIG REQUIRED)
  if(NOT COMMAND bgfx_compile_shaders)
    message(FATAL_ERROR "This bgfx was installed without its shader compiler (BGFX_BUILD_TOOLS_SHADER).")
  endif()
  set(VANTORAUDIO_FIRST_DEVICE Bgfx)
elseif(VANTORAUDIO_RENDERER STREQUAL "opengl")
  set(VANTORAUDIO_FIRST_DEVICE OpenGL)
elseif(VANTORAUDIO_RENDERER STREQUAL "software")
  set(VANTORAUDIO_FIRST_DEVICE Software)
else()
  message(FATAL_ERROR "VANTORAUDIO_RENDERER is auto, bgfx, opengl or software, not \"${VANTORAUDIO_RENDERER}\".")
endif()
message(STATUS "First drawing device: ${VANTORAUDIO_FIRST_DEVICE}")
