#pragma once

#include "engine/files/PendingFile.h"

#include <vantorAudioEngine/AudioImporter.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <utility>

namespace vantoraudio::AudioEngine {

/** How long an import will probably become. */
struct ImportLength
{
    /** In seconds; 0 when nothing is known. */
    double duration = 0.0;
    /** Whether that is more than a guess. */
    bool isCertain = false;

    /** Of all samples, in bytes. */
    double DataSize(const QAudioFormat& format) const
    {
        return duration * format.sampleRate() * format.bytesPerFrame();
    }
};

/** The sample type that an import begins with. Where `Automatic` cannot tell ahead it begins with Float. */
QAudioFormat::SampleFormat FirstSampleFormat(const ImportOptions& options, const QAudioFormat& format,
                                             const ImportLength& length);

/** In bytes of samples. Tests set lower ones. */
struct ImportLimits
{
    /** Of floats, with ImportOptions::Automatic. */
    qint64 mostFloatBytes = (qint64(2) << 30) - 256;
    /** Of a file without 64-bit sizes. */
    qint64 mostPlainBytes = (qint64(4) << 30) - 256;
    /** Of files that certainly stay below every limit, and of their sources: they get the shortest header. All
     * other files get a header with room for 64-bit sizes. */
    qint64 shortFileBytes = qint64(64) << 20;
    qint64 shortSourceBytes = qint64(16) << 20;
};

/** Whether a WAV file of so many bytes may be made and finds room where `path` lies. */
AudioFileInfo::Problem ProblemOfSize(double bytes, const ImportOptions& options, const QString& path);

/**
 * The WAV file that an import writes. It grows out of sight, and its header gets the true length at the end. With
 * ImportOptions::Automatic, floats that reach 2 GiB are turned into 16-bit integers in place. Used on one thread.
 */
class ImportedWav
{
public:
    using Problem = AudioFileInfo::Problem;

    /** `sourcePath` names what is imported, which may be the same file. */
    ImportedWav(const QString& path, const QString& sourcePath, CancelCheck isCancelled = {},
                const ImportLimits& limits = {})
        : m_limits(limits)
        , m_isCancelled(std::move(isCancelled))
        , m_sourcePath(sourcePath)
        , m_output(path, sourcePath)
    {
    }

    /** Whether the file can be written; nothing has changed when it cannot. */
    [[nodiscard]] bool Open();
    /** What will be replaced: what the path leads to. */
    const QString& Path() const { return m_output.Path(); }

    /** `format` is the format of what will be appended. */
    void Start(const ImportOptions& options, const QAudioFormat& format, const ImportLength& length);
    /** Appends samples. False with a problem. */
    [[nodiscard]] bool Append(const QByteArray& samples);
    /** Completes the header and gives the file its name. */
    [[nodiscard]] bool Finish();
    /** Takes away what stood under the name, unless it is the source. */
    void RemoveFormer() { m_output.RemoveFormer(); }

    Problem GetProblem() const { return m_problem; }
    /** What the file holds; Append() may have changed the sample type. */
    const QAudioFormat& Format() const { return m_format; }
    qint64 DataSize() const { return m_dataSize; }

private:
    bool Fail(Problem problem);
    bool Write(QByteArrayView bytes);
    bool WriteHeader();
    bool Narrow();
    bool IsTooLong() const;

    ImportLimits m_limits;
    CancelCheck m_isCancelled;
    QString m_sourcePath;
    PendingFile m_output;
    QAudioFormat m_format;
    bool m_mayBecomeInt16 = false;
    bool m_isFloatGiven = false;
    bool m_hasRoom = false;
    bool m_mayBeLarge = false;
    qint64 m_dataSize = 0;
    Problem m_problem = Problem::None;
};

} // namespace vantoraudio::AudioEngine
