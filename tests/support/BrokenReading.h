#pragma once

#include <QtCore/QFile>

#include <fcntl.h>
#include <unistd.h>

/** From now on every read from the open file fails, as on a damaged disk; what the file has read ahead stays. */
inline bool BreakReading(QFile& file)
{
    const int writeOnly = ::open(QFile::encodeName(file.fileName()).constData(), O_WRONLY | O_CLOEXEC);
    const bool isBroken = writeOnly >= 0 && ::dup2(writeOnly, file.handle()) >= 0;
    ::close(writeOnly);
    return isBroken;
}
