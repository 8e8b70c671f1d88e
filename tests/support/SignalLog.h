#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QStringList>

/** Writes down a WavFile's signals, one line each, on the thread that emits them. */
class SignalLog : public QStringList
{
public:
    explicit SignalLog(WavFile& file)
    {
        QObject::connect(
            &file, &WavFile::NewData, &file, [this] { append(QStringLiteral("NewData")); }, Qt::DirectConnection);
        QObject::connect(
            &file, &WavFile::ProgressChanged, &file,
            [this](int progress, int min, int max, const QString& text) {
                append(QStringLiteral("%1 of %2..%3 %4").arg(progress).arg(min).arg(max).arg(text));
            },
            Qt::DirectConnection);
    }
};
