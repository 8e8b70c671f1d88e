#pragma once

#include <QtCore/QLibraryInfo>
#include <QtCore/QVersionNumber>

/**
 * The defects of Qt that this library works around, with the versions in which each was seen and in which it was
 * looked for but not found: Qt 6.4.2 of Debian 12 and 6.8.2 of Debian 13, FFmpeg backend, PulseAudio 16 and 17.
 * The versions between them were not tried. By Qt's sources, its player and decoder were rewritten for 6.5.
 *
 * The library's workarounds ask here. In plain Qt, tst_qtdefects shows what shows reliably, and the program
 * rare_qt_defects beside it counts the rest. To drop an old Qt: delete the functions that tell of nothing newer,
 * and follow the compiler.
 */
namespace vantoraudio::AudioEngine::QtDefects {

/** Whether the Qt that runs, not the one built against, is older. */
inline bool IsBefore(int major, int minor)
{
    return QLibraryInfo::version() < QVersionNumber(major, minor);
}

/** The default is the GStreamer backend, which plays and decodes nothing, or crashes, without plug-ins that Qt
 * does not bring. The program chooses the other one, by the environment variable QT_MEDIA_BACKEND. Seen
 * in 6.4.2; 6.8.2 has no other backend than FFmpeg's. */
inline bool PrefersABackendWithoutPlugins()
{
#ifdef Q_OS_LINUX
    return IsBefore(6, 5);
#else
    return false;
#endif
}

/** QAudioDecoder sleeps for 10 ms whenever it is read while it has no buffer ready: 10 min of MP3 read as fast as
 *  it goes take 7 s instead of 1.2. Seen in 6.4.2, not in 6.8.2. */
inline bool NapsWhileDecoding()
{
    return IsBefore(6, 5);
}

/** QAudioDecoder says neither error() nor finished() of a file that it cannot open: one that is missing or empty,
 * a folder, text, a thousand random bytes under an Ogg name. Seen in 6.4.2; 6.8.2 reports an error within start().
 */
inline bool IsSilentAboutWhatItCannotDecode()
{
    return IsBefore(6, 5);
}

/** QAudioDecoder's threads now and then miss each other's wake-up, at the start or later, and stand still for
 * ever. Seen in 6.4.2, not in 6.8.2. */
inline bool MissesItsOwnSignals()
{
    return IsBefore(6, 5);
}

/** The list of output devices is not up to date. 6.4.2 notices every change but never emits
 * audioOutputsChanged(); 6.8.2 goes on listing a device that has gone until another one appears or becomes the
 * default. PulseAudio only. */
inline bool MissesDeviceChanges()
{
#ifdef Q_OS_LINUX
    return true;
#else
    return false;
#endif
}

/** The connection that all outputs use lives on the sound thread of the first player, so it ends with that one's
 * events, and it is freed under the outputs when the sound server ends. 6.4.2 hangs or crashes, 6.8.2 crashes.
 * Both look for another server only once, three seconds after that or when the program begins, and the same goes
 * for their list of devices. PulseAudio only. */
inline bool LosesTheSoundServer()
{
#ifdef Q_OS_LINUX
    return true;
#else
    return false;
#endif
}

/** A sound thread that writes between the sound server's end and the moment in which its output is taken away
 * keeps the lock of the connection for good. Whoever asks for that lock hangs: the connection's end, every later
 * output, the program's end. Seen in 6.4.2; mended in 6.8. */
inline bool KeepsItsLock()
{
    return LosesTheSoundServer() && IsBefore(6, 8);
}

/** A player that has no output plays on without sound: its position moves with the clock. Seen in 6.8.2; in 6.4.2
 * the position stands still but for a millisecond a second. */
inline bool RunsOnWithoutOutput()
{
    return !IsBefore(6, 5);
}

/** A seek is lost now and then: the running audio thread takes the clock back behind it (about one seek in a
 * hundred while playing), or, close to the end of the media, the player stands still from then on (one end in
 * thousands). Seen in 6.4.2, not in 6.8.2. */
inline bool LosesSeeks()
{
    return IsBefore(6, 5);
}

/** A playback rate holds for the source that is there when it is set; the next one plays at 1, while
 * playbackRate() tells the former rate. A change while a source plays drops what was decoded but not played yet,
 * so that the position lags behind the sound from then on, until a seek. playbackRateChanged() is never emitted.
 * Seen in 6.4.2, not in 6.8 by its sources. */
inline bool LosesThePlaybackRate()
{
    return IsBefore(6, 5);
}

/** A source is loaded in the background, and a position that is set meanwhile is lost. Seen in 6.8.2; 6.4.2 loads
 *  while the caller waits, and so do all before 6.6.3 by their sources. */
inline bool LosesSeeksWhileLoading()
{
    return !IsBefore(6, 6);
}

/** A source's name is garbled where it holds letters beyond ASCII or a percent sign. Seen in 6.4.2, not in 6.8.2.
 */
inline bool GarblesNames()
{
    return IsBefore(6, 5);
}

/** A player that is paused at the end of the media reports the end once more and stops. Seen in 6.4.2, not in
 *  6.8.2. */
inline bool ReportsTheEndTwice()
{
    return IsBefore(6, 5);
}

/** The connection to PulseAudio is freed at the program's end while its thread still reads from it: one program in
 * a hundred that ends right after its last sound crashes. Seen in 6.4.2; mended in 6.8. */
inline bool FreesItsConnectionInUse()
{
#ifdef Q_OS_LINUX
    return IsBefore(6, 8);
#else
    return false;
#endif
}

} // namespace vantoraudio::AudioEngine::QtDefects
