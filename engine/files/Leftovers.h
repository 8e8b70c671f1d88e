#pragma once

#include <QtCore/QString>
#include <QtGlobal>

/**
 * Hidden files and folders in which something grows, and what a program that was killed has left of them.
 *
 * Whoever makes one holds a lock on it (flock), which the system gives up in the moment in which the program ends,
 * however it ends. A process number would not do: it says nothing in another container, and is given out again.
 * Other machines see the lock of a file on a network disk, but not that of a folder, so each name also says on
 * which machine it was made.
 */
namespace vantoraudio::AudioEngine {

/** For QTemporaryFile and QTemporaryDir: of hidden names in `directory` (empty: the current one) that
 *  RemoveLeftovers() knows. */
[[nodiscard]] QString HiddenTemplate(const QString& directory, const QString& kind);

/**
 * Keeps the file or folder behind an open handle from being swept, until the handle is closed. False when it is
 * being swept in this moment. True, without effect, where the file system knows no locks: nothing is swept there.
 */
[[nodiscard]] bool LockHandle(int handle);

/** Keeps a folder from being swept while this lives. */
class FolderLock
{
public:
    explicit FolderLock(const QString& path);
    ~FolderLock();
    Q_DISABLE_COPY_MOVE(FolderLock)

    /** False when the folder is being swept in this moment, has been, or is not there. */
    [[nodiscard]] bool IsHeld() const { return m_isHeld; }

private:
    int m_handle = -1;
    bool m_isHeld = false;
};

/**
 * Removes what programs that no longer run have left in `directory`: only what this machine and this user made,
 * and nothing that is locked. Any thread; what cannot be removed stays.
 */
void RemoveLeftovers(const QString& directory);

} // namespace vantoraudio::AudioEngine
