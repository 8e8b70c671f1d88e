#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtMultimedia/QAudioFormat>

namespace vantoraudio::AudioEngine {

/** A WAV file that the library writes: first the header, which is never changed afterwards, then the samples. */
class WavWriter
{
public:
    /**
     * Opens `path`, over what is there, and writes the header of `dataSize` bytes of samples. False for a folder,
     * a pipe or a device, for a format without encoding, and where the header cannot be stored; the file then
     * stays as far as it was written. With large files allowed, sizes beyond 4 GiB are stated, too.
     */
    [[nodiscard]] bool Open(const QString& path, const QAudioFormat& format, qint64 dataSize,
                            bool allowsLargeFiles);

    /** False when not all of it could be written. */
    [[nodiscard]] bool Append(QByteArrayView bytes)
    {
        return m_file.write(bytes.data(), bytes.size()) == bytes.size();
    }

    /** False when not all of it arrived in the file. Closes it. */
    [[nodiscard]] bool Finish();
    /** The same, and what was written survives a power failure. */
    [[nodiscard]] bool FinishOnDisk();

private:
    QFile m_file;
};

} // namespace vantoraudio::AudioEngine
