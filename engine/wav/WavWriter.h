#pragma once

#include "engine/files/PendingFile.h"

#include <QtCore/QByteArray>
#include <QtMultimedia/QAudioFormat>

namespace vantoraudio::AudioEngine {

/** What the library writes into a WAV file: first the header, which is never changed afterwards, then the samples.
 */
class WavWriter
{
public:
    /** `output` is not open yet, and must outlive this. Whoever made it also gives it its name. */
    explicit WavWriter(PendingFile& output) : m_output(output) {}

    /**
     * Opens the output and writes the header of `dataSize` bytes of samples. False for a folder, a pipe or a
     * device, for a format without encoding, and where the header cannot be stored. With large files allowed,
     * sizes beyond 4 GiB are stated, too.
     */
    [[nodiscard]] bool Open(const QAudioFormat& format, qint64 dataSize, bool allowsLargeFiles);

    /** False when not all of it could be written. */
    [[nodiscard]] bool Append(QByteArrayView bytes)
    {
        return m_output.File().write(bytes.data(), bytes.size()) == bytes.size();
    }

    /** Leaves what could be written under the name, unless another file has it or the header is not whole. */
    void KeepPart();

private:
    PendingFile& m_output;
    bool m_hasHeader = false;
};

} // namespace vantoraudio::AudioEngine
