#pragma once

#include "engine/files/FileState.h"

#include <vantorAudioEngine/AudioFileInfo.h>

#include <QtCore/QFutureWatcher>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

namespace vantoraudio::vantorAudioEngine::UI {

class HiddenFolder;

/** Which file it is, and what it was like. */
struct LoadSource
{
    /** Without links. */
    QString path;
    AudioEngine::FileState state;

    [[nodiscard]] static LoadSource Of(const QString& path);
    bool operator==(const LoadSource&) const = default;
};

/**
 * A file that WavFile opens, in a folder of its own. So it can have the name of its source and never meets
 * another file of that name. The folder is removed when nobody holds it any more, without waiting for that; where
 * the program is killed, the next load into the same directory does it.
 */
struct WorkingCopy
{
    std::shared_ptr<HiddenFolder> folder;
    QString path;
    /** What the source was like just before it was read. */
    LoadSource source;
};

/**
 * Makes the working copy of one file in the background: by copying what WavFile opens, by importing everything
 * else. What the file is called does not count. GUI thread.
 *
 * Works beside QThreadPool::globalInstance(), so that the tasks on a loaded file need not wait for the next one.
 * Destroying it cancels, without waiting; nothing is left of an unfinished copy. It may be destroyed by its own
 * signals.
 */
class FileLoad : public QObject
{
    Q_OBJECT

public:
    using Problem = AudioEngine::AudioFileInfo::Problem;

    /** Does nothing yet. `former` is taken again where its source is `path` and has not changed since. */
    FileLoad(const QString& path, const QString& directory, const WorkingCopy& former);
    ~FileLoad() override;

    void Start();

    /** As it was given. */
    [[nodiscard]] QString GetPath() const { return m_path; }
    /** Both are known when it has ended. */
    [[nodiscard]] Problem GetProblem() const { return m_prepared.problem; }
    [[nodiscard]] const WorkingCopy& GetCopy() const { return m_prepared.copy; }

Q_SIGNALS:
    /** From 0 to 1000. */
    void Progressed(int permille);
    void Ended();

private:
    struct Prepared
    {
        Problem problem = Problem::None;
        WorkingCopy copy;
    };

    class Preparation;

    void OnPrepared();

    QString m_path;
    QString m_directory;
    Prepared m_prepared;
    QFutureWatcher<Prepared> m_preparing;
};

} // namespace vantoraudio::vantorAudioEngine::UI
