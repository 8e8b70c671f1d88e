#include "engine/BatchThreads.h"
#include "engine/BufferResampling.h"
#include "engine/FileReplacement.h"
#include "engine/PendingFile.h"
#include "engine/ProcessorTime.h"
#include "engine/ReadingPace.h"
#include "engine/SilenceWatch.h"
#include "engine/WavHeader.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QEventLoop>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioBuffer>
#include <QtMultimedia/QAudioDecoder>

#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <utility>

using namespace vantoraudio::AudioEngine;

namespace {

constexpr int defaultSampleRate = 96000;

/** Decoded buffers are short and dear to write one by one; much longer blocks would keep the decoder waiting. */
constexpr qsizetype writtenBlockSize = 1 << 16;

constexpr std::chrono::microseconds longestWakefulness(200);

template<typename Sample>
SampleBuffer<Sample> SamplesOf(const QAudioBuffer& buffer)
{
    const auto count = static_cast<std::size_t>(buffer.byteCount()) / sizeof(Sample);
    return {{buffer.constData<Sample>(), count}, buffer.format().channelCount(), buffer.format().sampleRate()};
}

template<typename Sample>
QByteArray ResampleAsFloat(const SampleBuffer<Sample>& buffer, int targetRate)
{
    const QList<float> samples = ToFloat(buffer.samples);
    return Resample<float>({samples, buffer.channelCount, buffer.sampleRate}, targetRate);
}

/** Nothing for a sample type that has no resampler. */
std::optional<QByteArray> ResampleAsDecoded(const QAudioBuffer& buffer, int targetRate)
{
    switch (buffer.format().sampleFormat()) {
    case QAudioFormat::UInt8:
        return Resample(SamplesOf<quint8>(buffer), targetRate);
    case QAudioFormat::Int16:
        return Resample(SamplesOf<qint16>(buffer), targetRate);
    case QAudioFormat::Int32:
        return Resample(SamplesOf<qint32>(buffer), targetRate);
    case QAudioFormat::Float:
        return Resample(SamplesOf<float>(buffer), targetRate);
    default:
        return {};
    }
}

std::optional<QByteArray> ResampleAsFloat(const QAudioBuffer& buffer, int targetRate)
{
    switch (buffer.format().sampleFormat()) {
    case QAudioFormat::UInt8:
        return ResampleAsFloat(SamplesOf<quint8>(buffer), targetRate);
    case QAudioFormat::Int16:
        return ResampleAsFloat(SamplesOf<qint16>(buffer), targetRate);
    case QAudioFormat::Int32:
        return ResampleAsFloat(SamplesOf<qint32>(buffer), targetRate);
    default:
        return ResampleAsDecoded(buffer, targetRate);
    }
}

bool CanBeRead(const QString& path)
{
    // Opening a pipe would wait for its other end.
    return QFileInfo(path).isFile() && QFile(path).open(QIODevice::ReadOnly);
}

/** The only copy of someone's audio makes way for nothing that a power failure could take. */
bool Commit(PendingFile& output, bool replacesInput)
{
    return (!replacesInput || FlushToDisk(output.File())) && output.Commit();
}

} // namespace

/**
 * One decoding. It lies on the stack of its call and refers to nothing outside but the output, because anything
 * else may be gone when the event loop comes back.
 */
class Decoder::Run
{
public:
    Run(QFile& output, int sampleRate, SampleType type);

    WavFile::AudioEngineReturnValue Decode(const QString& inPath);

private:
    using Clock = std::chrono::steady_clock;

    void Start(SilenceWatch::Patience patience);
    void SetSource();
    void OnBufferReady();
    QAudioBuffer ReadAtPace();
    void OnFinished();
    void OnSilence();
    void StayAwake();
    void Append(const QByteArray& bytes);
    bool WriteBlock();
    void End(WavFile::AudioEngineReturnValue result);

    QFile& m_output;
    const int m_sampleRate;
    const SampleType m_type;
    int m_channelCount = 2;
    qint64 m_dataSize = 0;
    QByteArray m_block;
    std::optional<WavFile::AudioEngineReturnValue> m_result;
    bool m_isSecondTry = false;
    QEventLoop m_loop;
    /** The platform's decoder may keep silent for ever about a file that it cannot decode. */
    SilenceWatch m_silence;
    ReadingPace m_pace;
    WorkPerPiece m_work;
    Clock::time_point m_readAt;
    /** When the last buffer had been dealt with: what the disk took to store it is no lateness of the next one. */
    Clock::time_point m_freeAt;
    /** Keeps the event loop from sleeping. */
    QTimer m_wakefulness;
    QFile m_source;
    std::unique_ptr<QAudioDecoder> m_decoder;
    /** They hand every buffer on to each other. */
    BatchThreads m_decoderThreads;
    /** Set once other work has kept the processors from the decoder. */
    bool m_sharesProcessors = false;
};

Decoder::Run::Run(QFile& output, int sampleRate, SampleType type)
    : m_output(output), m_sampleRate(sampleRate), m_type(type), m_silence([this] { OnSilence(); })
{
    m_block.reserve(writtenBlockSize);
    QObject::connect(&m_wakefulness, &QTimer::timeout, &m_loop, [this] { StayAwake(); });
}

WavFile::AudioEngineReturnValue Decoder::Run::Decode(const QString& inPath)
{
    m_source.setFileName(inPath);
    Start(SilenceWatch::Patience::WithNobody);
    if (!m_result) {
        m_loop.exec();
    }
    // An event loop without a result was ended from outside, together with the application.
    return m_result.value_or(WavFile::ErrorInvalidFormat);
}

void Decoder::Run::Start(SilenceWatch::Patience patience)
{
    m_output.seek(writtenHeaderSize);
    m_decoder = std::make_unique<QAudioDecoder>();
    QObject::connect(m_decoder.get(), &QAudioDecoder::bufferReady, &m_loop, [this] { OnBufferReady(); });
    QObject::connect(m_decoder.get(), &QAudioDecoder::finished, &m_loop, [this] { OnFinished(); });
    QObject::connect(m_decoder.get(), qOverload<QAudioDecoder::Error>(&QAudioDecoder::error), &m_loop,
                     [this] { End(WavFile::ErrorInvalidFormat); });
    SetSource();
    m_readAt = Clock::now();
    m_freeAt = m_readAt;
    m_decoderThreads = {};
    if (m_sharesProcessors) {
        m_decoder->start();
    } else {
        m_decoderThreads.Start([this] { m_decoder->start(); });
    }
    m_silence.Start(patience);
}

void Decoder::Run::SetSource()
{
    const QUrl url = QUrl::fromLocalFile(m_source.fileName());
    // Some platform decoders look for a file under the escaped name.
    const bool isEscaped = url.toEncoded().contains('%');
    if (isEscaped && (m_source.isOpen() ? m_source.seek(0) : m_source.open(QIODevice::ReadOnly))) {
        m_decoder->setSourceDevice(&m_source);
    } else {
        m_decoder->setSource(url);
    }
}

/** Qt 6.4's decoder now and then misses a signal of its own and stands still, at the start or later; another one
 * hardly does so, too. It begins anew, since no decoder begins in the middle. */
void Decoder::Run::OnSilence()
{
    if (std::exchange(m_isSecondTry, true) || !m_output.resize(writtenHeaderSize)) {
        End(WavFile::ErrorInvalidFormat);
        return;
    }
    m_block.resize(0);
    m_dataSize = 0;
    Start(SilenceWatch::Patience::WithTheBusy);
}

void Decoder::Run::OnBufferReady()
{
    if (m_result) {
        return;
    }
    m_silence.OnSound();
    const QAudioBuffer buffer = ReadAtPace();
    m_channelCount = buffer.format().channelCount();
    const auto bytes = m_type == SampleType::Float ? ResampleAsFloat(buffer, m_sampleRate)
                                                   : ResampleAsDecoded(buffer, m_sampleRate);
    if (bytes) {
        Append(*bytes);
    } else {
        End(WavFile::ErrorInvalidFormat);
    }
    m_freeAt = Clock::now();
}

QAudioBuffer Decoder::Run::ReadAtPace()
{
    if (const auto work = m_work.OnPiece()) {
        m_pace.SetWork(*work);
    }
    const auto next = m_readAt + m_pace.IntervalAfter(Clock::now() - m_freeAt);
    if (m_pace.IsHopeless() && !std::exchange(m_sharesProcessors, true)) {
        m_decoderThreads.MakeOrdinary();
    }
    // Far shorter than any sleep that a system offers.
    while (Clock::now() < next) {
        QThread::yieldCurrentThread();
    }
    m_readAt = Clock::now();
    // Whoever else has work would get a whole slice of time at each yielding.
    if (!m_sharesProcessors && !m_wakefulness.isActive()) {
        m_wakefulness.start(0);
    }
    return m_decoder->read();
}

/** The next buffer mostly comes before the processor would have fallen asleep and been woken again. */
void Decoder::Run::StayAwake()
{
    if (m_sharesProcessors || Clock::now() - m_readAt > longestWakefulness) {
        m_wakefulness.stop();
    } else {
        QThread::yieldCurrentThread();
    }
}

void Decoder::Run::OnFinished()
{
    if (m_result) {
        return;
    }
    // The header counts in 32 bits.
    const int dataSize = static_cast<int>(m_dataSize);
    const bool isWritten = WriteBlock() && WriteHeader(m_output, dataSize, m_sampleRate, m_channelCount) == 1;
    End(isWritten ? WavFile::Success : WavFile::ErrorWriteHeader);
}

void Decoder::Run::Append(const QByteArray& bytes)
{
    m_dataSize += bytes.size();
    m_block += bytes;
    if (m_block.size() >= writtenBlockSize && !WriteBlock()) {
        End(WavFile::ErrorWriteHeader);
    }
}

bool Decoder::Run::WriteBlock()
{
    const bool isWritten = m_output.write(m_block) == m_block.size();
    m_block.resize(0);
    return isWritten;
}

void Decoder::Run::End(WavFile::AudioEngineReturnValue result)
{
    if (!m_result) {
        m_result = result;
        m_loop.quit();
    }
}

Decoder::Decoder() = default;

Decoder::~Decoder() = default;

WavFile::AudioEngineReturnValue Decoder::Convert(const QString& inPath, const QString& outPath, int sampleRate)
{
    return Decode(inPath, outPath, sampleRate, SampleType::AsDecoded);
}

WavFile::AudioEngineReturnValue Decoder::ConvertToFloat(const QString& inPath, const QString& outPath,
                                                        int sampleRate)
{
    return Decode(inPath, outPath, sampleRate, SampleType::Float);
}

WavFile::AudioEngineReturnValue Decoder::Decode(const QString& inPath, const QString& outPath, int sampleRate,
                                                SampleType type)
{
    if (inPath.isEmpty() || outPath.isEmpty()) {
        return WavFile::ErrorOpenFile;
    }
    PendingFile output(outPath);
    if (!CanBeRead(inPath) || !output.Open()) {
        return WavFile::ErrorOpenFile;
    }
    // Overwritten byte by byte, the only copy of the audio could end as neither the old nor the new file.
    if (IsSameFile(inPath, outPath) && !output.ReplacesInOneStep()) {
        return WavFile::ErrorOpenFile;
    }
    const QString source = QFileInfo(inPath).absoluteFilePath();
    if (!HoldsAudio(source)) {
        return WavFile::ErrorInvalidFormat;
    }
    const int targetRate = sampleRate == -1 ? defaultSampleRate : sampleRate;
    auto result = Run(output.File(), targetRate, type).Decode(source);
    const bool replacesInput = IsSameFile(inPath, outPath);
    if (result == WavFile::Success && !Commit(output, replacesInput)) {
        result = WavFile::ErrorWriteHeader;
    }
    if (result != WavFile::Success && !replacesInput) {
        output.RemoveFormer();
    }
    return result;
}

int Decoder::WriteHeader(QFile& file, int dataSize, int sampleRate, int channelCount)
{
    QAudioFormat format;
    format.setSampleFormat(QAudioFormat::Float);
    format.setSampleRate(sampleRate);
    format.setChannelCount(channelCount);
    const QByteArray header = ComposeWavHeader(format, dataSize);
    return file.seek(0) && file.write(header) == header.size() && file.flush() ? 1 : 0;
}
