#include "engine/Truncation.h"
#include "engine/WavHeader.h"

#include <QtCore/QtEndian>

#include <array>
#include <optional>

namespace vantoraudio::AudioEngine {

namespace {

constexpr quint16 pcmTag = 1;
constexpr quint16 floatTag = 3;
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

/** Int32 is always written with 32 bits, also when it was read from 24: the library writes no 24-bit data. */
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

} // namespace

QByteArray ComposeWavHeader(const QAudioFormat& format, int dataSize)
{
    const auto encoding = EncodingOf(format.sampleFormat());
    if (!encoding) {
        return {};
    }
    const int channelCount = format.channelCount();
    const int bitsPerFrame = MultiplyWrapping(channelCount, encoding->bits);
    const int bitsPerSecond = MultiplyWrapping(bitsPerFrame, format.sampleRate());
    const auto unsignedSize = static_cast<quint32>(dataSize);

    QByteArray header;
    header.reserve(writtenHeaderSize);
    header.append("RIFF");
    AppendNumber(header, unsignedSize + 36U);
    header.append("WAVEfmt ");
    AppendNumber(header, formatChunkSize);
    AppendNumber(header, encoding->formatTag);
    AppendNumber(header, static_cast<quint16>(channelCount));
    AppendNumber(header, static_cast<quint32>(format.sampleRate()));
    AppendNumber(header, static_cast<quint32>(bitsPerSecond / 8));
    AppendNumber(header, static_cast<quint16>(bitsPerFrame / 8));
    AppendNumber(header, static_cast<quint16>(encoding->bits));
    header.append("data");
    AppendNumber(header, unsignedSize);
    return header;
}

int CalculateAudioDataSize(int bytes, const QAudioFormat& from, const QAudioFormat& to)
{
    if (!to.isValid() || !from.isValid() || bytes < 0) {
        return -1;
    }
    const int frames = BytesToSamples(bytes, from.bytesPerSample(), from.channelCount());
    const int targetFrames = TruncateToInt32(double(frames) / from.sampleRate() * to.sampleRate());
    return SamplesToBytes(targetFrames, to.bytesPerSample(), to.channelCount());
}

int BytesToSamples(int bytes, int a, int b)
{
    if (a < 1 || b < 1 || bytes < 0) {
        return -1;
    }
    return static_cast<int>(bytes / (qint64(a) * b));
}

// No samples give -1, unlike no bytes above: callers tell an empty result by it.
int SamplesToBytes(int samples, int a, int b)
{
    if (a < 1 || b < 1 || samples < 1) {
        return -1;
    }
    return MultiplyWrapping(MultiplyWrapping(samples, a), b);
}

} // namespace vantoraudio::AudioEngine
