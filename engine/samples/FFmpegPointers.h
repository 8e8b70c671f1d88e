#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
}

/** FFmpeg's objects with an owner. */
namespace vantoraudio::AudioEngine {

/** For functions that take the address of the pointer and set it to null. */
template<auto release>
struct ReleaseBy
{
    template<typename Object>
    void operator()(Object* object) const
    {
        release(&object);
    }
};

/** Opened by avio_open2(). */
using InputPointer = std::unique_ptr<AVIOContext, ReleaseBy<&avio_closep>>;
using FormatPointer = std::unique_ptr<AVFormatContext, ReleaseBy<&avformat_close_input>>;
using CodecPointer = std::unique_ptr<AVCodecContext, ReleaseBy<&avcodec_free_context>>;
using PacketPointer = std::unique_ptr<AVPacket, ReleaseBy<&av_packet_free>>;
using FramePointer = std::unique_ptr<AVFrame, ReleaseBy<&av_frame_free>>;
using ResamplerPointer = std::unique_ptr<SwrContext, ReleaseBy<&swr_free>>;

} // namespace vantoraudio::AudioEngine
