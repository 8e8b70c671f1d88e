#include "engine/files/Leftovers.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStringList>
#include <QtCore/QSysInfo>

#ifdef Q_OS_UNIX
#    include <cerrno>
#    include <fcntl.h>
#    include <sys/file.h>
#    include <sys/stat.h>
#    include <unistd.h>
#endif

namespace vantoraudio::AudioEngine {

namespace {

QString MarkOfThisMachine()
{
    const QByteArray machine = QSysInfo::machineUniqueId() + QSysInfo::machineHostName().toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(machine, QCryptographicHash::Sha1).toHex().first(8));
}

} // namespace

QString HiddenTemplate(const QString& directory, const QString& kind)
{
    static const QString mark = MarkOfThisMachine();
    return QDir(directory).filePath(u'.' + kind + u'-' + mark + u"-XXXXXX");
}

#ifdef Q_OS_UNIX

namespace {

int OpenForReading(const QString& path)
{
    // A pipe that somebody put there would wait for its other end, and a link would lead away.
    return ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
}

bool IsOwnFileOrFolder(int handle)
{
    struct stat status = {};
    return ::fstat(handle, &status) == 0 && status.st_uid == ::geteuid() &&
           (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

void Remove(const QString& path)
{
    if (QFileInfo(path).isDir()) {
        QDir(path).removeRecursively();
    } else {
        QFile::remove(path);
    }
}

/** Holds a lock of its own meanwhile, so that nobody begins to use it. */
void RemoveUnlessUsed(const QString& path)
{
    const int handle = OpenForReading(path);
    if (handle < 0) {
        return;
    }
    // On a network disk the other kind of lock needs the right to write.
    if (IsOwnFileOrFolder(handle) && ::flock(handle, LOCK_SH | LOCK_NB) == 0) {
        Remove(path);
    }
    ::close(handle);
}

} // namespace

bool LockHandle(int handle)
{
    if (::flock(handle, LOCK_EX | LOCK_NB) != 0) {
        return errno != EWOULDBLOCK;
    }
    return true;
}

FolderLock::FolderLock(const QString& path) : m_handle(OpenForReading(path))
{
    m_isHeld = m_handle >= 0 && LockHandle(m_handle) && QFileInfo::exists(path);
}

FolderLock::~FolderLock()
{
    if (m_handle >= 0) {
        ::close(m_handle);
    }
}

void RemoveLeftovers(const QString& directory)
{
    const QDir folder(directory);
    const QString mark = QFileInfo(HiddenTemplate(directory, QStringLiteral("*"))).fileName().chopped(6) + u'*';
    for (const QString& name : folder.entryList({mark}, QDir::AllEntries | QDir::Hidden | QDir::System)) {
        RemoveUnlessUsed(folder.filePath(name));
    }
}

#else

// Without such locks nobody can tell whether a program still runs, so nothing is swept.

bool LockHandle(int /*handle*/)
{
    return true;
}

FolderLock::FolderLock(const QString& path) : m_isHeld(QFileInfo::exists(path)) {}

FolderLock::~FolderLock() = default;

void RemoveLeftovers(const QString& /*directory*/) {}

#endif

} // namespace vantoraudio::AudioEngine
