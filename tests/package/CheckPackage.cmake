cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGV}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_version_in output)
  if(NOT output MATCHES "1\\.122\\.2")
    message(FATAL_ERROR "the program did not print the library's version:\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/first place")
file(RENAME "${WORK_DIR}/first place" "${WORK_DIR}/moved")
set(prefix "${WORK_DIR}/moved")

set(header_dir "${prefix}/include/vantorAudioEngine")
foreach(header IN ITEMS WavFile Decoder AudioFileInfo AudioImporter AudioPlayer HardwareManager BGFXWaveformWidget
    AudioPlayerWidget AudioPlayerActions Version Export)
  if(NOT EXISTS "${header_dir}/${header}.h")
    message(FATAL_ERROR "${header}.h is not installed")
  endif()
endforeach()

# The README's example is compiled as it stands there.
file(READ "${SOURCE_DIR}/README.md" readme)
if(NOT readme MATCHES "```cpp\n([^`]*)```")
  message(FATAL_ERROR "the README has no C++ example")
endif()
file(WRITE "${WORK_DIR}/readme.cpp" "${CMAKE_MATCH_1}")

set(flags "")
if(SANITIZERS)
  set(flags "-fsanitize=${SANITIZERS}")
endif()
run("${CMAKE_COMMAND}" -S "${PROGRAM_DIR}" -B "${WORK_DIR}/build" -G "${GENERATOR}"
  "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_FLAGS=${flags}"
  "-DREADME_EXAMPLE=${WORK_DIR}/readme.cpp")
run("${CMAKE_COMMAND}" --build "${WORK_DIR}/build")
run("${WORK_DIR}/build/outside")
expect_version_in("${output}")

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
run(pkg-config --cflags --libs vantorAudioEngine)
separate_arguments(package_flags UNIX_COMMAND "${output}")
separate_arguments(flags UNIX_COMMAND "${flags}")
run("${CXX_COMPILER}" -std=c++20 -fPIC ${flags} "${PROGRAM_DIR}/outside.cpp" -o "${WORK_DIR}/outside-pkgconfig"
  ${package_flags})
set(ENV{LD_LIBRARY_PATH} "${prefix}/${LIBDIR}")
run("${WORK_DIR}/outside-pkgconfig")
expect_version_in("${output}")
