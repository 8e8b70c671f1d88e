#include "engine/decoding/DecoderRun.h"

#include "engine/decoding/DecoderProbe.h"
#include "engine/files/PendingFile.h"
#include "engine/files/RegularFile.h"
#include "engine/samples/LinearResampling.h"
#include "engine/wav/WavHeader.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

using namespace vantoraudio::AudioEngine;

namespace {

/** Decoded buffers are short and expensive to write one by one; much longer blocks would keep the decoder waiting.
 */
constexpr qsizetype writtenBlockSize = 1 << 16;

template<typename Sample>
SampleBuffer<Sample> SamplesOf(const QAudioBuffer& buffer)
{
    const auto count = static_cast<std::size_t>(buffer.byteCount()) / sizeof(Sample);
    return {{buffer.constData<Sample>(), count}, buffer.format().channelCount(), buffer.format().sampleRate()};
}

/** Nothing for a sample type that has no resampler. */
std::optional<QByteArray> ResampleAsDecoded(const QAudioBuffer& buffer, int targetRate)
{
    switch (buffer.format().sampleFormat()) {
    case QAudioFormat::UInt8:
        return ResampleLinearly(SamplesOf<quint8>(buffer), targetRate);
    case QAudioFormat::Int16:
        return ResampleLinearly(SamplesOf<qint16>(buffer), targetRate);
    case QAudioFormat::Int32:
        return ResampleLinearly(SamplesOf<qint32>(buffer), targetRate);
    case QAudioFormat::Float:
        return ResampleLinearly(SamplesOf<float>(buffer), targetRate);
    default:
        return {};
    }
}

bool IsFinite(float sample)
{
    return std::isfinite(sample);
}

/** Whether the buffer holds sound. Some files, such as layer 2 under the name of layer 3, are decoded to noise. */
bool IsSound(const QAudioBuffer& buffer)
{
    return buffer.format().sampleFormat() != QAudioFormat::Float ||
           std::ranges::all_of(SamplesOf<float>(buffer).samples, IsFinite);
}

bool CanBeRead(const QString& path)
{
    return IsRegularFile(path) && QFile(path).open(QIODevice::ReadOnly);
}

} // namespace

WavFile::AudioEngineReturnValue Decoder::Run::Convert(const QString& inPath, const QString& outPath,
                                                      int sampleRate, const SourceMaker& makeSource)
{
    PendingFile output(outPath, inPath);
    if (!CanBeRead(inPath) || !output.Open()) {
        return WavFile::ErrorOpenFile;
    }
    const QString source = QFileInfo(inPath).absoluteFilePath();
    if (!Probe::HoldsAudio(source) || !Probe::CanBeDecodedWhole(source)) {
        return WavFile::ErrorInvalidFormat;
    }
    auto result = Run(output.File(), sampleRate, makeSource).Decode(source);
    if (result == WavFile::Success && !output.Commit()) {
        result = WavFile::ErrorWriteHeader;
    }
    if (result != WavFile::Success) {
        output.RemoveFormer();
    }
    return result;
}

Decoder::Run::Run(QFile& output, int sampleRate, const SourceMaker& makeSource)
    : m_output(output), m_sampleRate(sampleRate), m_makeSource(makeSource), m_silence([this] { OnSilence(); })
{
    m_block.reserve(writtenBlockSize);
}

WavFile::AudioEngineReturnValue Decoder::Run::Decode(const QString& inPath)
{
    m_inPath = inPath;
    Start();
    if (!m_result) {
        m_loop.exec();
    }
    // Without a result, the event loop was ended from outside, together with the application.
    return m_result.value_or(WavFile::ErrorInvalidFormat);
}

void Decoder::Run::Start()
{
    m_output.seek(writtenHeaderSize);
    m_source = m_makeSource(m_inPath);
    QObject::connect(m_source.get(), &DecoderSource::BufferReady, &m_loop, [this] { OnBufferReady(); });
    QObject::connect(m_source.get(), &DecoderSource::Finished, &m_loop, [this] { OnFinished(); });
    QObject::connect(m_source.get(), &DecoderSource::Failed, &m_loop,
                     [this] { End(WavFile::ErrorInvalidFormat); });
    m_silence.Start(m_source->LongestSilence());
    m_source->Start();
}

/** Begins again from the start where that may help: no decoder can begin in the middle. */
void Decoder::Run::OnSilence()
{
    const bool isWorthATry = m_source->MayStandStill() && !std::exchange(m_isSecondTry, true);
    if (!isWorthATry || !m_output.resize(writtenHeaderSize)) {
        End(WavFile::ErrorInvalidFormat);
        return;
    }
    m_block.resize(0);
    m_dataSize = 0;
    Start();
}

void Decoder::Run::OnBufferReady()
{
    if (m_result) {
        return;
    }
    m_silence.OnSound();
    const QAudioBuffer buffer = m_source->Read();
    m_channelCount = buffer.format().channelCount();
    const auto bytes = ResampleAsDecoded(buffer, m_sampleRate);
    if (bytes && IsSound(buffer)) {
        Append(*bytes);
    } else {
        End(WavFile::ErrorInvalidFormat);
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
        // An inner call's event loop may go on for long before this call's own loop can end.
        m_silence.Stop();
        m_loop.quit();
    }
}
