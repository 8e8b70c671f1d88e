#pragma once

#include <vantorAudioEngine/Export.h>

#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtMultimedia/QAudioFormat>

/**
 * One RIFF/WAVE file on disk: its sample format, where its sample data lies, how long it lasts, and the
 * decimated samples that a waveform view draws of it.
 *
 * Readable files are PCM of 16, 24 or 32 bits and IEEE float, plain or extensible, with one or two channels.
 * Times are seconds from the start of the audio, offsets and lengths are bytes.
 *
 * Threads: the object lives on one thread, usually the GUI thread. ReadData() may run on a worker thread, also
 * beside other tasks on the same object: every task keeps a place of its own in the file. Meanwhile the owner may
 * call the abort functions, GetSamples(), the other getters and SetSelectedChannel(), but neither Open() nor
 * close(): stop the tasks and wait for them first. Signals are emitted on the thread that runs the task.
 */
class VANTORAUDIOENGINE_EXPORT WavFile : public QFile
{
    Q_OBJECT

public:
    /** The result of every file operation of the library. */
    enum AudioEngineReturnValue
    {
        Success = 0,
        /** Not RIFF/WAVE, or a format tag, bit depth or sub-format that is not supported. */
        ErrorInvalidFormat = -1,
        /** The file could not be opened. */
        ErrorOpenFile = -2,
        /** The file ended in the middle of its header. */
        ErrorReadFile = -3,
        /** The header could not be written whole. */
        ErrorWriteHeader = -4,
        ErrorCreateSnippet = -5,
        ErrorFilterChannel = -6,
        /** Neither one nor two channels. */
        ErrorChannelCount = -7
    };

    /** The channel that extraction, filtering and export use. On a stereo file every value but ChannelLeft and
     *  ChannelRight means the average of both; on a mono file the value is ignored. */
    enum ChannelFormat
    {
        ChannelNone = 0,
        ChannelMono = 1,
        ChannelLeft = 2,
        ChannelRight = 3,
        ChannelLeftRight = 4
    };
    Q_ENUM(ChannelFormat)

    /** A closed file without a name: every format field, offset, length and the duration are 0. */
    explicit WavFile(QObject* parent = nullptr);
    ~WavFile() override;

    /**
     * Copies what is known of the audio: format, offset, length, duration, samples, selected channel and the abort
     * flags of reading and writing. The file itself (name, open state, position), the sample size and the abort
     * flag of channel filtering stay the target's own.
     */
    WavFile& operator=(const WavFile& other);

    /**
     * Closes what was open, opens `fileName` for reading and reads its header.
     *
     * ErrorOpenFile leaves the object closed. ErrorInvalidFormat, ErrorReadFile and ErrorChannelCount leave it
     * open, with the fields as far as the header had been read: treat it as unusable. A file that ends before its
     * "fmt " chunk is complete counts as Success, with the former format and duration. The samples of the last
     * extraction, the selected channel and the abort flags are kept in every case.
     */
    virtual AudioEngineReturnValue Open(const QString& fileName);

    /** Size of the sample data in bytes as the header states it; the file may hold less. */
    qint64 GetDataLength() const;
    /** Position of the first sample in the file, in bytes. */
    qint64 GetDataOffset() const;
    /** Length of the audio in seconds. What a damaged header makes of it may be 0, negative, infinite or
     *  not-a-number. */
    double GetDuration() const;
    /** The format of the samples. 24-bit data is described as Int32; GetSampleSize() tells the two apart. */
    const QAudioFormat& GetFileFormat() const;
    /** Bits per sample in the file: 16, 24 or 32, and 0 before the first Open(). */
    int GetSampleSize() const;

    ChannelFormat GetSelectedChannel() const;
    /** Chooses the channel of the tasks that start from now on. */
    void SetSelectedChannel(ChannelFormat channel);

    /** The samples of the last completed extraction, shared, not copied. Any thread. */
    QList<float> GetSamples() const;

    /**
     * Extracts samples for display: one value for every `stepSize` frames (at least 1) of the selected channel
     * between `startTime` and `endTime`. Whole blocks of 200 values are read, so a few values past the end belong
     * to the result.
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

Q_SIGNALS:
    /** A complete set of samples has been stored. */
    void NewData();
    /** A long task went on: `progress` lies between `min` and `max`, `text` is a translated status line. */
    void ProgressChanged(int progress, int min, int max, QString text);

private:
    friend class WavFileTestAccess;

    /** Reads the header of the open file into the fields; they keep what was read before a failing check, and the
     *  file stays where reading stopped. */
    AudioEngineReturnValue ReadHeader();
    /** Writes the 44 bytes that describe the file format and `dataSize` bytes of samples to the start of this
     * file, which must be open for writing, and goes behind them. ErrorInvalidFormat writes nothing. */
    AudioEngineReturnValue WriteHeader(int dataSize);

    static int CalculateAudioDataSize(int bytes, const QAudioFormat& from, const QAudioFormat& to);
    static int BytesToSamples(int bytes, int a, int b);
    static int SamplesToBytes(int samples, int a, int b);
    /** The number of FFmpeg's interleaved sample format, or -1 for what the library does not convert. */
    static int FFmpegSampleFormatFromQAudioFormat(const QAudioFormat& format);

    /** Decode a block of whole frames: one value for every `step` of them. ReadBlock() chooses the reader by the
     *  format and the sample size. */
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

    struct Extraction;
    Extraction StartExtraction(double startTime, double endTime, int stepSize);
    QList<float> Extract(const Extraction& extraction);
    void StoreSamples(QList<float>& samples);
    void SetAbortFlag(bool& flag);

    QAudioFormat m_fileFormat;
    qint64 m_dataOffset = 0;
    qint64 m_dataLength = 0;
    double m_duration = 0.0;
    QList<float> m_samples;
    bool m_abortRead = false;
    bool m_abortWrite = false;
    bool m_abortChannelFilter = false;
    /** Guards the samples, the abort flags and the snapshot that a task takes when it starts. Flags and selected
     *  channel are read without it, one at a time. */
    mutable QMutex m_mutex;
    int m_sampleSize = 0;
    ChannelFormat m_selectedChannel = ChannelNone;

    /** Held while a task moves this file and reads one block; never together with the other mutex. */
    QMutex m_deviceMutex;
};
