#pragma once

/** What screen readers learn of the waveform view. GUI thread only. */
namespace vantoraudio::vantorAudioEngine::UI {

/** Lets screen readers read position, length and selection of every view; further calls do nothing. */
void InstallWaveformAccessible();

} // namespace vantoraudio::vantorAudioEngine::UI
