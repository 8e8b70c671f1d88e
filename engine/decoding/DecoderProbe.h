#pragma once

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QString>

/** What FFmpeg sees in a file without decoding all of it. */
class Decoder::Probe
{
public:
    /** Whether there is an audio stream whose beginning can be decoded. */
    static bool HoldsAudio(const QString& path);

    /** Whether the number of channels changes in the middle of the stream, as far as the packets show it without
     *  being decoded. Qt's decoder crashes because of it, on a thread of its own. */
    static bool ChangesChannelCount(const QString& path);

    /** In milliseconds; 0 when it cannot be found. */
    static int Duration(const QString& path);

private:
    class OpenAudio;
};
