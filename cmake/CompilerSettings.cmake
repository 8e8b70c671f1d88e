# What every translation unit of the project is compiled with. Nothing of it reaches an embedding program.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(vantor_settings INTERFACE)
target_compile_definitions(vantor_settings INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_URL_CAST_FROM_STRING
  QT_NO_KEYWORDS
  QT_NO_FOREACH
  QT_USE_QSTRINGBUILDER
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(MSVC)
  target_compile_options(vantor_settings INTERFACE /W4 $<$<BOOL:${VANTORAUDIO_WARNINGS_AS_ERRORS}>:/WX>)
else()
  # The waiting macros in Qt 6.8's own test header narrow a number wherever they are used.
  set(warns_of_conversions TRUE)
  if(Qt6_VERSION VERSION_GREATER_EQUAL 6.8)
    set(warns_of_conversions "$<NOT:$<IN_LIST:Qt6::Test,$<TARGET_PROPERTY:LINK_LIBRARIES>>>")
  endif()
  # Multiplying and adding in one step would round differently: samples are to be the same on every processor.
  target_compile_options(vantor_settings INTERFACE -ffp-contract=off
    -Wall -Wextra -Wshadow $<$<BOOL:${warns_of_conversions}>:-Wconversion>
    -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${VANTORAUDIO_WARNINGS_AS_ERRORS}>:-Werror>)
endif()

if(VANTORAUDIO_SANITIZERS)
  add_compile_options(-fsanitize=${VANTORAUDIO_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VANTORAUDIO_SANITIZERS})
endif()
