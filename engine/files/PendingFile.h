#pragma once

#include "engine/files/CancelCheck.h"
#include "engine/files/FileState.h"

#include <QtCore/QString>
#include <QtCore/QTemporaryFile>

#include <optional>

namespace vantoraudio::AudioEngine {

/** What a new file may take the place of, besides a file that may be written. */
struct PendingRights
{
    /** Of a link itself. Otherwise the file that it leads to is replaced. */
    bool replacesLinks = false;
    /** Of a file that may only be read: the right to change its folder is enough. */
    bool replacesReadOnly = false;
};

/**
 * A file that grows out of sight and gets its name only when it is whole: nobody sees a part of it, and the former
 * file of that name can be read until then. The destructor removes what was written but not committed;
 * RemoveLeftovers() removes what a program that was killed has left.
 */
class PendingFile
{
public:
    /** Does nothing yet. Where `path` is a link, what it points at will be replaced. `sourcePath` names what the
     *  file is made from, which may be the same file. */
    explicit PendingFile(const QString& path, const QString& sourcePath = {}, PendingRights rights = {});

    /** False when the name may not be written, there is nowhere to write, or the source has the name and could not
     *  be replaced in one step; nothing has changed then. */
    [[nodiscard]] bool Open();

    /** What will be replaced: what `path` leads to. */
    const QString& Path() const { return m_path; }

    /** Where to write; open after Open(). */
    QFile& File() { return m_file; }

    /** Those of the finished file. Without them it gets those of a former file, or else of any new file. */
    void SetPermissions(QFile::Permissions permissions) { m_permissions = permissions; }

    /** Writes out everything that was given to File(), so that a full disk is noticed; to the disk itself where
     * the source is replaced. */
    [[nodiscard]] bool Store();

    /** False when the source has the name and another program changed, replaced or removed it since Open(). */
    [[nodiscard]] bool IsSourceUnchanged() const;

    /**
     * Stores the file and puts it under its name: in one step where its folder may be written, else (and for
     * devices) by copying its bytes. Only the copying can be cancelled, after each megabyte. False leaves the
     * former file as it was, or empty when the copying had begun. Also false without IsSourceUnchanged().
     */
    [[nodiscard]] bool Commit(const CancelCheck& isCancelled = {});

    /** The same where no other file has the name, not even one that came after Open(); otherwise false. */
    [[nodiscard]] bool CommitToFreeName();

    /**
     * Puts the file under its name unless another one has it, even one that came after Open(). True when one of
     * the two has the name now.
     */
    [[nodiscard]] bool CommitUnlessTaken();

    /** Puts what could be written under the name, unless another file has it. For what failed. */
    void KeepPart();

    /** Removes the former file, or empties it where it cannot be removed. Devices stay, and so does the
     *  source, or what has taken its name since Open(). */
    void RemoveFormer();

private:
    bool HasFormer() const;
    bool MayTakeName() const;
    bool OpenBeside();
    bool OpenElsewhere();
    bool OpenIn(const QString& folder);
    bool ReplacesSource() const;
    bool MoveOver();
    bool MoveIfFree();
    bool MoveUnlessTaken();
    bool MoveToFree(const QString& name);
    bool CopyOver(const CancelCheck& isCancelled);

    QString m_path;
    QString m_sourcePath;
    PendingRights m_rights;
    /** Only where it will be replaced. */
    std::optional<FileState> m_source;
    std::optional<QFile::Permissions> m_permissions;
    QTemporaryFile m_file;
    bool m_isBeside = false;
};

} // namespace vantoraudio::AudioEngine
