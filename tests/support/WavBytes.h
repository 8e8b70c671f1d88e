#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QtEndian>

#include <initializer_list>

/** Builds WAV files byte by byte for tests, good ones and broken ones. It shares no code with the library. */
namespace WavTest {

template<typename Number>
QByteArray LittleEndian(Number number)
{
    char bytes[sizeof(Number)];
    qToLittleEndian(number, bytes);
    return QByteArray(bytes, sizeof(Number));
}

inline QByteArray PackS16(std::initializer_list<int> samples)
{
    QByteArray bytes;
    for (const int sample : samples) {
        bytes += LittleEndian(static_cast<qint16>(sample));
    }
    return bytes;
}

inline QByteArray PackS24(std::initializer_list<int> samples)
{
    QByteArray bytes;
    for (const int sample : samples) {
        bytes += LittleEndian(static_cast<qint32>(sample)).left(3);
    }
    return bytes;
}

inline QByteArray PackS32(std::initializer_list<qint64> samples)
{
    QByteArray bytes;
    for (const qint64 sample : samples) {
        bytes += LittleEndian(static_cast<qint32>(sample));
    }
    return bytes;
}

inline QByteArray PackF32(std::initializer_list<float> samples)
{
    QByteArray bytes;
    for (const float sample : samples) {
        bytes += LittleEndian(sample);
    }
    return bytes;
}

/** The sub-formats of extensible files, as they lie in the file. */
inline QByteArray PcmGuid()
{
    return QByteArray::fromHex("0100000000001000800000aa00389b71");
}

inline QByteArray FloatGuid()
{
    return QByteArray::fromHex("0300000000001000800000aa00389b71");
}

/** What follows the first 16 bytes of an extensible "fmt " chunk: 24 bytes, whatever size is stated. */
inline QByteArray Extension(const QByteArray& guid, quint16 statedSize = 22, quint16 validBits = 16)
{
    return LittleEndian(statedSize) + LittleEndian(validBits) + LittleEndian(quint32(3)) + guid;
}

/** Stands for the size that is true. */
inline constexpr qint64 realSize = -1;

inline QByteArray SizeField(qint64 statedSize, const QByteArray& body)
{
    return LittleEndian(static_cast<quint32>(statedSize == realSize ? body.size() : statedSize));
}

struct Chunk
{
    QByteArray id = {};
    QByteArray body = {};
    qint64 statedSize = realSize;

    QByteArray Build() const { return id + SizeField(statedSize, body) + body; }
};

inline QByteArray Build(const QList<Chunk>& chunks)
{
    QByteArray bytes;
    for (const Chunk& chunk : chunks) {
        bytes += chunk.Build();
    }
    return bytes;
}

/** A whole file. Byte rate and block align follow from the other fields; every size may be overridden. */
struct WavBytes
{
    QByteArray riff = "RIFF";
    QByteArray form = "WAVE";
    qint64 statedRiffSize = realSize;

    QList<Chunk> beforeFmt = {};
    quint16 formatTag = 1;
    quint16 channels = 1;
    quint32 sampleRate = 44100;
    quint16 bits = 16;
    /** Bytes of the "fmt " chunk behind the common 16. */
    QByteArray extension = {};
    qint64 statedFmtSize = realSize;

    QList<Chunk> beforeData = {};
    QByteArray data = {};
    qint64 statedDataSize = realSize;
    QList<Chunk> afterData = {};

    QByteArray FmtBody() const
    {
        const quint32 blockAlign = channels * bits / 8U;
        return LittleEndian(formatTag) + LittleEndian(channels) + LittleEndian(sampleRate) +
               LittleEndian(quint32(sampleRate * blockAlign)) + LittleEndian(quint16(blockAlign)) +
               LittleEndian(bits) + extension;
    }

    QByteArray Build() const
    {
        const QByteArray body = form + WavTest::Build(beforeFmt) +
                                Chunk{"fmt ", FmtBody(), statedFmtSize}.Build() + WavTest::Build(beforeData) +
                                Chunk{"data", data, statedDataSize}.Build() + WavTest::Build(afterData);
        return riff + SizeField(statedRiffSize, body) + body;
    }
};

} // namespace WavTest
