#pragma once

#include <vantorAudioEngine/Export.h>

#include <QtCore/QString>

namespace vantoraudio::AudioEngine {

/** The version of the loaded library, in this order: patch, minor, major. Any thread. */
VANTORAUDIOENGINE_EXPORT void libVersion(int& patch, int& minor, int& major);

/** The version of the loaded library as text: major, minor and patch with points between them. Any thread. */
VANTORAUDIOENGINE_EXPORT QString libVersionString();

} // namespace vantoraudio::AudioEngine
