#include "engine/decoding/AudioStream.h"
#include "engine/decoding/ImportedWav.h"
#include "engine/wav/WavHeader.h"

#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/AudioImporter.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSharedData>

#include <cmath>

namespace vantoraudio::AudioEngine {

struct AudioFileFacts : QSharedData
{
    QString path;
    QString container;
    QString codec;
    int sampleRate = 0;
    int channelCount = 0;
    int bitsPerSample = 0;
    ImportLength length;
    QString title;
    QString artist;
    AudioFileInfo::Problem problem = AudioFileInfo::Problem::NotFound;
};

namespace {

QString EntryOf(const AVDictionary* entries, const char* key)
{
    const AVDictionaryEntry* entry = av_dict_get(entries, key, nullptr, 0);
    return entry == nullptr ? QString() : QString::fromUtf8(entry->value);
}

/** Some containers describe the whole file, Ogg its streams. */
QString EntryOf(const AudioStream& stream, const char* key)
{
    const QString ofFile = EntryOf(stream.Format().metadata, key);
    return ofFile.isEmpty() ? EntryOf(stream.Stream().metadata, key) : ofFile;
}

QString CodecNameOf(AVCodecID codec)
{
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(codec);
    if (descriptor == nullptr) {
        return {};
    }
    return QString::fromUtf8(descriptor->long_name != nullptr ? descriptor->long_name : descriptor->name);
}

int BitsOf(const AVCodecParameters& parameters)
{
    return parameters.bits_per_raw_sample > 0 ? parameters.bits_per_raw_sample
                                              : av_get_exact_bits_per_sample(parameters.codec_id);
}

void Describe(const AudioStream& stream, AudioFileFacts& facts)
{
    const AVCodecParameters& parameters = *stream.Stream().codecpar;
    facts.container = QString::fromUtf8(stream.Format().iformat->long_name);
    facts.codec = CodecNameOf(parameters.codec_id);
    facts.sampleRate = qMax(0, parameters.sample_rate);
    facts.channelCount = qMax(0, parameters.ch_layout.nb_channels);
    facts.bitsPerSample = BitsOf(parameters);
    facts.length = {stream.Duration(), stream.IsDurationCertain()};
    facts.title = EntryOf(stream, "title");
    facts.artist = EntryOf(stream, "artist");
}

} // namespace

AudioFileInfo::AudioFileInfo() : m_facts(new AudioFileFacts) {}

AudioFileInfo::AudioFileInfo(const AudioFileInfo& other) = default;

AudioFileInfo& AudioFileInfo::operator=(const AudioFileInfo& other) = default;

AudioFileInfo::~AudioFileInfo() = default;

AudioFileInfo AudioFileInfo::Probe(const QString& path)
{
    AudioFileInfo info;
    info.m_facts->path = path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
    AudioStream stream(path);
    stream.CheckFirstPacket();
    info.m_facts->problem = stream.GetProblem();
    if (stream.HasStream()) {
        Describe(stream, *info.m_facts);
    }
    return info;
}

QString AudioFileInfo::GetPath() const
{
    return m_facts->path;
}

QString AudioFileInfo::GetContainer() const
{
    return m_facts->container;
}

QString AudioFileInfo::GetCodec() const
{
    return m_facts->codec;
}

int AudioFileInfo::GetSampleRate() const
{
    return m_facts->sampleRate;
}

int AudioFileInfo::GetChannelCount() const
{
    return m_facts->channelCount;
}

int AudioFileInfo::GetBitsPerSample() const
{
    return m_facts->bitsPerSample;
}

double AudioFileInfo::GetDuration() const
{
    return m_facts->length.duration;
}

QString AudioFileInfo::GetTitle() const
{
    return m_facts->title;
}

QString AudioFileInfo::GetArtist() const
{
    return m_facts->artist;
}

AudioFileInfo::Problem AudioFileInfo::GetProblem() const
{
    return m_facts->problem;
}

QString AudioFileInfo::GetProblemText() const
{
    return TextOf(m_facts->problem, m_facts->path);
}

qint64 AudioFileInfo::GetImportedSize(const ImportOptions& options) const
{
    QAudioFormat format;
    format.setSampleRate(options.sampleRate > 0 ? options.sampleRate : m_facts->sampleRate);
    format.setChannelCount(qMin(m_facts->channelCount, 2));
    format.setSampleFormat(FirstSampleFormat(options, format, m_facts->length));
    const double size = m_facts->length.DataSize(format);
    // Damaged files may state durations that no integer holds.
    constexpr double most = 9.0e18;
    return size > 0.0 ? static_cast<qint64>(qMin(size, most)) + largeHeaderSize : 0;
}

AudioFileInfo::Problem AudioFileInfo::CheckImport(const ImportOptions& options, const QString& outPath) const
{
    if (m_facts->problem != Problem::None || !m_facts->length.isCertain) {
        return m_facts->problem;
    }
    return ProblemOfSize(double(GetImportedSize(options)), options, outPath);
}

QString AudioFileInfo::TextOf(Problem problem, const QString& path)
{
    const QString name = QDir::toNativeSeparators(path);
    switch (problem) {
    case Problem::None:
        return {};
    case Problem::NotFound:
        return tr("There is no file “%1”.").arg(name);
    case Problem::NoPermission:
        return tr("You have no permission to read “%1”.").arg(name);
    case Problem::NotAFile:
        return tr("“%1” is not a file.").arg(name);
    case Problem::NoAudio:
        return tr("“%1” holds no audio that can be decoded.").arg(name);
    case Problem::Damaged:
        return tr("“%1” is damaged: none of its audio can be decoded.").arg(name);
    case Problem::CannotBeRead:
        return tr("“%1” could not be read to its end. Is the disk still there?").arg(name);
    case Problem::Protected:
        return tr("“%1” is protected against copying.").arg(name);
    case Problem::TooLong:
        return tr("“%1” is too long for a WAV file of 4 GiB.").arg(name);
    case Problem::NoSpace:
        return tr("The disk has too little space for the audio of “%1”.").arg(name);
    case Problem::UnsupportedRate:
        return tr("The audio of “%1” cannot be given that sample rate.").arg(name);
    case Problem::CannotBeCreated:
        return tr("The audio of “%1” may not be written to that folder.").arg(name);
    case Problem::CannotBeWritten:
        return tr("The audio of “%1” could not be written.").arg(name);
    case Problem::Cancelled:
        return tr("Loading “%1” was cancelled.").arg(name);
    }
    return {};
}

QString TextOf(WavFile::AudioEngineReturnValue result)
{
    switch (result) {
    case WavFile::Success:
        return {};
    case WavFile::ErrorInvalidFormat:
        return WavFile::tr("The file holds no audio of a kind that can be read.");
    case WavFile::ErrorOpenFile:
        return WavFile::tr("The file could not be opened.");
    case WavFile::ErrorReadFile:
        return WavFile::tr("The file ends in the middle of its header.");
    case WavFile::ErrorWriteHeader:
        return WavFile::tr("The new file could not be written.");
    case WavFile::ErrorCreateSnippet:
        return WavFile::tr("The selection could not be saved.");
    case WavFile::ErrorFilterChannel:
        return WavFile::tr("The channel could not be written to a file of its own.");
    case WavFile::ErrorChannelCount:
        return WavFile::tr("The file has more than two channels, or none.");
    }
    return {};
}

} // namespace vantoraudio::AudioEngine
