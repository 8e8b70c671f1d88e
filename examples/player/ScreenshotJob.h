#pragma once

#include "PlayerWindow.h"

#include <QtCore/QTimer>

#include <optional>

/**
 * Saves a picture of the window once it shows everything, for use without a screen: all samples drawn and, where
 * the file is being played, a second of it (or all of a shorter one) heard. Emits Done() in every case, after half
 * a minute at the latest.
 */
class ScreenshotJob : public QObject
{
    Q_OBJECT

public:
    ScreenshotJob(PlayerWindow& window, QString filePath, bool playing);

Q_SIGNALS:
    void Done(bool saved);

private:
    void OnPositionChanged(double seconds);
    void TryNow();
    void Save();

    PlayerWindow& m_window;
    QString m_filePath;
    bool m_waitingForSound;
    std::optional<double> m_firstPosition;
    bool m_done = false;
    QTimer m_patience;
};
