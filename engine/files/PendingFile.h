#pragma once

#include <QtCore/QString>
#include <QtCore/QTemporaryFile>

namespace vantoraudio::AudioEngine {

/**
 * A file that grows out of sight and takes its name only when it is whole: nobody sees a part of it, and what
 * stood under the name can be read until then. Unless committed, the destructor drops what was written.
 */
class PendingFile
{
public:
    /** Does nothing yet. Where `path` is a link, what it points at will be replaced. */
    explicit PendingFile(const QString& path);

    /** False when the name may not be written or there is nowhere to write; nothing has changed then. */
    [[nodiscard]] bool Open();

    /** What will be replaced: what `path` leads to. */
    const QString& Path() const { return m_path; }

    /** Whether Commit() leaves the former file whole when it fails; known after Open(). */
    bool ReplacesInOneStep() const { return m_isBeside; }

    /** Where to write; open after Open(). */
    QFile& File() { return m_file; }

    /**
     * Puts the file under its name: in one step where its folder may be written, else (and for devices) by copying
     * its bytes. False leaves the former file as it was, or empty when the copying failed.
     */
    [[nodiscard]] bool Commit();

    /** Removes the former file, or empties it where it cannot be removed. Devices stay. */
    void RemoveFormer();

private:
    bool OpenBeside();
    bool OpenElsewhere();
    bool OpenAs(const QString& nameTemplate);
    bool MoveOver();
    bool CopyOver();

    QString m_path;
    QTemporaryFile m_file;
    bool m_isBeside = false;
};

} // namespace vantoraudio::AudioEngine
