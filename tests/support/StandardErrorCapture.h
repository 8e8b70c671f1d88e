#pragma once

#include <QtCore/QByteArray>

#include <cstdio>
#include <unistd.h>

/** Keeps what the process writes to its standard error stream, until Text() or the destructor. */
class StandardErrorCapture
{
public:
    StandardErrorCapture() : m_kept(std::tmpfile()), m_former(::dup(STDERR_FILENO))
    {
        std::fflush(stderr);
        ::dup2(::fileno(m_kept), STDERR_FILENO);
    }
    ~StandardErrorCapture()
    {
        Restore();
        std::fclose(m_kept);
        ::close(m_former);
    }
    StandardErrorCapture(const StandardErrorCapture&) = delete;
    StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;

    /** Ends the capture. */
    QByteArray Text()
    {
        Restore();
        QByteArray text;
        std::rewind(m_kept);
        for (int c = std::fgetc(m_kept); c != EOF; c = std::fgetc(m_kept)) {
            text += static_cast<char>(c);
        }
        return text;
    }

private:
    void Restore()
    {
        std::fflush(stderr);
        ::dup2(m_former, STDERR_FILENO);
    }

    std::FILE* m_kept;
    int m_former;
};
