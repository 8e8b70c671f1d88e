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

WorkingFolder::~WorkingFolder() = default;

QString WorkingFolder::Next()
{
    const QDir folder(m_folder->path());
    QDir(folder.filePath(QString::number(m_count - 1))).removeRecursively();
    const QString next = QString::number(++m_count);
    return m_folder->isValid() && folder.mkdir(next) ? folder.filePath(next) : QString();
}
