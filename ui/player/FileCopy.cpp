#include "ui/player/FileCopy.h"

#include "engine/files/DiskRoom.h"
#include "engine/files/PendingFile.h"
#include "engine/files/RegularFile.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#ifdef Q_OS_LINUX
#    include <linux/fs.h>
#    include <sys/ioctl.h>
#endif

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::PendingFile;
using Problem = AudioEngine::AudioFileInfo::Problem;

/** Written in a moment, so that a copy can be stopped at any time. */
constexpr qint64 blockSize = 1 << 20;

/** False where the file system cannot do it; nothing has changed then. */
bool ShareBytes([[maybe_unused]] const QFile& source, [[maybe_unused]] const QFile& target)
{
#ifdef Q_OS_LINUX
    return ::ioctl(target.handle(), FICLONE, source.handle()) == 0;
#else
    return false;
#endif
}

int PermilleOf(qint64 part, qint64 whole)
{
    return static_cast<int>(1000.0 * double(part) / double(whole));
}

Problem CopyBlocks(QFile& source, QFile& target, const CopyObserver& goesOn)
{
    // A recording that still grows could be copied for ever.
    const qint64 size = source.size();
    QByteArray block(blockSize, Qt::Uninitialized);
    for (qint64 copied = 0; copied < size;) {
        if (!goesOn(PermilleOf(copied, size))) {
            return Problem::Cancelled;
        }
        const qint64 count = source.read(block.data(), qMin(blockSize, size - copied));
        if (count < 1) {
            return Problem::CannotBeRead;
        }
        if (target.write(block.constData(), count) != count) {
            return target.error() == QFileDevice::ResourceError ? Problem::NoSpace : Problem::CannotBeWritten;
        }
        copied += count;
    }
    goesOn(1000);
    return Problem::None;
}

Problem Transfer(QFile& source, QFile& target, const QString& to, const CopyObserver& goesOn)
{
    if (ShareBytes(source, target)) {
        return Problem::None;
    }
    return AudioEngine::HasRoomFor(double(source.size()), to) ? CopyBlocks(source, target, goesOn)
                                                              : Problem::NoSpace;
}

bool GoesOn(int /*permille*/)
{
    return true;
}

} // namespace

Problem CopyFile(const QString& from, const QString& to, const CopyObserver& goesOn)
{
    QFile source(from);
    QFile target(to);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return Problem::NoPermission;
    }
    if (!target.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        return Problem::CannotBeCreated;
    }
    return Transfer(source, target, to, goesOn);
}

bool ProvideCopy(const QString& from, const QString& to)
{
    if (QFile::exists(to) && !QFileInfo(to).isSymLink()) {
        return true;
    }
    QFile source(from);
    PendingFile copy(to, {}, {.replacesLinks = true});
    if (!AudioEngine::IsRegularFile(from) || !source.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ||
        !copy.Open()) {
        return false;
    }
    // The copy of a read-only file would be read-only too, and could not be overwritten.
    copy.SetPermissions(source.permissions() | QFile::WriteOwner);
    return Transfer(source, copy.File(), to, &GoesOn) == Problem::None && copy.CommitUnlessTaken();
}

} // namespace vantoraudio::vantorAudioEngine::UI
