#pragma once

#include "engine/samples/FFmpegPointers.h"

#include <QtCore/QByteArray>

namespace vantoraudio::AudioEngine {

/**
 * Turns the frames that FFmpeg decodes from a stream into interleaved samples of one format, by FFmpeg's
 * resampler: the way of AudioImporter. One resampler serves the whole stream, so that nothing clicks between
 * frames. Where the stream changes its format, the rest of what came before is drained and the new part follows it
 * without a gap.
 */
class FrameResampler
{
public:
    struct Target
    {
        int sampleRate = 0;
        /** AV_SAMPLE_FMT_FLT or AV_SAMPLE_FMT_S16. */
        AVSampleFormat sampleFormat = AV_SAMPLE_FMT_NONE;
        /** 1 or 2 channels; their places are those of the first frame, so that nothing is mixed without need. */
        AVChannelLayout layout = {};
    };

    explicit FrameResampler(const Target& target) : m_target(target) {}

    /** The layout that frames such as this one are given out in. */
    static AVChannelLayout OutputLayoutFor(const AVFrame& frame);

    /** Appends what comes out for a part of `frame`, from its sample `start` on, and moves `start` behind it:
     * however long the frame is and however far the rates are apart, little comes at once. False when FFmpeg
     * cannot convert such frames. */
    [[nodiscard]] bool Convert(const AVFrame& frame, int& start, QByteArray& samples);
    /** Appends what is left at the end. */
    [[nodiscard]] bool Drain(QByteArray& samples);

    int BytesPerFrame() const;

private:
    bool FitsTo(const AVFrame& frame) const;
    bool StartAgain(const AVFrame& frame);
    bool Pass(const uint8_t* const* planes, int frames, QByteArray& samples);

    Target m_target;
    ResamplerPointer m_resampler;
    int m_sampleRate = 0;
    int m_sampleFormat = AV_SAMPLE_FMT_NONE;
    AVChannelLayout m_layout = {};
};

} // namespace vantoraudio::AudioEngine
