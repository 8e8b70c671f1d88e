#pragma once

#include "tests/support/TemporaryFiles.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <cerrno>
#include <cstring>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

/** A disk of 1 MiB, in memory. Only this program and those that it starts see it, and it ends with them. */
class SmallDisk
{
public:
    static constexpr qint64 size = 1 << 20;

    /** To be called before the program has a second thread. An empty text, or why it may have no disks. */
    static QString Prepare()
    {
        const QByteArray user = QByteArray::number(::getuid());
        const QByteArray group = QByteArray::number(::getgid());
        if (::unshare(CLONE_NEWNS) != 0) {
            // Whoever is not the superuser may be one in a world of its own.
            if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
                return Reason();
            }
            Tell("setgroups", "deny");
            Tell("uid_map", user + ' ' + user + " 1");
            Tell("gid_map", group + ' ' + group + " 1");
        }
        if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
            return Reason();
        }
        return SmallDisk().m_isMounted ? QString() : Reason();
    }

    SmallDisk()
    {
        const QByteArray options = "size=" + QByteArray::number(size);
        m_isMounted = ::mount("none", qPrintable(m_files.Path({})), "tmpfs", 0, options.constData()) == 0;
    }
    ~SmallDisk()
    {
        if (m_isMounted) {
            ::umount2(qPrintable(m_files.Path({})), MNT_DETACH);
        }
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    QString Path(const QString& name) const { return m_files.Path(name); }
    QString Write(const QString& name, const QByteArray& bytes) const { return m_files.Write(name, bytes); }
    QStringList Names() const { return m_files.Names(); }

    /** Fills it with a file of the given name until only so many bytes are left. */
    bool FillBut(const QString& name, qint64 room) const
    {
        QFile file(Path(name));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
            return false;
        }
        const QByteArray page(4096, 'x');
        while (file.write(page) == page.size()) {
        }
        return errno == ENOSPC && file.size() >= room && file.resize(file.size() - room);
    }

private:
    static QString Reason() { return QString::fromLocal8Bit(std::strerror(errno)); }
    static void Tell(const char* name, const QByteArray& text)
    {
        QFile file(QString::fromLatin1("/proc/self/") + QString::fromLatin1(name));
        if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
            file.write(text);
        }
    }

    const TemporaryFiles m_files;
    bool m_isMounted = false;
};
