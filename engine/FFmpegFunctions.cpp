#include "engine/FFmpegFunctions.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>

#ifdef Q_OS_LINUX
#    include <dlfcn.h>
#else
#    include <QtCore/QLibrary>
#endif

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::AudioEngine {

namespace {

#ifdef Q_OS_LINUX

/** Stays loaded until the program ends. Loaded by this library itself instead of by way of Qt, so that it is
 * searched for where a linked one would be. */
class Library
{
public:
    Library(const QString& name, unsigned version)
        : m_handle(dlopen(QFile::encodeName(u"lib%1.so.%2"_s.arg(name).arg(version)).constData(), RTLD_LAZY))
    {
    }

    void* Find(const char* function) const { return m_handle != nullptr ? dlsym(m_handle, function) : nullptr; }
    QString Error() const { return QString::fromLocal8Bit(dlerror()); }

private:
    void* const m_handle;
};

#else

class Library
{
public:
    Library(const QString& name, unsigned version) : m_library(name, int(version)) {}

    void* Find(const char* function) { return reinterpret_cast<void*>(m_library.resolve(function)); }
    QString Error() const { return m_library.errorString(); }

private:
    QLibrary m_library;
};

#endif

template<typename Function>
bool Fetch(Library& library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(library.Find(name));
    if (function == nullptr) {
        qWarning() << "Files cannot be looked into:" << library.Error();
    }
    return function != nullptr;
}

bool FetchFormatFunctions(Library&& library, FFmpegFunctions& to)
{
    return Fetch(library, "avformat_alloc_context", to.avformat_alloc_context) &&
           Fetch(library, "avformat_free_context", to.avformat_free_context) &&
           Fetch(library, "avformat_open_input", to.avformat_open_input) &&
           Fetch(library, "avformat_close_input", to.avformat_close_input) &&
           Fetch(library, "avformat_find_stream_info", to.avformat_find_stream_info) &&
           Fetch(library, "av_read_frame", to.av_read_frame);
}

bool FetchCodecFunctions(Library&& library, FFmpegFunctions& to)
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
    FFmpegFunctions functions;
    const bool hasAll = FetchFormatFunctions({libraries.format, libraries.formatVersion}, functions) &&
                        FetchCodecFunctions({libraries.codec, libraries.codecVersion}, functions);
    return hasAll ? std::optional(functions) : std::nullopt;
}

const FFmpegFunctions* FFmpeg()
{
    static const std::optional<FFmpegFunctions> functions = LoadFFmpegFunctions();
    return functions ? &*functions : nullptr;
}

} // namespace vantoraudio::AudioEngine
