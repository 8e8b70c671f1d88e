#include "engine/wav/WavWriter.h"

#include "engine/files/FileReplacement.h"
#include "engine/files/RegularFile.h"
#include "engine/samples/Truncation.h"
#include "engine/wav/WavHeader.h"

namespace vantoraudio::AudioEngine {

bool WavWriter::Open(const QString& path, const QAudioFormat& format, qint64 dataSize, bool allowsLargeFiles)
{
    m_file.setFileName(path);
    if (path.isEmpty() || IsFolderPipeOrDevice(path) || !m_file.open(QIODevice::WriteOnly)) {
        return false;
    }
    const QByteArray header = allowsLargeFiles ? ComposeLargeWavHeader(format, dataSize)
                                               : ComposeWavHeader(format, WrapToInt32(dataSize));
    // Flushed, so that a full disk is noticed here and not when the file is closed.
    return !header.isEmpty() && Append(header) && m_file.flush();
}

bool WavWriter::Finish()
{
    const bool isWhole = m_file.flush();
    m_file.close();
    return isWhole;
}

bool WavWriter::FinishOnDisk()
{
    return FlushToDisk(m_file) && Finish();
}

} // namespace vantoraudio::AudioEngine
