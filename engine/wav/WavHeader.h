#pragma once

#include "engine/wav/ByteCounting.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>
#include <QtMultimedia/QAudioFormat>

/** The RIFF/WAVE file format: reading and composing headers, and what follows from a format for data sizes. */
namespace vantoraudio::AudioEngine {

/** What the header of a WAV file tells of its audio. */
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

/** Of the body of RF64's "ds64" chunk, which a table may follow, in bytes. */
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
 * What was understood before a failing check stays in `header`, all other fields keep their former values, and the
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

/** Size of a header with 64-bit sizes, and of one with the room for them, in bytes. */
inline constexpr int largeHeaderSize = 80;

/**
 * The header before `dataSize` bytes of samples, however many: those 44 bytes as long as its 32-bit size fields
 * can state that size (just below 4 GiB), and beyond that the 80 bytes of an RF64 file. A negative size has no
 * meaning and is stated by its lowest 32 bits, as above. Empty for a format without encoding, as above.
 */
[[nodiscard]] QByteArray ComposeLargeWavHeader(const QAudioFormat& format, qint64 dataSize);

/**
 * The same in 80 bytes always, for who learns the size only when the samples are written: a file that its size
 * fields can state is RIFF, and an empty "JUNK" chunk keeps the room of RF64's "ds64" chunk.
 */
[[nodiscard]] QByteArray ComposeWavHeaderWithRoom(const QAudioFormat& format, qint64 dataSize);

/** How many bytes `bytes` of audio in the format `from` become in the format `to`; -1 when that cannot be told. */
[[nodiscard]] qint64 CalculateAudioDataSize(qint64 bytes, const QAudioFormat& from, const QAudioFormat& to,
                                            ByteCounting counting);

/** bytes / (a * b), where a and b are channel count and bytes per sample; -1 when one is below 1 or bytes below 0.
 */
[[nodiscard]] qint64 BytesToSamples(qint64 bytes, int a, int b);

/** samples * a * b; -1 when any of them is below 1, so also for no samples at all. */
[[nodiscard]] qint64 SamplesToBytes(qint64 samples, int a, int b, ByteCounting counting);

} // namespace vantoraudio::AudioEngine
