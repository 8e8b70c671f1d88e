#pragma once

#include <vantorAudioEngine/Export.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFile>
#include <QtCore/QObject>
#include <QtCore/QString>

struct AVCodecContext;
struct AVFormatContext;

/**
 * Turns audio files of any kind that the platform's media framework decodes (MP3 above all) into WAV files, and
 * tells how long such files last. Nothing is kept between the calls.
 *
 * With a Qt older than 6.5 on Linux the program chooses the framework's FFmpeg backend before it makes its
 * application object, by the environment variable QT_MEDIA_BACKEND; the other one decodes nothing without further
 * plug-ins.
 *
 * Threads: any thread of a program that has its QCoreApplication. Calls on several threads do not disturb each
 * other. A call keeps its thread busy, except for the events that it handles.
 */
class VANTORAUDIOENGINE_EXPORT Decoder : public QObject
{
    Q_OBJECT

public:
    /** The library itself never makes one: all of it is static. */
    Decoder();
    ~Decoder() override;

    /**
     * Decodes the audio file `inPath` into a WAV file `outPath` at `sampleRate` Hz, from 1; -1 stands for 96000.
     *
     * The samples keep the type in which the framework delivers them, while the header always declares 32-bit
     * float. So the result is sound for what is decoded to float (MP3, Ogg Vorbis, AAC), and noise for what is
     * decoded to integers (FLAC, WAV). ConvertToFloat() is right for both.
     *
     * Looks through the whole file first, and then runs an event loop until the decoding has ended, at most 2 s
     * for a file that turns out not to be decodable: the caller may be called, closed and even destroyed
     * meanwhile, and other conversions may start. Ending the application ends the call too.
     *
     * - Success: `outPath` is the whole new file. Both paths may name the same file: it is read to its end first.
     * - ErrorOpenFile: a path is empty, `inPath` cannot be read, `outPath` cannot be written, or both are the same
     *   file in a folder that may not be written, where it could not be replaced in one step.
     * - ErrorInvalidFormat: `sampleRate` is 0 or below -1 (no file is opened then); `inPath` holds no audio; or it
     *   cannot be read or decoded to its end: an unknown sample type, samples that are no finite numbers, a
     * channel count that changes in the middle (the framework crashes because of it), an error of the framework,
     * 10 s without progress (in a second attempt as well with a framework that is known to stand still at times),
     * the end of the application.
     * - ErrorWriteHeader: the new file could not be written whole.
     *
     * The audio grows in an unnamed or temporary file, so that no part of it ever stands under `outPath`. What the
     * call refuses before decoding leaves both files as they were, without creating one. A later failure removes
     * an older file at `outPath`, which would be taken for the result, unless it is the input. Only where
     * `outPath` may be written but its folder not, its bytes are overwritten in place at the end, and a failure
     * at that point leaves it empty.
     *
     * More than 4 GiB of samples exceed what the header can state: its size fields wrap around.
     */
    static WavFile::AudioEngineReturnValue Convert(const QString& inPath, const QString& outPath, int sampleRate);

    /**
     * Turns any file that FFmpeg reads into a WAV file of true floats, as AudioImporter does with
     * ImportOptions::Float, and with its quality: no media backend is needed, and more than two channels become
     * two. `sampleRate` is -1 for 96000, or 1 to ImportOptions::highestSampleRate.
     *
     * Events are handled meanwhile, as by Convert(), and both paths may name the same file. The results, and
     * what a failure leaves at `outPath`, are those of Convert(); ErrorInvalidFormat also for another rate, and
     * for what would exceed the 4 GiB that a header can state. A few damaged packets are passed over.
     */
    static WavFile::AudioEngineReturnValue ConvertToFloat(const QString& inPath, const QString& outPath,
                                                          int sampleRate);

    /**
     * How long the audio of `path` lasts, in milliseconds: what the container states, or the audio stream where
     * the container states nothing. 0 when the path is empty or that cannot be found; the debug log tells why.
     * Below 0 where a damaged container states so; AudioFileInfo::GetDuration() never is.
     *
     * Reads a few megabytes of the file at most and leaves it closed. The library itself never calls it.
     */
    static int GetDuration(const QString& path);

private:
    friend class DecoderTestAccess;

    class Probe;
    class Run;

    /**
     * Opens `path` into `format`, finds its first audio stream and opens a decoder for it in `codec`. Both must
     * be allocated and not open. 0 on success, -1 on failure, with the cause on the debug log.
     *
     * The caller closes and frees both, except that a file that cannot be opened frees `format`: `streamIndex`
     * keeps its value then, while in every other case it becomes the stream's index or -1.
     */
    static int GetAudioCodecContext(AVFormatContext* format, AVCodecContext* codec, int& streamIndex,
                                    const QString& path);

    /** Writes the header of `dataSize` bytes of 32-bit float samples to the start of `file`. Its fields hold the
     * lowest 32 bits of what they state. 1 when all of its 44 bytes were written, else 0. */
    static int WriteHeader(QFile& file, int dataSize, int sampleRate, int channelCount);
};
