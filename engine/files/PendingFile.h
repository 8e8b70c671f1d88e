#pragma once

#include "engine/files/CancelCheck.h"

#include <QtCore/QString>
#include <QtCore/QTemporaryFile>

namespace vantoraudio::AudioEngine {

/**
 * A file that grows out of sight and gets its name only when it is whole: nobody sees a part of it, and the former
 * file of that name can be read until then. The destructor removes what was written but not committed.
 */
class PendingFile
{
public:
    /** Does nothing yet. Where `path` is a link, what it points at will be replaced. `sourcePath` names what the
     *  file is made from, which may be the same file. */
    explicit PendingFile(const QString& path, const QString& sourcePath = {});

    /** False when the name may not be written, there is nowhere to write, or the source has the name and could not
     *  be replaced in one step; nothing has changed then. */
    [[nodiscard]] bool Open();

    /** What will be replaced: what `path` leads to. */
    const QString& Path() const { return m_path; }

    /** Where to write; open after Open(). */
    QFile& File() { return m_file; }

    /**
     * Puts the file under its name: in one step where its folder may be written, else (and for devices) by copying
     * its bytes. Only the copying can be cancelled, after each megabyte. False leaves the former file as it was,
     * or empty when the copying had begun.
     */
    [[nodiscard]] bool Commit(const CancelCheck& isCancelled = {});

    /** Removes the former file, or empties it where it cannot be removed. Devices stay, and so does the source. */
    void RemoveFormer();

private:
    bool OpenBeside();
    bool OpenElsewhere();
    bool OpenAs(const QString& nameTemplate);
    bool ReplacesSource() const;
    bool MoveOver();
    bool CopyOver(const CancelCheck& isCancelled);

    QString m_path;
    QString m_sourcePath;
    QTemporaryFile m_file;
    bool m_isBeside = false;
};

} // namespace vantoraudio::AudioEngine
