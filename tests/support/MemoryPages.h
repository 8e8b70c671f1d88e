#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QTextStream>

/** What Linux tells about this program's memory. */
namespace MemoryPages {

inline bool SystemHasLargePages()
{
    return QFile::exists(QStringLiteral("/sys/kernel/mm/transparent_hugepage/enabled"));
}

/** Whether large pages were asked for behind this address. */
inline bool AreWishedLarge(const void* address)
{
    QFile map(QStringLiteral("/proc/self/smaps"));
    if (!map.open(QIODevice::ReadOnly)) {
        return false;
    }
    // A region's first line begins with its bounds, its last one with its flags.
    bool isInside = false;
    QTextStream lines(&map);
    for (QString line = lines.readLine(); !line.isNull(); line = lines.readLine()) {
        const QStringList bounds = line.section(u' ', 0, 0).split(u'-');
        if (bounds.size() == 2) {
            const auto position = reinterpret_cast<quintptr>(address);
            isInside =
                position >= bounds[0].toULongLong(nullptr, 16) && position < bounds[1].toULongLong(nullptr, 16);
        } else if (isInside && line.startsWith(u"VmFlags:")) {
            return line.section(u':', 1).split(u' ').contains(u"hg");
        }
    }
    return false;
}

} // namespace MemoryPages
