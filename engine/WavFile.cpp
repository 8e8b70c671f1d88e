#include "engine/SampleBlocks.h"
#include "engine/SharedFileCursor.h"
#include "engine/SharedValue.h"
#include "engine/Truncation.h"
#include "engine/WavHeader.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFileInfo>
#include <QtCore/QMetaType>
#include <QtCore/QMutexLocker>

#include <mutex>

using namespace vantoraudio::AudioEngine;

namespace {

/** How many values a block of an extraction yields. */
constexpr qint64 valuesPerBlock = 200;

/** Done when the library is loaded, so that the type is known by its name before anyone uses the class. */
void RegisterMetaTypes()
{
    qRegisterMetaType<WavFile::ChannelFormat>("WavFile::ChannelFormat");
}

/** A pipe would block for ever when it is opened, and a directory holds no audio. */
bool IsRegularFile(const QString& fileName)
{
    return QFileInfo(fileName).isFile();
}

} // namespace

Q_CONSTRUCTOR_FUNCTION(RegisterMetaTypes)

WavFile::WavFile(QObject* parent) : QFile(parent)
{
    // Zero in every version of Qt, whatever a fresh QAudioFormat says.
    m_fileFormat.setChannelCount(0);
}

WavFile::~WavFile() = default;

// The flag of channel filtering, the sample size and all of the QFile are left out on purpose.
WavFile& WavFile::operator=(const WavFile& other)
{
    if (this == &other) {
        return *this;
    }
    const std::scoped_lock lock(m_mutex, other.m_mutex);
    StoreShared(m_abortRead, other.m_abortRead);
    StoreShared(m_abortWrite, other.m_abortWrite);
    m_duration = other.m_duration;
    m_fileFormat = other.m_fileFormat;
    m_dataOffset = other.m_dataOffset;
    m_dataLength = other.m_dataLength;
    m_samples = other.m_samples;
    SetSelectedChannel(other.GetSelectedChannel());
    return *this;
}

WavFile::AudioEngineReturnValue WavFile::Open(const QString& fileName)
{
    close();
    setFileName(fileName);
    if (!IsRegularFile(fileName) || !open(QIODevice::ReadOnly)) {
        close();
        return ErrorOpenFile;
    }
    const AudioEngineReturnValue result = ReadHeader();
    if (result != Success) {
        return result;
    }
    const int bytesPerSample = m_sampleSize / 8;
    if (bytesPerSample < 1 || m_fileFormat.channelCount() < 1) {
        return Success;
    }
    const double bytesPerSecond =
        double(m_fileFormat.channelCount()) * double(bytesPerSample) * double(m_fileFormat.sampleRate());
    m_duration = double(m_dataLength) / bytesPerSecond;
    return Success;
}

qint64 WavFile::GetDataLength() const
{
    return m_dataLength;
}

qint64 WavFile::GetDataOffset() const
{
    return m_dataOffset;
}

double WavFile::GetDuration() const
{
    return m_duration;
}

const QAudioFormat& WavFile::GetFileFormat() const
{
    return m_fileFormat;
}

int WavFile::GetSampleSize() const
{
    return m_sampleSize;
}

WavFile::ChannelFormat WavFile::GetSelectedChannel() const
{
    return LoadShared(m_selectedChannel);
}

void WavFile::SetSelectedChannel(ChannelFormat channel)
{
    if (GetSelectedChannel() != channel) {
        StoreShared(m_selectedChannel, channel);
    }
}

QList<float> WavFile::GetSamples() const
{
    const QMutexLocker lock(&m_mutex);
    return m_samples;
}

/** What one extraction reads, taken once when it starts. */
struct WavFile::Extraction
{
    BlockFormat format;
    BlockPick pick;
    int frameSize = 0;
    /** Positions in the file, in bytes. */
    qint64 start = 0;
    qint64 end = 0;

    qint64 BlockSize() const { return valuesPerBlock * pick.step * frameSize; }
    /** Whole blocks are read, so it may be more than lies between start and end. */
    qint64 BytesToRead() const;
    qint64 ValueCount(qint64 bytes) const;
};

qint64 WavFile::Extraction::BytesToRead() const
{
    if (start >= end || frameSize < 1) {
        return 0;
    }
    const qint64 blockCount = (end - start + BlockSize() - 1) / BlockSize();
    return blockCount * BlockSize();
}

qint64 WavFile::Extraction::ValueCount(qint64 bytes) const
{
    const qint64 bytesPerValue = qint64(pick.step) * frameSize;
    return bytesPerValue < 1 ? 0 : (bytes + bytesPerValue - 1) / bytesPerValue;
}

void WavFile::ReadData(double startTime, double endTime, int stepSize)
{
    QList<float> samples = Extract(StartExtraction(startTime, endTime, stepSize));
    if (!LoadShared(m_abortRead)) {
        StoreSamples(samples);
        Q_EMIT NewData();
    }
    Q_EMIT ProgressChanged(0, 0, 1, tr("Updated"));
}

WavFile::Extraction WavFile::StartExtraction(double startTime, double endTime, int stepSize)
{
    const QMutexLocker lock(&m_mutex);
    StoreShared(m_abortRead, false);

    const int frameSize = m_fileFormat.channelCount() * (m_sampleSize / 8);
    // Offsets are 32-bit on purpose: those past 2 GiB of sample data wrap.
    const auto position = [=, this](double time) {
        const int frame = TruncateToInt32(double(m_fileFormat.sampleRate()) * time);
        return m_dataOffset + MultiplyWrapping(frameSize, frame);
    };
    return {.format = {m_fileFormat, m_sampleSize},
            .pick = {qMax(1, stepSize), GetSelectedChannel()},
            .frameSize = frameSize,
            .start = position(startTime),
            .end = position(endTime)};
}

QList<float> WavFile::Extract(const Extraction& extraction)
{
    const QString progressText = tr("Updating...");
    SharedFileCursor cursor(*this, m_deviceMutex, extraction.start);
    QList<float> values;
    values.reserve(extraction.ValueCount(qMin(extraction.BytesToRead(), cursor.BytesLeft())));
    QByteArray block;
    while (cursor.Position() < extraction.end && !LoadShared(m_abortRead)) {
        // Measured from the beginning of the file on purpose: a range that starts late does not start at 0.
        const double progress = double(cursor.Position()) / double(extraction.end) * 100.0;
        Q_EMIT ProgressChanged(TruncateToInt32(progress), 0, 100, progressText);
        if (!cursor.ReadBlock(extraction.BlockSize(), block)) {
            break;
        }
        AppendBlock(values, block, extraction.format, extraction.pick);
    }
    return values;
}

void WavFile::StoreSamples(QList<float>& samples)
{
    const QMutexLocker lock(&m_mutex);
    m_samples.swap(samples);
}

void WavFile::AbortRead()
{
    SetAbortFlag(m_abortRead);
}

void WavFile::AbortWrite()
{
    SetAbortFlag(m_abortWrite);
}

void WavFile::AbortChannelFilter()
{
    SetAbortFlag(m_abortChannelFilter);
}

void WavFile::SetAbortFlag(bool& flag)
{
    const QMutexLocker lock(&m_mutex);
    StoreShared(flag, true);
}

WavFile::AudioEngineReturnValue WavFile::ReadHeader()
{
    WavHeader header{m_fileFormat, m_sampleSize, m_dataOffset, m_dataLength};
    const AudioEngineReturnValue result = ReadWavHeader(*this, header);
    m_fileFormat = header.format;
    m_sampleSize = header.sampleSize;
    m_dataOffset = header.dataOffset;
    m_dataLength = header.dataLength;
    return result;
}

WavFile::AudioEngineReturnValue WavFile::WriteHeader(int dataSize)
{
    const bool isAtStart = seek(0);
    const QByteArray header = ComposeWavHeader(m_fileFormat, dataSize);
    if (header.isEmpty()) {
        return ErrorInvalidFormat;
    }
    m_dataOffset = header.size();
    // Flushed, so that a full disk is noticed here and not when the file is closed.
    const bool isWritten = isAtStart && write(header) == header.size() && flush();
    return isWritten ? Success : ErrorWriteHeader;
}

int WavFile::CalculateAudioDataSize(int bytes, const QAudioFormat& from, const QAudioFormat& to)
{
    return vantoraudio::AudioEngine::CalculateAudioDataSize(bytes, from, to);
}

int WavFile::BytesToSamples(int bytes, int a, int b)
{
    return vantoraudio::AudioEngine::BytesToSamples(bytes, a, b);
}

int WavFile::SamplesToBytes(int samples, int a, int b)
{
    return vantoraudio::AudioEngine::SamplesToBytes(samples, a, b);
}

int WavFile::FFmpegSampleFormatFromQAudioFormat(const QAudioFormat& format)
{
    switch (format.sampleFormat()) {
    case QAudioFormat::Int16:
        return 1; // AV_SAMPLE_FMT_S16
    case QAudioFormat::Int32:
        return 2; // AV_SAMPLE_FMT_S32
    case QAudioFormat::Float:
        return 3; // AV_SAMPLE_FMT_FLT
    default:
        return -1; // AV_SAMPLE_FMT_NONE, for UInt8 too
    }
}

QList<float> WavFile::ReadBlock(const QByteArray& block, int step, const QAudioFormat& format,
                                ChannelFormat channel)
{
    QList<float> values;
    AppendBlock(values, block, {format, m_sampleSize}, {step, channel});
    return values;
}

QList<float> WavFile::ReadS16Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    QList<float> values;
    AppendS16Block(values, block, format.channelCount(), {step, channel});
    return values;
}

QList<float> WavFile::ReadS24Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    QList<float> values;
    AppendS24Block(values, block, format.channelCount(), {step, channel});
    return values;
}

QList<float> WavFile::ReadS32Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    QList<float> values;
    AppendS32Block(values, block, format.channelCount(), {step, channel});
    return values;
}

QList<float> WavFile::ReadF32Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    QList<float> values;
    AppendF32Block(values, block, format.channelCount(), {step, channel});
    return values;
}

float WavFile::ReadS24S(const unsigned char* bytes, const QAudioFormat& /*format*/)
{
    return S24Value(reinterpret_cast<const char*>(bytes));
}
