#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

/** Telling files apart, and giving a finished file its name in one step. */
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

/**
 * Gives the file `from` the free name `to` in the same folder. False where something has that name already, even a
 * link that leads nowhere; it stays as it is. On file systems without hard links, something that takes the name in
 * this very moment is replaced.
 */
[[nodiscard]] bool MoveToFreeName(const QString& from, const QString& to);

/** Gives the file `from` the name `to` in one step, in the place of the link that has it. What that leads to is
 * not touched. */
[[nodiscard]] bool ReplaceLink(const QString& from, const QString& to);

} // namespace vantoraudio::AudioEngine
