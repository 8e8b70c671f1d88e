#include "engine/samples/Truncation.h"
#include "engine/wav/WavHeader.h"

#include <QtCore/QtEndian>

#include <array>
#include <limits>
#include <optional>

namespace vantoraudio::AudioEngine {

namespace {

constexpr quint32 formatChunkSize = 16;

template<typename Number>
void AppendNumber(QByteArray& bytes, Number number)
{
    std::array<char, sizeof(Number)> encoded{};
    qToLittleEndian(number, encoded.data());
    bytes.append(encoded.data(), sizeof(Number));
}

struct Encoding
{
    quint16 formatTag;
    int bits;
};

/** Int32 is always written with 32 bits, even when it was read from 24: the library writes no 24-bit data. */
std::optional<Encoding> EncodingOf(QAudioFormat::SampleFormat sampleFormat)
{
    switch (sampleFormat) {
    case QAudioFormat::Int16:
        return Encoding{pcmTag, 16};
    case QAudioFormat::Int32:
        return Encoding{pcmTag, 32};
    case QAudioFormat::Float:
        return Encoding{floatTag, 32};
    default:
        return {};
    }
}

/** "fmt " and the head of "data", which end every header. */
QByteArray ComposeChunks(const QAudioFormat& format, Encoding encoding, quint32 statedDataSize)
{
    const int channelCount = format.channelCount();
    const int bitsPerFrame = MultiplyWrapping(channelCount, encoding.bits);
    const int bitsPerSecond = MultiplyWrapping(bitsPerFrame, format.sampleRate());

    QByteArray chunks("fmt ");
    AppendNumber(chunks, formatChunkSize);
    AppendNumber(chunks, encoding.formatTag);
    AppendNumber(chunks, static_cast<quint16>(channelCount));
    AppendNumber(chunks, static_cast<quint32>(format.sampleRate()));
    AppendNumber(chunks, static_cast<quint32>(bitsPerSecond / 8));
    AppendNumber(chunks, static_cast<quint16>(bitsPerFrame / 8));
    AppendNumber(chunks, static_cast<quint16>(encoding.bits));
    chunks.append("data");
    AppendNumber(chunks, statedDataSize);
    return chunks;
}

/** `name`, the size of the whole file and its form. */
QByteArray ComposeFileHead(const char* name, quint32 statedFileSize)
{
    QByteArray head(name);
    AppendNumber(head, statedFileSize);
    head.append("WAVE");
    return head;
}

/** Whether a 32-bit field can state the size of all that follows the first 8 bytes of a file. */
bool FitsSizeField(qint64 dataSize, int headerSize)
{
    constexpr qint64 highest = std::numeric_limits<quint32>::max();
    return dataSize <= highest - (headerSize - 8);
}

/** Sizes that a 32-bit field cannot state. They have no sign, so that they do not overflow near the largest one.
 */
QByteArray ComposeSizeChunk(const QAudioFormat& format, Encoding encoding, quint64 dataSize)
{
    const qint64 frameSize = qint64(format.channelCount()) * (encoding.bits / 8);
    QByteArray chunk("ds64");
    AppendNumber(chunk, sizeChunkSize);
    AppendNumber(chunk, dataSize + (largeHeaderSize - 8));
    AppendNumber(chunk, dataSize);
    AppendNumber(chunk, frameSize < 1 ? quint64(0) : dataSize / static_cast<quint64>(frameSize));
    AppendNumber(chunk, quint32(0));
    return chunk;
}

QByteArray ComposeRf64Header(const QAudioFormat& format, Encoding encoding, qint64 dataSize)
{
    return ComposeFileHead("RF64", sizeStatedElsewhere) +
           ComposeSizeChunk(format, encoding, static_cast<quint64>(dataSize)) +
           ComposeChunks(format, encoding, sizeStatedElsewhere);
}

} // namespace

QByteArray ComposeWavHeader(const QAudioFormat& format, int dataSize)
{
    const auto encoding = EncodingOf(format.sampleFormat());
    if (!encoding) {
        return {};
    }
    const auto statedSize = static_cast<quint32>(dataSize);
    return ComposeFileHead("RIFF", statedSize + 36U) + ComposeChunks(format, *encoding, statedSize);
}

QByteArray ComposeLargeWavHeader(const QAudioFormat& format, qint64 dataSize)
{
    const auto encoding = EncodingOf(format.sampleFormat());
    if (encoding && !FitsSizeField(dataSize, writtenHeaderSize)) {
        return ComposeRf64Header(format, *encoding, dataSize);
    }
    return ComposeWavHeader(format, WrapToInt32(dataSize));
}

QByteArray ComposeWavHeaderWithRoom(const QAudioFormat& format, qint64 dataSize)
{
    const auto encoding = EncodingOf(format.sampleFormat());
    if (!encoding) {
        return {};
    }
    if (!FitsSizeField(dataSize, largeHeaderSize)) {
        return ComposeRf64Header(format, *encoding, dataSize);
    }
    const auto statedSize = static_cast<quint32>(dataSize);
    QByteArray room("JUNK");
    AppendNumber(room, sizeChunkSize);
    room.append(sizeChunkSize, '\0');
    return ComposeFileHead("RIFF", statedSize + quint32(largeHeaderSize - 8)) + room +
           ComposeChunks(format, *encoding, statedSize);
}

qint64 CalculateAudioDataSize(qint64 bytes, const QAudioFormat& from, const QAudioFormat& to,
                              ByteCounting counting)
{
    if (!to.isValid() || !from.isValid() || bytes < 0) {
        return -1;
    }
    const qint64 frames = BytesToSamples(bytes, from.bytesPerSample(), from.channelCount());
    const qint64 targetFrames = counting.Truncate(double(frames) / from.sampleRate() * to.sampleRate());
    return SamplesToBytes(targetFrames, to.bytesPerSample(), to.channelCount(), counting);
}

qint64 BytesToSamples(qint64 bytes, int a, int b)
{
    return a < 1 || b < 1 || bytes < 0 ? -1 : bytes / (qint64(a) * b);
}

// No samples give -1, unlike no bytes above: callers recognise an empty result by it.
qint64 SamplesToBytes(qint64 samples, int a, int b, ByteCounting counting)
{
    if (a < 1 || b < 1 || samples < 1) {
        return -1;
    }
    return counting.Multiply(counting.Multiply(samples, a), b);
}

} // namespace vantoraudio::AudioEngine
