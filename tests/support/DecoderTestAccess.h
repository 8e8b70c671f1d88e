#pragma once

#include "engine/decoding/DecoderRun.h"

#include <vantorAudioEngine/Decoder.h>

/** The private members of Decoder, for tests. */
class DecoderTestAccess
{
public:
    /** As Decoder::Convert(), but decodes with what `makeSource` makes. */
    template<typename SourceMaker>
    static WavFile::AudioEngineReturnValue Convert(const QString& inPath, const QString& outPath, int sampleRate,
                                                   const SourceMaker& makeSource)
    {
        return Decoder::Run::Convert(inPath, outPath, sampleRate, makeSource);
    }
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
