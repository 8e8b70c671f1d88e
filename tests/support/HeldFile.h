#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtTest/QTest>

#include <csignal>
#include <fcntl.h>

/** A file whose readers have to wait, as on a disk that does not answer. Not every file system can do it. */
class HeldFile
{
public:
    explicit HeldFile(const QString& path) : m_file(path), m_formerHandler(std::signal(SIGIO, SIG_IGN))
    {
        m_isHeld = m_file.open(QIODevice::ReadWrite) && ::fcntl(m_file.handle(), F_SETLEASE, F_WRLCK) == 0;
    }
    ~HeldFile()
    {
        Release();
        std::signal(SIGIO, m_formerHandler);
    }
    Q_DISABLE_COPY_MOVE(HeldFile)

    bool IsHeld() const { return m_isHeld; }

    /** Somebody has come to read it, and waits. */
    bool HasReader() const
    {
        return QTest::qWaitFor([this] { return ::fcntl(m_file.handle(), F_GETLEASE) != F_WRLCK; }, 30000);
    }

    void Release() const { ::fcntl(m_file.handle(), F_SETLEASE, F_UNLCK); }

private:
    QFile m_file;
    void (*m_formerHandler)(int);
    bool m_isHeld = false;
};
