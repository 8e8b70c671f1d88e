#include "WorkingFolder.h"

#include <QtCore/QDir>
#include <QtCore/QLockFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

namespace {

QString CacheFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
}

QString LockOf(const QString& folder)
{
    return folder + u"/lock"_s;
}

void RemoveUnused(const QString& folder)
{
    QLockFile lock(LockOf(folder));
    lock.setStaleLockTime(0);
    if (lock.tryLock()) {
        lock.unlock();
        QDir(folder).removeRecursively();
    }
}

} // namespace

WorkingFolder::WorkingFolder()
{
    QDir cache(CacheFolder());
    cache.mkpath(u"."_s);
    for (const QString& name : cache.entryList({u"player-*"_s}, QDir::Dirs)) {
        RemoveUnused(cache.filePath(name));
    }
    m_folder = std::make_unique<QTemporaryDir>(cache.filePath(u"player-XXXXXX"_s));
    m_lock = std::make_unique<QLockFile>(LockOf(m_folder->path()));
    // A program that runs for days still uses its folder.
    m_lock->setStaleLockTime(0);
    m_lock->tryLock();
}

WorkingFolder::~WorkingFolder()
{
    m_lock.reset();
    // Without its warnings: the end of a load that was just given up may come later, and leaves an empty folder
    // then, which the next start clears away.
    m_folder->setAutoRemove(false);
    if (m_folder->isValid()) {
        QDir(m_folder->path()).removeRecursively();
    }
}

QString WorkingFolder::Path() const
{
    // Never an empty path, which the player would take for the current folder, where the user's own files may lie.
    return m_folder->isValid() ? m_folder->path() : CacheFolder() + u"/unavailable"_s;
}
