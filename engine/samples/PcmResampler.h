#pragma once

#include <QtCore/QByteArray>

#include <memory>
#include <optional>

namespace vantoraudio::AudioEngine {

/** One side of a conversion: interleaved samples. */
struct PcmLayout
{
    /** FFmpeg's number of the sample format. */
    int sampleFormat = -1;
    /** 1 or 2. */
    int channelCount = 0;
    int sampleRate = 0;
};

/**
 * Turns blocks of PCM into another sample format, channel count and rate, by FFmpeg's resampler: the way of
 * WavFile::Convert(). What fails is reported on the standard error stream.
 */
class PcmResampler
{
public:
    /** The source comes in blocks of `blockFrames` frames; below 1, or where a block becomes more than can be
     *  counted, the resampler cannot be made ready. */
    PcmResampler(const PcmLayout& source, const PcmLayout& target, int blockFrames);
    ~PcmResampler();
    Q_DISABLE_COPY_MOVE(PcmResampler)

    bool IsReady() const;

    /** How many source frames to hand over at once: as many as announced, or fewer where each of them becomes so
     *  many that a whole block would take all memory. */
    int BlockFrames() const;

    /** The result of the next `frames` source frames, which may be empty while the resampler collects more. It
     *  stays valid until the next call. Nothing after a failure, which ends the conversion. */
    std::optional<QByteArrayView> Convert(const char* source, int frames);
    /** What is still inside when the source has ended. */
    std::optional<QByteArrayView> Drain();

private:
    class Data;
    std::unique_ptr<Data> m_data;
};

} // namespace vantoraudio::AudioEngine
