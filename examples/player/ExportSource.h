#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <algorithm>
#include <atomic>

/** The file that an export reads. It counts what is read, and refuses to be read any further once the export is
 *  cancelled, which ends every task of WavFile as a failure. Any thread. */
class ExportSource : public WavFile
{
public:
    void Cancel() { m_isCancelled = true; }

    /** How much of the audio is read in all, from 0 to 1; all of it unless this says otherwise. */
    void SetPartToRead(double part) { m_partToRead = part; }

    int Percent() const
    {
        // Not size(), which asks the file that a task is reading.
        const double toRead = std::max(1.0, double(GetDataLength()) * m_partToRead);
        return static_cast<int>(std::min(double(m_read) * 100.0 / toRead, 100.0));
    }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const qint64 count = m_isCancelled ? -1 : WavFile::readData(data, maxSize);
        m_read += std::max(count, qint64(0));
        return count;
    }

private:
    std::atomic<bool> m_isCancelled = false;
    std::atomic<qint64> m_read = 0;
    std::atomic<double> m_partToRead = 1.0;
};
