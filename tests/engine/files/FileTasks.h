#pragma once

#include "tests/support/TemporaryFiles.h"
#include "tests/support/TestAudio.h"

#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtTest/QTest>

/** One way to write a file: from `source`, to `out` in the same folder. */
struct FileTask
{
    /** The task's code, or an import's problem; 0 for success. */
    int (*run)(const QString& source, const QString& out) = nullptr;
    /** Where the output cannot be filled. */
    int writingFailure = 0;
    /** Where the source cannot be read. */
    int readingFailure = 0;
    bool isInPlace = false;
    /** Takes the place of an older file. */
    bool overwrites = true;
    /** Leaves what was written before the disk was full, where no other file is. */
    bool keepsPart = false;
};

Q_DECLARE_METATYPE(FileTask)

namespace FileTasks {

inline int Snippet(const QString& source, const QString& out)
{
    WavFile file;
    const auto result = file.Open(source);
    return result == WavFile::Success ? file.CreateSnippet(out, 0.0, file.GetDuration()) : result;
}

inline int Channel(const QString& source, const QString& out)
{
    WavFile file;
    const auto result = file.Open(source);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    return result == WavFile::Success ? file.FilterChannel(out) : result;
}

inline int Convert(const QString& source, const QString& out)
{
    QAudioFormat format;
    format.setChannelCount(1);
    format.setSampleRate(8000);
    format.setSampleFormat(QAudioFormat::Float);
    WavFile file;
    const auto result = file.Open(source);
    return result != WavFile::Success ? result : file.Convert(format, out) ? 0 : 1;
}

inline int ConvertInPlace(const QString& source, const QString& /*out*/)
{
    return Convert(source, {});
}

inline int Import(const QString& source, const QString& out)
{
    return vantoraudio::AudioEngine::AudioImporter::ImportNow(source, out).Code();
}

inline int ImportInPlace(const QString& source, const QString& /*out*/)
{
    return Import(source, source);
}

inline void AddRows()
{
    QTest::addColumn<FileTask>("task");
    QTest::addRow("snippet") << FileTask{.run = &Snippet,
                                         .writingFailure = WavFile::ErrorCreateSnippet,
                                         .readingFailure = WavFile::ErrorCreateSnippet,
                                         .keepsPart = true};
    QTest::addRow("channel") << FileTask{.run = &Channel,
                                         .writingFailure = WavFile::ErrorFilterChannel,
                                         .readingFailure = WavFile::ErrorFilterChannel,
                                         .overwrites = false,
                                         .keepsPart = true};
    QTest::addRow("conversion") << FileTask{
        .run = &Convert, .writingFailure = 1, .readingFailure = 1, .keepsPart = true};
    QTest::addRow("conversion in place")
        << FileTask{.run = &ConvertInPlace, .writingFailure = 1, .readingFailure = 1, .isInPlace = true};
    QTest::addRow("import") << FileTask{.run = &Import,
                                        .writingFailure = WavFile::ErrorWriteHeader,
                                        .readingFailure = WavFile::ErrorInvalidFormat};
    QTest::addRow("import in place") << FileTask{.run = &ImportInPlace,
                                                 .writingFailure = WavFile::ErrorWriteHeader,
                                                 .readingFailure = WavFile::ErrorInvalidFormat,
                                                 .isInPlace = true};
}

/** Long enough to be read and written in more than one piece. */
inline const QByteArray& SourceBytes()
{
    static const QByteArray bytes = WavTest::TestAudio{.channels = 2, .rate = 8000, .frames = 200'000}.File();
    return bytes;
}

/** What the task makes of the source where nothing goes wrong. */
inline QByteArray WholeResult(const FileTask& task)
{
    const TemporaryFiles files;
    const QString source = files.Write(QStringLiteral("source.wav"), SourceBytes());
    const QString out = files.Path(QStringLiteral("out.wav"));
    return task.run(source, out) == 0 ? TemporaryFiles::Read(task.isInPlace ? source : out) : QByteArray();
}

} // namespace FileTasks
