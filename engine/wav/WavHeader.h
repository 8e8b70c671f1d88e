#pragma once

#include "engine/wav/ByteCounting.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>
#include <QtMultimedia/QAudioFormat>

/** The RIFF/WAVE file format: reading and composing headers, and computing data sizes from a format. */
namespace vantoraudio::AudioEngine {

/** What the header of a WAV file says about its audio. */
struct WavHeader
{
    QAudioFormat format;
    /** Bits per sample. 24-bit integers are Int32 in `format` and 24 here. */
    int sampleSize = 0;
    /** Position of the first sample in the file, in bytes. */
    qint64 dataOffset = 0;
    /** Size of the sample data in bytes as the file states it; the file may hold less. */
    qint64 dataLength = 0;
};

/** Format tags of the "fmt " chunk. */
inline constexpr quint16 pcmTag = 1;
inline constexpr quint16 floatTag = 3;

/** Size of the body of RF64's "ds64" chunk in bytes. A table may follow it. */
inline constexpr quint32 sizeChunkSize = 28;
/** In a 32-bit size field of an RF64 file: the "ds64" chunk states the size. */
inline constexpr quint32 sizeStatedElsewhere = 0xFFFFFFFF;

/** Which files are read; all others are refused. */
enum class WavKinds
{
    Riff,
    /** Also those whose "ds64" chunk states the size of their data in 64 bits. */
    RiffAndRf64
};

/**
 * Reads the header at the start of `device`, which must be open and random-access.
 *
 * What was read before a failing check stays in `header`, all other fields keep their former values, and the
 * device stays where reading stopped. A device that ends before its "fmt " chunk is complete gives Success, with
 * the data offset at its end and the rest as before. No size that the file states makes this allocate memory.
 */
[[nodiscard]] WavFile::AudioEngineReturnValue ReadWavHeader(QIODevice& device, WavHeader& header,
                                                            WavKinds kinds = WavKinds::Riff);

/** Size of the usual header that the library writes, in bytes. */
inline constexpr int writtenHeaderSize = 44;

/**
 * The 44 bytes that stand before `dataSize` bytes of samples in `format`; empty for a sample format other than
 * Int16, Int32 and Float.
 */
[[nodiscard]] QByteArray ComposeWavHeader(const QAudioFormat& format, int dataSize);

/** Size of a header with 64-bit sizes, and of one with room for them, in bytes. */
inline constexpr int largeHeaderSize = 80;

/**
 * The header before any number of sample bytes: the same 44 bytes as long as their 32-bit fields can state the
 * size (just below 4 GiB), and beyond that the 80 bytes of an RF64 file. A negative size has no meaning; its
 * lowest 32 bits are written. Empty for a format without encoding, as above.
 */
[[nodiscard]] QByteArray ComposeLargeWavHeader(const QAudioFormat& format, qint64 dataSize);

/**
 * The same, but always 80 bytes long, for files whose size is known only when the samples are written. As long as
 * 32-bit fields can state the size, it is a RIFF header, and a "JUNK" chunk of zeros keeps room for RF64's "ds64"
 * chunk.
 */
[[nodiscard]] QByteArray ComposeWavHeaderWithRoom(const QAudioFormat& format, qint64 dataSize);

/** How many bytes `bytes` of audio in the format `from` become in the format `to`; -1 when it cannot be computed.
 */
[[nodiscard]] qint64 CalculateAudioDataSize(qint64 bytes, const QAudioFormat& from, const QAudioFormat& to,
                                            ByteCounting counting);

/** bytes / (a * b), where a and b are channel count and bytes per sample; -1 when one is below 1 or bytes below 0.
 */
[[nodiscard]] qint64 BytesToSamples(qint64 bytes, int a, int b);

/** samples * a * b; -1 when any of them is below 1, also for no samples at all. */
[[nodiscard]] qint64 SamplesToBytes(qint64 samples, int a, int b, ByteCounting counting);

} // namespace vantoraudio::AudioEngine
