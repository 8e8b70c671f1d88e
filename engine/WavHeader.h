#pragma once

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

/**
 * Reads the header at the start of `device`, which must be open and random-access.
 *
 * What was understood before a failing check stays in `header`, all other fields keep their former values, and the
 * device stays where reading stopped. A device that ends before its "fmt " chunk is complete gives Success, with
 * the data offset at its end and the rest as before. No size that the file states makes this allocate memory.
 */
[[nodiscard]] WavFile::AudioEngineReturnValue ReadWavHeader(QIODevice& device, WavHeader& header);

/** Size of every header that the library writes, in bytes. */
inline constexpr int writtenHeaderSize = 44;

/**
 * The 44 bytes that stand before `dataSize` bytes of samples in `format`; empty for a sample format other than
 * Int16, Int32 and Float.
 */
[[nodiscard]] QByteArray ComposeWavHeader(const QAudioFormat& format, int dataSize);

/** How many bytes `bytes` of audio in the format `from` become in the format `to`; -1 when that cannot be told. */
[[nodiscard]] int CalculateAudioDataSize(int bytes, const QAudioFormat& from, const QAudioFormat& to);

/** bytes / (a * b), where a and b are channel count and bytes per sample; -1 when one is below 1 or bytes below 0.
 */
[[nodiscard]] int BytesToSamples(int bytes, int a, int b);

/** samples * a * b, the lowest 32 bits of it; -1 when any of them is below 1, so also for no samples at all. */
[[nodiscard]] int SamplesToBytes(int samples, int a, int b);

} // namespace vantoraudio::AudioEngine
