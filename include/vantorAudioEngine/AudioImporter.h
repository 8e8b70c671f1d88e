#pragma once

#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/Export.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFuture>
#include <QtCore/QString>

#include <functional>

class QThreadPool;

namespace vantoraudio::AudioEngine {

/** How an imported WAV file is to be. */
struct ImportOptions
{
    enum SampleFormat
    {
        /** Float as long as the WAV file stays below 2 GiB, Int16 beyond. */
        Automatic,
        Float,
        Int16
    };

    static constexpr int highestSampleRate = 768000;

    /** In Hz, up to highestSampleRate; 0 keeps the file's own rate. */
    int sampleRate = 0;
    SampleFormat sampleFormat = Automatic;
    /** Whether a WAV file of more than 4 GiB becomes an RF64 file, which WavFile opens after
     * WavFile::SetLargeFiles(true). Otherwise the import of it is refused. */
    bool mayBeLarge = true;
};

/** What became of an import. */
struct ImportResult
{
    AudioFileInfo::Problem problem = AudioFileInfo::Problem::None;
    /** Of the new WAV file: */
    qint64 frameCount = 0;
    int sampleRate = 0;
    /** 1 or 2. */
    int channelCount = 0;
    QAudioFormat::SampleFormat sampleFormat = QAudioFormat::Unknown;
    /** How many packets or stretches of the source were damaged. They are left out, everything else was imported.
     */
    qint64 damagedPackets = 0;

    [[nodiscard]] bool IsSuccess() const { return problem == AudioFileInfo::Problem::None; }
    /** The code that Decoder gives for the same: ErrorOpenFile, ErrorInvalidFormat or ErrorWriteHeader. */
    [[nodiscard]] VANTORAUDIOENGINE_EXPORT WavFile::AudioEngineReturnValue Code() const;
};

/**
 * Turns any file with audio that FFmpeg reads into a WAV file that WavFile reads, with exactly the samples that
 * FFmpeg decodes. More than two channels are mixed down to stereo. Of several audio streams FFmpeg's choice is
 * taken.
 *
 * The WAV file grows in a hidden file beside `outPath` and takes that name when it is whole; an older file stays
 * until then, and after a failure. Both paths may name the same file. Where only the file but not its folder may
 * be written, its bytes are overwritten at the end; a failure or a cancellation at that point leaves it empty.
 *
 * Needs no event loop, no media backend and no environment variable. Any thread; imports do not disturb each
 * other.
 *
 * FFmpeg writes warnings about damaged files to the standard error stream. How much it writes is one setting for
 * the whole process, so it is left alone here: a program that wants less calls av_log_set_level() or
 * av_log_set_callback() itself.
 */
class VANTORAUDIOENGINE_EXPORT AudioImporter
{
public:
    /**
     * Imports in the background, on `pool` or the global thread pool. Besides the pool's thread one more works.
     *
     * The future's progress goes from 0 to 1000. Its cancel() ends the import within 50 ms, or after the frame
     * that is being decoded where a format packs a second of many channels into one. Nothing is left of the import
     * then, unless the file was whole already, and the future has no result. In every other case it has exactly
     * one.
     */
    [[nodiscard]] static QFuture<ImportResult> Import(const QString& inPath, const QString& outPath,
                                                      const ImportOptions& options = {},
                                                      QThreadPool* pool = nullptr);

    /** Is told the progress from 0 to 1000, and false ends the import for good. Asked by both threads of an
     * import, often. Must not throw. */
    using Observer = std::function<bool(int permille)>;

    /** The same on the calling thread; returns when it is done. Its problem is Cancelled when `goesOn` ended it.
     */
    [[nodiscard]] static ImportResult ImportNow(const QString& inPath, const QString& outPath,
                                                const ImportOptions& options = {}, const Observer& goesOn = {});

    /**
     * Lowers what FFmpeg takes in one piece, in bytes, for this library and everyone else in the process; it is
     * 2 GiB as long as nobody sets it. Some demuxers fill with zeros what a broken header asks for: a file of 109
     * bytes took 1.3 GB. What needs more cannot be opened or decoded. 256 MiB are plenty for audio. Does nothing
     * with a number below 1. Any thread; takes effect at once.
     */
    static void LimitAllocations(qint64 bytes);
};

} // namespace vantoraudio::AudioEngine
