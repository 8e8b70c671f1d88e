#include "OpenFailure.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace {

QString Translate(const char* text)
{
    return QCoreApplication::translate("OpenFailure", text);
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
    default:
        return Translate("it cannot be read");
    }
}

QString Sentence(const QString& path, const QString& reason)
{
    return Translate("“%1” cannot be opened: %2.").arg(QDir::toNativeSeparators(path), reason);
}

} // namespace

QString DescribeOpenFailure(const QString& path, WavFile::AudioEngineReturnValue result)
{
    return Sentence(path, Reason(path, result));
}

QString DescribeSilentFile(const QString& path)
{
    return Sentence(path, Translate("it holds no audio"));
}
