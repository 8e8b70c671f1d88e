#pragma once

#include <QtCore/QString>

#include <memory>

class QLockFile;
class QTemporaryDir;

/** A folder in the user's cache for the player's working copies, which ends with this object. */
class WorkingFolder
{
public:
    /** Also removes what crashed programs left behind. */
    WorkingFolder();
    ~WorkingFolder();

    /** A folder that is not there when there can be none. */
    QString Path() const;

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QLockFile> m_lock;
};
