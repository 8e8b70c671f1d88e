# The relocatable package: library, headers, CMake package files and a pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/vantorAudioEngine")

install(TARGETS vantorAudioEngine EXPORT vantorAudioEngineTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(DIRECTORY "${VANTORAUDIO_PUBLIC_INCLUDE_DIR}/vantorAudioEngine" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
  FILES_MATCHING PATTERN "*.h")
install(EXPORT vantorAudioEngineTargets NAMESPACE vantoraudio:: DESTINATION "${package_dir}")

configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/vantorAudioEngineConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/vantorAudioEngineConfig.cmake"
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/vantorAudioEngineConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/vantorAudioEngineConfig.cmake"
  "${PROJECT_BINARY_DIR}/vantorAudioEngineConfigVersion.cmake"
  DESTINATION "${package_dir}")

# The prefix is written relative to the file's own place, so that the installed tree may be moved.
file(RELATIVE_PATH pkgconfig_to_prefix
  "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(
  "${CMAKE_CURRENT_LIST_DIR}/vantorAudioEngine.pc.in"
  "${PROJECT_BINARY_DIR}/vantorAudioEngine.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/vantorAudioEngine.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
