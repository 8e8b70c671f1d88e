#include "engine/FFmpegFunctions.h"

#include <QtCore/QDebug>
#include <QtCore/QLibrary>

namespace vantoraudio::AudioEngine {

namespace {

void Complain(const QLibrary& library, const char* missing)
{
    qWarning() << "Files cannot be looked into:" << missing << "is missing in" << library.fileName()
               << library.errorString();
}

template<typename Function>
bool Fetch(QLibrary& library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    if (function == nullptr) {
        Complain(library, name);
    }
    return function != nullptr;
}

/** Qt hands over whatever version somebody else in the program has loaded before under the same name. */
bool IsVersion(QLibrary& library, const char* versionFunction, unsigned major)
{
    unsigned (*version)() = nullptr;
    if (!Fetch(library, versionFunction, version)) {
        return false;
    }
    if (AV_VERSION_MAJOR(version()) != major) {
        Complain(library, "its proper version");
        return false;
    }
    return true;
}

bool FetchFormatFunctions(QLibrary& library, FFmpegFunctions& to)
{
    return Fetch(library, "avformat_alloc_context", to.avformat_alloc_context) &&
           Fetch(library, "avformat_free_context", to.avformat_free_context) &&
           Fetch(library, "avformat_open_input", to.avformat_open_input) &&
           Fetch(library, "avformat_close_input", to.avformat_close_input) &&
           Fetch(library, "avformat_find_stream_info", to.avformat_find_stream_info) &&
           Fetch(library, "av_read_frame", to.av_read_frame);
}

bool FetchCodecFunctions(QLibrary& library, FFmpegFunctions& to)
{
    return Fetch(library, "avcodec_alloc_context3", to.avcodec_alloc_context3) &&
           Fetch(library, "avcodec_free_context", to.avcodec_free_context) &&
           Fetch(library, "avcodec_parameters_to_context", to.avcodec_parameters_to_context) &&
           Fetch(library, "avcodec_find_decoder", to.avcodec_find_decoder) &&
           Fetch(library, "avcodec_open2", to.avcodec_open2) &&
           Fetch(library, "avcodec_send_packet", to.avcodec_send_packet) &&
           Fetch(library, "avcodec_receive_frame", to.avcodec_receive_frame) &&
           Fetch(library, "av_packet_alloc", to.av_packet_alloc) &&
           Fetch(library, "av_packet_free", to.av_packet_free) &&
           Fetch(library, "av_packet_unref", to.av_packet_unref);
}

} // namespace

std::optional<FFmpegFunctions> LoadFFmpegFunctions(const FFmpegLibraries& libraries)
{
    QLibrary format(libraries.format, int(libraries.formatVersion));
    QLibrary codec(libraries.codec, int(libraries.codecVersion));
    FFmpegFunctions functions;
    const bool hasAll = IsVersion(format, "avformat_version", libraries.formatVersion) &&
                        IsVersion(codec, "avcodec_version", libraries.codecVersion) &&
                        FetchFormatFunctions(format, functions) && FetchCodecFunctions(codec, functions);
    return hasAll ? std::optional(functions) : std::nullopt;
}

const FFmpegFunctions* FFmpeg()
{
    static const std::optional<FFmpegFunctions> functions = LoadFFmpegFunctions();
    return functions ? &*functions : nullptr;
}

} // namespace vantoraudio::AudioEngine
