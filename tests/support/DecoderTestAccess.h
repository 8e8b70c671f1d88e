#pragma once

#include <vantorAudioEngine/Decoder.h>

/** The private members of Decoder, for tests. */
class DecoderTestAccess
{
public:
    static int GetAudioCodecContext(AVFormatContext* format, AVCodecContext* codec, int& streamIndex,
                                    const QString& path)
    {
        return Decoder::GetAudioCodecContext(format, codec, streamIndex, path);
    }
    static int WriteHeader(QFile& file, int dataSize, int sampleRate, int channelCount)
    {
        return Decoder::WriteHeader(file, dataSize, sampleRate, channelCount);
    }
};
