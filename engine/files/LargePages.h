#pragma once

#include <QtCore/QtGlobal>

namespace vantoraudio::AudioEngine {

/**
 * Asks the system for large pages behind memory that has not been written to yet: filling it for the first time
 * takes half of the time then. The memory's contents stay what they are. Does nothing for less than 32 MiB, which
 * may share its pages with other memory, nor where the system has no such pages.
 */
void PreferLargePages(const void* memory, qsizetype bytes);

} // namespace vantoraudio::AudioEngine
