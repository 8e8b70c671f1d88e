#pragma once

#include <vantorAudioEngine/Export.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaType>
#include <QtCore/QSharedDataPointer>
#include <QtCore/QString>

namespace vantoraudio::AudioEngine {

struct ImportOptions;
struct AudioFileFacts;

/**
 * What is in an audio file, and whether it can be loaded. A value: cheap to copy, may go from thread to thread.
 *
 * Probe() looks into the file with FFmpeg, without decoding it. A getter gives 0 or an empty text where the file
 * does not say it.
 */
class VANTORAUDIOENGINE_EXPORT AudioFileInfo
{
    Q_DECLARE_TR_FUNCTIONS(vantoraudio::AudioEngine::AudioFileInfo)

public:
    /** Why a file cannot be loaded, or an import did not succeed. */
    enum class Problem
    {
        None,
        /** There is no file of that name, or no name at all. */
        NotFound,
        /** The user may not read it. */
        NoPermission,
        /** A folder, a pipe or a device. */
        NotAFile,
        /** Nothing that FFmpeg knows, or no audio stream in it. */
        NoAudio,
        /** There is an audio stream, but nothing of it can be decoded. */
        Damaged,
        /** The disk or the network gave an error while the file was read. */
        CannotBeRead,
        /** Encrypted against copying, as far as FFmpeg tells: MP4, Audible, ASF and Matroska. */
        Protected,
        /** The WAV file would exceed 4 GiB, and ImportOptions::mayBeLarge is off. */
        TooLong,
        /** The disk has too little room for the WAV file. */
        NoSpace,
        /** No WAV file is made at ImportOptions::sampleRate, or not from the file's own rate: a conversion from
         * more than some 200 times the target, or to more than 200,000 times the file's rate, may take gigabytes.
         */
        UnsupportedRate,
        /** No file of that name may be written there. */
        CannotBeCreated,
        /** The WAV file could not be written to its end, for another reason than space, such as want of memory. */
        CannotBeWritten,
        /** The import was cancelled. */
        Cancelled
    };

    /** Knows nothing; its problem is NotFound. */
    AudioFileInfo();
    AudioFileInfo(const AudioFileInfo& other);
    AudioFileInfo& operator=(const AudioFileInfo& other);
    ~AudioFileInfo();

    /**
     * Looks into the file `path`. Any thread; reads a few megabytes at most, and never waits for a pipe. Whatever
     * goes wrong is told by GetProblem().
     */
    [[nodiscard]] static AudioFileInfo Probe(const QString& path);

    /** The absolute path that Probe() was given. */
    [[nodiscard]] QString GetPath() const;
    /** FFmpeg's long name of the file's format, such as "WAV / WAVE (Waveform Audio)". */
    [[nodiscard]] QString GetContainer() const;
    /** FFmpeg's long name of the audio stream's codec, such as "FLAC (Free Lossless Audio Codec)". */
    [[nodiscard]] QString GetCodec() const;
    /** In Hz. */
    [[nodiscard]] int GetSampleRate() const;
    [[nodiscard]] int GetChannelCount() const;
    /** Bits of a stored sample; 0 for codecs that store none, such as MP3. */
    [[nodiscard]] int GetBitsPerSample() const;
    /** In seconds; 0 where it is unknown. An estimate for some formats. */
    [[nodiscard]] double GetDuration() const;
    [[nodiscard]] QString GetTitle() const;
    [[nodiscard]] QString GetArtist() const;

    /** Whether AudioImporter can read the file, as far as a look at its beginning shows it. */
    [[nodiscard]] bool CanBeLoaded() const { return GetProblem() == Problem::None; }
    [[nodiscard]] Problem GetProblem() const;
    /** A translated sentence that names the file; empty without a problem. */
    [[nodiscard]] QString GetProblemText() const;

    /** How many bytes the imported WAV file will need, with the longest header there is, so that files below 4 GiB
     * are 36 bytes shorter; 0 when the duration is unknown. With `Automatic` it counts the sample type that the
     * import will choose. */
    [[nodiscard]] qint64 GetImportedSize(const ImportOptions& options) const;

    /**
     * Why an import to a file `outPath` would be refused before it begins: what is wrong with this file, TooLong,
     * or NoSpace where it would go. None also where the duration is no more than an estimate, by which nothing is
     * refused. Only the import itself tells of a rate that it cannot make and of a folder in which it may not
     * write. Asks the disk.
     */
    [[nodiscard]] Problem CheckImport(const ImportOptions& options, const QString& outPath) const;

    /** A translated sentence about the file `path`; empty for None. */
    [[nodiscard]] static QString TextOf(Problem problem, const QString& path);

private:
    QSharedDataPointer<AudioFileFacts> m_facts;
};

/** A translated sentence for each result of a file operation, without the file's name; empty for Success. In the
 * context of WavFile. */
[[nodiscard]] VANTORAUDIOENGINE_EXPORT QString TextOf(WavFile::AudioEngineReturnValue result);

} // namespace vantoraudio::AudioEngine

Q_DECLARE_METATYPE(vantoraudio::AudioEngine::AudioFileInfo)
