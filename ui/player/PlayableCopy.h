#pragma once

#include <QtCore/QFuture>
#include <QtCore/QFutureWatcher>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

namespace vantoraudio::vantorAudioEngine::UI {

class HiddenFolder;

/**
 * A copy at a lower rate of a WAV file that no output can play, made in the background. GUI thread.
 *
 * It lies in a hidden folder of its own, which is removed when the object and the task are done with it.
 * Destroying the object ends the task, without waiting for it.
 */
class PlayableCopy : public QObject
{
    Q_OBJECT

public:
    /** Begins at once. */
    PlayableCopy(const QString& path, const QString& directory);
    ~PlayableCopy() override;

    /** The file to play: the copy, or the original where none could be made. */
    [[nodiscard]] QString GetPath() const { return m_path; }

Q_SIGNALS:
    void Ended();

private:
    /** Without a path where there could be no copy. */
    struct Made
    {
        std::shared_ptr<HiddenFolder> folder;
        QString path;
    };

    QString m_path;
    Made m_made;
    QFutureWatcher<Made> m_watcher;
};

} // namespace vantoraudio::vantorAudioEngine::UI
