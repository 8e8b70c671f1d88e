#include "engine/wav/WavWriter.h"

#include "engine/files/RegularFile.h"
#include "engine/samples/Truncation.h"
#include "engine/wav/WavHeader.h"

namespace vantoraudio::AudioEngine {

bool WavWriter::Open(const QAudioFormat& format, qint64 dataSize, bool allowsLargeFiles)
{
    if (IsFolderPipeOrDevice(m_output.Path()) || !m_output.Open()) {
        return false;
    }
    const QByteArray header = allowsLargeFiles ? ComposeLargeWavHeader(format, dataSize)
                                               : ComposeWavHeader(format, WrapToInt32(dataSize));
    // Flushed, so that a full disk is noticed here and not at the end.
    m_hasHeader = !header.isEmpty() && Append(header) && m_output.File().flush();
    return m_hasHeader;
}

void WavWriter::KeepPart()
{
    if (m_hasHeader) {
        m_output.KeepPart();
    }
}

} // namespace vantoraudio::AudioEngine
