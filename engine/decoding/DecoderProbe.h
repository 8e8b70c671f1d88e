#pragma once

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QString>

/** What FFmpeg sees in a file without decoding all of it. */
class Decoder::Probe
{
public:
    /** Whether there is an audio stream whose beginning can be decoded. */
    static bool HoldsAudio(const QString& path);

    /**
     * Whether all of the file can be read, and the number of channels stays the same, as far as the packets show
     * it without being decoded. To Qt's decoder a read error is the end of the file, and it crashes, on a thread
     * of its own, because of channels that change.
     */
    static bool CanBeDecodedWhole(const QString& path);

    /** In milliseconds; 0 when it cannot be found. */
    static int Duration(const QString& path);

private:
    class OpenAudio;
};
