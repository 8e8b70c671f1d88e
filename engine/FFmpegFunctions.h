#pragma once

#include <QtCore/QString>

#include <optional>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace vantoraudio::AudioEngine {

/** The libraries that look into files, under their names without prefix and ending. They must be of the very
 *  version whose headers were compiled in. */
struct FFmpegLibraries
{
    QString format = QStringLiteral("avformat");
    unsigned formatVersion = LIBAVFORMAT_VERSION_MAJOR;
    QString codec = QStringLiteral("avcodec");
    unsigned codecVersion = LIBAVCODEC_VERSION_MAJOR;
};

/**
 * What looking into files needs of FFmpeg, under FFmpeg's own names.
 *
 * These libraries are loaded at the first look instead of being linked: they bring a hundred others along, and
 * every program would wait for them at its start, longer than for everything else together, though it may never
 * decode.
 */
struct FFmpegFunctions
{
    decltype(&::avformat_alloc_context) avformat_alloc_context = nullptr;
    decltype(&::avformat_free_context) avformat_free_context = nullptr;
    decltype(&::avformat_open_input) avformat_open_input = nullptr;
    decltype(&::avformat_close_input) avformat_close_input = nullptr;
    decltype(&::avformat_find_stream_info) avformat_find_stream_info = nullptr;
    decltype(&::av_read_frame) av_read_frame = nullptr;

    decltype(&::avcodec_alloc_context3) avcodec_alloc_context3 = nullptr;
    decltype(&::avcodec_free_context) avcodec_free_context = nullptr;
    decltype(&::avcodec_parameters_to_context) avcodec_parameters_to_context = nullptr;
    decltype(&::avcodec_find_decoder) avcodec_find_decoder = nullptr;
    decltype(&::avcodec_open2) avcodec_open2 = nullptr;
    decltype(&::avcodec_send_packet) avcodec_send_packet = nullptr;
    decltype(&::avcodec_receive_frame) avcodec_receive_frame = nullptr;
    decltype(&::av_packet_alloc) av_packet_alloc = nullptr;
    decltype(&::av_packet_free) av_packet_free = nullptr;
    decltype(&::av_packet_unref) av_packet_unref = nullptr;
};

/** Nothing, and a warning, when a library or one of its functions is missing. What was loaded stays so until the
 *  program ends. */
std::optional<FFmpegFunctions> LoadFFmpegFunctions(const FFmpegLibraries& libraries = {});

/** Loaded by the first call in the program, on any thread. Null when that failed; it is not tried again. */
const FFmpegFunctions* FFmpeg();

} // namespace vantoraudio::AudioEngine
