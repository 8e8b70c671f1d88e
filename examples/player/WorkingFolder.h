#pragma once

#include <QtCore/QString>

#include <memory>

class QLockFile;
class QTemporaryDir;

/**
 * A folder in the user's cache for the player's working copies, which ends with this object. Every file gets a
 * place of its own in it, so that none is taken for an earlier one of the same name.
 */
class WorkingFolder
{
public:
    /** Also clears away what programs left behind that ended without doing so. */
    WorkingFolder();
    ~WorkingFolder();

    /** An empty place for the next file; the one before the latest is cleared away. Empty when there can be none.
     */
    QString Next();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QLockFile> m_lock;
    int m_count = 0;
};
