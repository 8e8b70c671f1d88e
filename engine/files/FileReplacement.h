#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

/** Telling files apart, and putting a finished file in the place of another one. */
namespace vantoraudio::AudioEngine {

/** Whether both names lead to the same existing file, through links and relative paths too. */
[[nodiscard]] bool IsSameFile(const QString& a, const QString& b);

/** Writes everything that `file` holds back to the disk, so that it survives a power failure. False when some of
 * it could not be stored. */
[[nodiscard]] bool FlushToDisk(QFile& file);

/**
 * Gives the file `from` the name `to` in one step, in the place of the file that had it and with that file's
 * permissions. Both lie in the same folder. When it fails, both files stay as they are.
 */
[[nodiscard]] bool ReplaceFile(const QString& from, const QString& to);

} // namespace vantoraudio::AudioEngine
