#pragma once

#include "tests/support/SignalLog.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/TestAudio.h"

#include <QtTest/QTest>

/** A WAV file of a test's own, opened, and everything that it signals. */
class OpenedWav
{
public:
    explicit OpenedWav(const QByteArray& bytes)
    {
        QCOMPARE(file.Open(files.Write(QStringLiteral("source.wav"), bytes)), WavFile::Success);
    }

    const TemporaryFiles files;
    WavFile file;
    SignalLog log{file};
};

/** An opened file beside the one that is exported from it. */
class ExportSetup : public OpenedWav
{
public:
    explicit ExportSetup(const QByteArray& bytes, WavFile::ChannelFormat channel = WavFile::ChannelNone)
        : OpenedWav(bytes)
    {
        file.SetSelectedChannel(channel);
    }
    explicit ExportSetup(const WavTest::TestAudio& audio, WavFile::ChannelFormat channel = WavFile::ChannelNone)
        : ExportSetup(audio.File(), channel)
    {
    }

    QByteArray Result() const { return TemporaryFiles::Read(out); }

    const QString out = files.Path(QStringLiteral("out.wav"));
};
