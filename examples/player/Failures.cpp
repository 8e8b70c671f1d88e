#include "Failures.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace {

QString Translate(const char* text)
{
    return QCoreApplication::translate("Failures", text);
}

QString WhyNotOpened(const QFileInfo& file)
{
    if (!file.exists()) {
        return Translate("there is no such file");
    }
    if (file.isDir()) {
        return Translate("it is a folder");
    }
    if (!file.isReadable()) {
        return Translate("you may not read it");
    }
    return Translate("the system refuses to open it");
}

QString Reason(const QString& path, WavFile::AudioEngineReturnValue result)
{
    switch (result) {
    case WavFile::ErrorOpenFile:
        return WhyNotOpened(QFileInfo(path));
    case WavFile::ErrorInvalidFormat:
        return Translate("it is no audio that can be decoded");
    case WavFile::ErrorChannelCount:
        return Translate("it has neither one nor two channels");
    case WavFile::ErrorReadFile:
        return Translate("it ends in the middle of its header");
    case WavFile::ErrorWriteHeader:
        return QFileInfo(path).isFile() && QFileInfo(path).isReadable()
                   ? Translate("there is no room for a working copy of it")
                   : WhyNotOpened(QFileInfo(path));
    default:
        return Translate("it cannot be read");
    }
}

QString Quoted(const char* sentence, const QString& path)
{
    return Translate(sentence).arg(QDir::toNativeSeparators(path));
}

} // namespace

QString DescribeOpenFailure(const QString& path, WavFile::AudioEngineReturnValue result)
{
    return Translate("“%1” cannot be opened: %2.").arg(QDir::toNativeSeparators(path), Reason(path, result));
}

QString DescribeSilentFile(const QString& path)
{
    return Quoted("“%1” cannot be opened: it holds no audio.", path);
}

QString DescribeExportFailure(const QString& path)
{
    return Quoted("“%1” cannot be written: is there room, and may you write there?", path);
}

QString DescribeChannelFailure(const QString& path)
{
    return Quoted("The channel of “%1” cannot be prepared: is there room, and is the file still there?", path);
}

QString DescribeExistingFile(const QString& path)
{
    return Quoted("“%1” is there already: please choose another name.", path);
}
