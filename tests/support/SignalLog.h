#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QStringList>

#include <mutex>

/** Writes down a WavFile's signals, one line each, on the threads that emit them. Read it when these have ended.
 */
class SignalLog : public QStringList
{
public:
    explicit SignalLog(WavFile& file)
    {
        QObject::connect(
            &file, &WavFile::NewData, &file, [this] { Write(QStringLiteral("NewData")); }, Qt::DirectConnection);
        QObject::connect(
            &file, &WavFile::ProgressChanged, &file,
            [this](int progress, int min, int max, const QString& text) {
                Write(QStringLiteral("%1 of %2..%3 %4").arg(progress).arg(min).arg(max).arg(text));
            },
            Qt::DirectConnection);
    }

private:
    void Write(const QString& line)
    {
        const std::lock_guard lock(m_mutex);
        append(line);
    }

    /** Not a QMutex, which the thread sanitizer does not see. */
    std::mutex m_mutex;
};
