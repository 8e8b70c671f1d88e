#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

/** More than two hundred broken and odd files, the same in every run, with what is to become of each. */
namespace BrokenFiles {

/** What a look at the audio ends with. */
enum class Audio
{
    /** There is some, and it is read. */
    Readable,
    /** Refused as no audio or as damaged. */
    Refused,
    /** One of both: what FFmpeg makes of it differs from version to version. */
    Clear
};

struct File
{
    QByteArray row;
    /** Its extension may lie. */
    QString name;
    QByteArray bytes;
    /** What WavFile::Open() gives; the second one with large files allowed. */
    WavFile::AudioEngineReturnValue open = WavFile::Success;
    WavFile::AudioEngineReturnValue openLarge = WavFile::Success;
    /** By the importer. */
    Audio imported = Audio::Clear;
    /** By the player, which takes WAV files without the importer. */
    Audio loaded = Audio::Clear;
};

/** Each row once. */
[[nodiscard]] const QList<File>& All();

/** Adds the columns "file" with all rows to the table of a test. */
void AddRows();

} // namespace BrokenFiles

Q_DECLARE_METATYPE(BrokenFiles::File)
