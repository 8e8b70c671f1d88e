#pragma once

#include <vantorAudioEngine/Export.h>

#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtMultimedia/QAudioFormat>

#include <optional>

namespace vantoraudio::AudioEngine {
struct SnippetExport;
} // namespace vantoraudio::AudioEngine

/**
 * One RIFF/WAVE file on disk: its sample format, where its sample data lies, how long it lasts, and the
 * decimated samples that a waveform view draws of it.
 *
 * Readable files are PCM of 16, 24 or 32 bits and IEEE float, plain or extensible, with one or two channels.
 * Times are seconds from the start of the audio, offsets and lengths are bytes.
 *
 * Threads: the object lives on one thread, usually the GUI thread. ReadData(), CreateSnippet() and
 * FilterChannel() may run on worker threads, also beside other tasks on the same object: every task keeps a place
 * of its own in the file. Meanwhile the owner may call the abort functions, GetSamples(), the other getters and
 * SetSelectedChannel(), but neither Open() nor close(): stop the tasks and wait for them first. Signals are
 * emitted on the thread that runs the task.
 */
class VANTORAUDIOENGINE_EXPORT WavFile : public QFile
{
    Q_OBJECT

public:
    /** The result of every file operation of the library. */
    enum AudioEngineReturnValue
    {
        Success = 0,
        /** Neither RIFF/WAVE nor an allowed RF64, or a format tag, bit depth or sub-format that is not supported.
         */
        ErrorInvalidFormat = -1,
        /** The file could not be opened. */
        ErrorOpenFile = -2,
        /** The file ended, or could not be read, in the middle of its header. */
        ErrorReadFile = -3,
        /** The header could not be written whole. */
        ErrorWriteHeader = -4,
        ErrorCreateSnippet = -5,
        ErrorFilterChannel = -6,
        /** Neither one nor two channels. */
        ErrorChannelCount = -7
    };

    /** The channel that extraction, filtering and export use. On a stereo file every value but ChannelLeft and
     * ChannelRight, also one without a name, means the average of both; on a mono file the value is ignored. */
    enum ChannelFormat : int
    {
        ChannelNone = 0,
        ChannelMono = 1,
        ChannelLeft = 2,
        ChannelRight = 3,
        ChannelLeftRight = 4
    };
    Q_ENUM(ChannelFormat)

    /** What a task does where a file has the name of the one that it writes. */
    enum class ExistingFile
    {
        /** CreateSnippet() and Convert() replace it; FilterChannel() leaves it alone, with Success. */
        Customary,
        /** It is replaced. */
        Replace,
        /** The task fails and leaves it alone, also when it came while the task worked. */
        Refuse
    };

    /** The channel counts that Convert() knows. */
    enum ChannelLayout
    {
        Mono = 1,
        Stereo = 2
    };

    /** A closed file without a name: every format field, offset, length and the duration are 0. */
    explicit WavFile(QObject* parent = nullptr);
    ~WavFile() override;

    /**
     * Copies what is known of the audio: format, offset, length, duration, samples, selected channel and the abort
     * flags of reading and writing. The file itself (name, open state, position), the sample size, the abort flag
     * of channel filtering, SetLargeFiles(), SetKeepParts(), SetKeepBothChannels(), SetKeepPeaks() and
     * SetExistingFile() stay the target's own. The library itself never calls it.
     */
    WavFile& operator=(const WavFile& other);

    /**
     * Closes what was open, opens `fileName` for reading and reads its header.
     *
     * ErrorOpenFile leaves the object closed; errorString() is what QFile says, or, for a folder, pipe or device,
     * that it is not a regular file. ErrorInvalidFormat, ErrorReadFile and ErrorChannelCount leave the object
     * open, with the fields as far as the header had been read: treat it as unusable. A file that ends before its
     * "fmt " chunk is complete counts as Success, with the former format and duration. The samples of the last
     * extraction, the selected channel and the abort flags are kept in every case.
     */
    virtual AudioEngineReturnValue Open(const QString& fileName);

    /** Size of the sample data in bytes as the header states it; the file may hold less. */
    qint64 GetDataLength() const;
    /** Position of the first sample in the file, in bytes. */
    qint64 GetDataOffset() const;
    /** Length of the audio in seconds. A damaged header may make it 0, negative, infinite or not-a-number. */
    double GetDuration() const;
    /** The format of the samples. 24-bit data is described as Int32; GetSampleSize() tells the two apart. */
    const QAudioFormat& GetFileFormat() const;
    /** Bits per sample in the file: 16, 24 or 32. 0 before the first Open(); after a refused one, whatever the
     * header says. */
    int GetSampleSize() const;

    /** Whether files of any length are read and written; false after construction. */
    [[nodiscard]] bool GetLargeFiles() const;
    /**
     * Applies to the next Open() and to the tasks that start from now on. Any thread.
     *
     * Not allowed: only RIFF files are opened. Frames and bytes are counted in 32 bits: a position more than 2 GiB
     * behind the first sample wraps around, and so does a size that a written header states.
     *
     * Allowed: RF64 files are opened, too, with a data length of up to 2^63 - 1 bytes, and every position is
     * reached. CreateSnippet(), FilterChannel() and Convert() state sizes up to 4 GiB in the usual header of 44
     * bytes and write an RF64 header of 80 bytes for more.
     */
    void SetLargeFiles(bool allowed);

    /** Whether CreateSnippet(), FilterChannel() and Convert() leave a part of their file; true after construction.
     */
    [[nodiscard]] bool GetKeepParts() const;
    /**
     * Applies to the tasks that start from now on. Any thread.
     *
     * Every file grows out of sight and takes its name when it is whole; an older file of that name stays until
     * then. With parts kept, what was written by an abort takes the name all the same, and what was written by a
     * failure does where no other file has it. Without, nothing is left of either.
     */
    void SetKeepParts(bool keep);

    /** Whether CreateSnippet() writes a stereo file where ChannelLeftRight of a stereo file is selected, instead
     * of the average; false after construction. */
    [[nodiscard]] bool GetKeepBothChannels() const;
    /** Applies to the tasks that start from now on. Any thread. */
    void SetKeepBothChannels(bool keep);

    /** Whether ReadData() keeps every peak; false after construction. */
    [[nodiscard]] bool GetKeepPeaks() const;
    /** With true the values of ReadData() are, for every two steps, the lowest and then the highest sample of all
     * their frames, so that a view shows each peak, however short. A remainder of one step or less gives the one
     * that is farther from 0. Infinite samples, and those that are not numbers, count as 0. That takes longer, as
     * every frame is decoded. Otherwise, and with steps of one frame, the values are the first sample of each
     * step. Applies to the extractions that start from now on. Any thread. */
    void SetKeepPeaks(bool keep);

    /** Customary after construction. */
    [[nodiscard]] ExistingFile GetExistingFile() const;
    /** Applies to the tasks that start from now on, but not to a conversion in place. Any thread. */
    void SetExistingFile(ExistingFile existing);

    /** ChannelNone after construction. */
    ChannelFormat GetSelectedChannel() const;
    /** Chooses the channel of the tasks that start from now on. */
    void SetSelectedChannel(ChannelFormat channel);

    /** The samples of the last completed extraction, shared, not copied. Any thread. */
    QList<float> GetSamples() const;

    /**
     * Extracts samples for display: one value for every `stepSize` frames (at least 1) of the selected channel
     * between `startTime` and `endTime`, see SetKeepPeaks(). Whole blocks of 200 values are read, so a few values
     * past the end belong to the result.
     *
     * Returns when done; meant for a worker thread. Stores the values for GetSamples() and emits NewData(), unless
     * AbortRead() stopped it: then the former values stay. A range outside the data or a failed read ends the
     * extraction early with what was there. ProgressChanged(0, 0, 1, "Updated") comes last in every case.
     */
    void ReadData(double startTime, double endTime, int stepSize);

    /** Stop the running task after the block at hand; without a running task they do nothing. Any thread. */
    void AbortRead();
    void AbortWrite();
    void AbortChannelFilter();

    /**
     * Converts the audio of this open file to `target`, a format of one or two channels, and writes it to
     * `outPath`, in the place of what is there. The header states the size that the length of the source gives;
     * the data may be a few frames longer or shorter.
     *
     * An empty `outPath`, or one that leads to this very file, converts in place: only when the result is complete
     * and stored, this object is closed and the result takes the place of the file. Otherwise the object stays
     * open, behind what was read; it is closed also when only that last step fails. A file that another program
     * changed or replaced since the conversion began, or replaced since Open(), stays as it is now, and
     * errorString() says so.
     *
     * True when everything was converted and written. False leaves an older `outPath` as it was, or else what was
     * written by then (see SetKeepParts()), and this file as it was: when it is not open, when the target's rate
     * or channel count is below 1 or its sample format Unknown or UInt8, when the file holds no frame, when no
     * frame comes out (of a few frames at another rate, or of samples that a header promises and that are not
     * there), when the file cannot be read to its end or is shorter than at Open(), when the disk has no room for
     * the result, the file's rate is hundreds of times the target's or the target's more than 200,000 times the
     * file's (at once), when the output cannot be written, and when a file is refused (see SetExistingFile()).
     * What the resampler refuses, and that no frame comes out, is reported on the standard error stream.
     *
     * Throws std::bad_optional_access when one side has neither one nor two channels. No progress and no abort;
     * the object must not be used by anyone else meanwhile, except for the tasks in the background when the
     * conversion is not in place.
     */
    bool Convert(const QAudioFormat& target, const QString& outPath);

    /**
     * Writes the selected channel between `start` and `end`, in seconds, to `outPath`, in the place of what is
     * there: a one-channel file in the sample format of this one, or in Float for 24-bit data. A stereo file with
     * another channel selected than ChannelLeft or ChannelRight gives the average of both (see
     * SetKeepBothChannels()).
     *
     * Returns when done; meant for a worker thread. Whole blocks of 200 frames are copied, so that up to 199
     * frames behind the end come along; the header states the size of the range in whole milliseconds, and -1
     * when the range holds no frame. The end of the file ends the snippet. Emits ProgressChanged for every block.
     *
     * Success also when AbortWrite() stopped it; what was written by then takes the name (see SetKeepParts()).
     * ErrorCreateSnippet when the output cannot be created or filled, which may leave a part of it where there was
     * no file; when this file cannot be read or is shorter than at Open(), which leaves `outPath` as it was; when
     * `outPath` leads to this very file, which is not touched; and when a file is refused (see SetExistingFile()).
     */
    AudioEngineReturnValue CreateSnippet(const QString& outPath, double start, double end);

    /**
     * Writes the selected channel of a stereo file, ChannelLeft or ChannelRight, to the new file `outPath`, with
     * one channel and the sample format of this one, or Float for 24-bit data. Does nothing, with Success, when
     * the file is not stereo, another channel is selected, or `outPath` exists (see SetExistingFile()).
     *
     * Returns when done; meant for a worker thread. Whole blocks of 200 frames are copied up to the end of the
     * audio, so that the data may be longer than the header states. Emits ProgressChanged for every block.
     *
     * Success also when AbortChannelFilter() stopped it; what was written by then takes the name (see
     * SetKeepParts()). ErrorFilterChannel when the output cannot be created or filled, which may leave a part of
     * it; when this file cannot be read or is shorter than at Open(), which leaves nothing; and, after
     * SetExistingFile(), when a file is refused or `outPath` leads to this very file, which is not touched.
     */
    AudioEngineReturnValue FilterChannel(const QString& outPath);

Q_SIGNALS:
    /** A complete set of samples has been stored. */
    void NewData();
    /** A long task went on: `progress` lies between `min` and `max`, `text` is a translated status line. */
    void ProgressChanged(int progress, int min, int max, QString text);

private:
    friend class WavFileTestAccess;
    friend struct vantoraudio::AudioEngine::SnippetExport;

    /** Reads the header of the open file into the fields; they keep what was read before a failing check, and the
     * file stays where reading stopped. */
    AudioEngineReturnValue ReadHeader();

    /** The number of FFmpeg's interleaved sample format, or -1 for what the library does not convert. */
    static int FFmpegSampleFormatFromQAudioFormat(const QAudioFormat& format);
    /** Empty for channel counts that Convert() does not know. */
    static std::optional<ChannelLayout> SelectChannelLayout(const QAudioFormat& format);

    // The library itself never calls the functions from here on: it does the same with functions that its other
    // classes share. They are the class's building blocks, kept under their names, and tests hold them to the same
    // results.

    /** Writes the header that describes the file format and `dataSize` bytes of samples to the start of this file,
     * which must be open for writing, and goes behind it. ErrorInvalidFormat writes nothing. */
    AudioEngineReturnValue WriteHeader(int dataSize);

    static int CalculateAudioDataSize(int bytes, const QAudioFormat& from, const QAudioFormat& to);
    static int BytesToSamples(int bytes, int a, int b);
    static int SamplesToBytes(int samples, int a, int b);

    /** Decode a block of whole frames: one value for every `step` of them. ReadBlock() chooses the reader by the
     * format and the sample size. */
    QList<float> ReadBlock(const QByteArray& block, int step, const QAudioFormat& format, ChannelFormat channel);
    QList<float> ReadS16Block(const QByteArray& block, int step, const QAudioFormat& format,
                              ChannelFormat channel);
    QList<float> ReadS24Block(const QByteArray& block, int step, const QAudioFormat& format,
                              ChannelFormat channel);
    QList<float> ReadS32Block(const QByteArray& block, int step, const QAudioFormat& format,
                              ChannelFormat channel);
    QList<float> ReadF32Block(const QByteArray& block, int step, const QAudioFormat& format,
                              ChannelFormat channel);
    /** One 24-bit sample of three bytes. */
    float ReadS24S(const unsigned char* bytes, const QAudioFormat& format);

    /** Append the samples of one channel of a block of whole frames to `destination`, which is open and has its
     * header; channels other than ChannelLeft and ChannelRight give the average of both. The caller chooses the
     * writer that fits the format and the sample size. */
    void WriteS16Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                       ChannelFormat channel);
    void WriteS32Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                       ChannelFormat channel);
    void WriteF32Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                       ChannelFormat channel);
    void ConvertS24BlockToF32Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                                   ChannelFormat channel);

    QAudioFormat m_fileFormat;
    qint64 m_dataOffset = 0;
    qint64 m_dataLength = 0;
    double m_duration = 0.0;
    QList<float> m_samples;
    bool m_abortRead = false;
    bool m_abortWrite = false;
    bool m_abortChannelFilter = false;
    /** Guards the samples, the abort flags and the snapshot that a task takes when it starts. Flags and selected
     * channel are read without it, one at a time. */
    mutable QMutex m_mutex;
    int m_sampleSize = 0;
    ChannelFormat m_selectedChannel = ChannelNone;
    bool m_allowsLargeFiles = false;
    bool m_keepsParts = true;
    bool m_keepsBothChannels = false;
    bool m_keepsPeaks = false;
    ExistingFile m_existingFile = ExistingFile::Customary;
    /** In bytes. */
    qint64 m_sizeAtOpening = 0;

    /** Held while a task moves this file and reads one block; never together with the other mutex. */
    QMutex m_deviceMutex;
};
