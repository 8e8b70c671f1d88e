#include "Failures.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

namespace {

QString Quoted(const char* sentence, const QString& path)
{
    return QCoreApplication::translate("Failures", sentence).arg(QDir::toNativeSeparators(path));
}

} // namespace

QString DescribeExportFailure(const QString& path)
{
    return Quoted(QT_TRANSLATE_NOOP("Failures", "“%1” cannot be written: is there room, and may you write there?"),
                  path);
}

QString DescribeChannelFailure(const QString& path)
{
    return Quoted(
        QT_TRANSLATE_NOOP("Failures",
                          "The channel of “%1” cannot be prepared: is there room, and is the file still there?"),
        path);
}

QString DescribePlaybackFailure(const QString& path, const QString& reason)
{
    return QCoreApplication::translate("Failures", "“%1” cannot be played: %2")
        .arg(QDir::toNativeSeparators(path), reason);
}

QString DescribeExistingFile(const QString& path)
{
    return Quoted(QT_TRANSLATE_NOOP("Failures", "“%1” is there already: please choose another name."), path);
}

QString DescribeReplacement(const QString& path)
{
    return Quoted(QT_TRANSLATE_NOOP("Failures", "“%1” is there already. Do you want to replace it?"), path);
}

QString DescribeLossOfTheOpenFile(const QString& path)
{
    return Quoted(QT_TRANSLATE_NOOP(
                      "Failures", "“%1” is the file that is open. If you replace it, only what you export is left "
                                  "of it. Do you want that?"),
                  path);
}
