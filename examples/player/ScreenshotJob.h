#pragma once

#include "PlayerWindow.h"

#include <QtCore/QTimer>

#include <chrono>
#include <optional>

/**
 * Saves a picture of the window once it shows everything, for use without a screen: all samples drawn and, where
 * the file is being played, a second of it (or all of a shorter one) heard. Emits Done() in every case, at the
 * latest when its patience ends. The sound is not waited for any longer then; without all samples there is no
 * picture.
 */
class ScreenshotJob : public QObject
{
    Q_OBJECT

public:
    ScreenshotJob(PlayerWindow& window, QString filePath, bool playing,
                  std::chrono::milliseconds patience = std::chrono::seconds(30));

Q_SIGNALS:
    /** A sentence for the user, empty when the picture is saved. */
    void Done(const QString& failure);

private:
    void OnPositionChanged(double seconds);
    void TryNow();
    void OnPatienceEnded();
    void Save();
    void End(const QString& failure);

    PlayerWindow& m_window;
    QString m_filePath;
    bool m_waitingForSound;
    std::optional<double> m_firstPosition;
    bool m_done = false;
    QTimer m_patience;
};
