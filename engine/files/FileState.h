#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QString>

class QFileDevice;

namespace vantoraudio::AudioEngine {

/** Tells one state of a file from another one, and from every other file. */
struct FileState
{
    /** Both tell files of one name apart; 0 where the system has no such numbers. */
    quint64 device = 0;
    quint64 number = 0;
    /** In bytes; -1 where there is no file. */
    qint64 size = -1;
    QDateTime changed;

    /** Of the file that `path` leads to. */
    [[nodiscard]] static FileState Of(const QString& path);
    /** Of an open file, whatever has its name by now. */
    [[nodiscard]] static FileState Of(const QFileDevice& file);

    [[nodiscard]] bool IsFile() const { return size >= 0; }
    bool operator==(const FileState&) const = default;
};

} // namespace vantoraudio::AudioEngine
