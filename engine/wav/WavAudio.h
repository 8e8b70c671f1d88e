#pragma once

#include "engine/SharedValue.h"
#include "engine/files/PendingFile.h"
#include "engine/samples/StoredFormat.h"
#include "engine/wav/ByteCounting.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFileInfo>
#include <QtCore/QMutexLocker>

namespace vantoraudio::AudioEngine {

/** What a task knows of the audio of a file. It is taken once, when the task starts. */
struct WavAudio
{
    explicit WavAudio(const WavFile& file)
        : format{file.GetFileFormat(), file.GetSampleSize()}
        , channel(file.GetSelectedChannel())
        , dataOffset(file.GetDataOffset())
        , dataLength(file.GetDataLength())
        , duration(file.GetDuration())
        , allowsLargeFiles(file.GetLargeFiles())
        , keepsParts(file.GetKeepParts())
        , keepsBothChannels(file.GetKeepBothChannels())
        , keepsPeaks(file.GetKeepPeaks())
        , existingFile(file.GetExistingFile())
    {
    }

    ByteCounting Counting() const { return ByteCounting(allowsLargeFiles); }

    /** Where the file's audio is at a time, in bytes from the beginning of the file. */
    qint64 PositionOf(double seconds) const
    {
        return Counting().PositionOf(seconds, format.audio.sampleRate(), format.FrameSize(), dataOffset);
    }

    StoredFormat format;
    WavFile::ChannelFormat channel;
    qint64 dataOffset;
    /** In bytes, as the header states it. */
    qint64 dataLength;
    /** In seconds. */
    double duration;
    bool allowsLargeFiles;
    /** Of what is aborted or fails. */
    bool keepsParts;
    /** In snippets. */
    bool keepsBothChannels;
    /** In extractions. */
    bool keepsPeaks;
    WavFile::ExistingFile existingFile;

    /** Whether a new file may not get this name, which another one has. */
    bool Refuses(const QString& path) const
    {
        return existingFile == WavFile::ExistingFile::Refuse && QFileInfo::exists(path);
    }
    /** Gives the finished file its name. False where one has it that came meanwhile and is refused. */
    bool TakeName(PendingFile& file) const
    {
        return existingFile == WavFile::ExistingFile::Refuse ? file.CommitToFreeName() : file.Commit();
    }
};

/** For a task that starts now: clears its abort flag under the same lock, so that an abort that the task does not
 *  notice came before everything that it knows. */
inline WavAudio StartTask(const WavFile& file, QMutex& mutex, bool& abortFlag)
{
    const QMutexLocker lock(&mutex);
    StoreShared(abortFlag, false);
    return WavAudio(file);
}

/** Takes it under the lock of the file. */
inline WavAudio TakeWavAudio(const WavFile& file, QMutex& mutex)
{
    const QMutexLocker lock(&mutex);
    return WavAudio(file);
}

/** Sets or clears an abort flag of a file under its lock. */
inline void StoreAbortFlag(QMutex& mutex, bool& flag, bool value)
{
    const QMutexLocker lock(&mutex);
    StoreShared(flag, value);
}

} // namespace vantoraudio::AudioEngine
