#pragma once

#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"
#include "tests/ui/player/PlayerTestAccess.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtTest/QTest>
#include <QtWidgets/QLineEdit>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * A player in edit mode, shown in a window of its own, that has loaded a mono file of silence. Call Load() first,
 * in QVERIFY(): it waits until the file can be played and its samples are shown.
 */
class LoadedPlayer
{
public:
    using Access = AudioPlayerWidgetTestAccess;

    explicit LoadedPlayer(int seconds = 20) : m_seconds(seconds) {}

    [[nodiscard]] bool Load()
    {
        widget.SetWritableDirectoryPath(m_copies.Path(QString()));
        widget.SetEditMode(true);
        widget.resize(1000, 400);
        widget.show();
        widget.SetAudioFile(WriteFile(QStringLiteral("silence.wav")));
        return Activate() && IsReady();
    }

    /** Asks for the focus until it comes: without a window manager one request can get lost. */
    [[nodiscard]] bool Activate()
    {
        return QTest::qWaitFor([this] {
            if (!widget.isActiveWindow()) {
                widget.activateWindow();
            }
            return widget.isActiveWindow();
        });
    }

    /** A file for the player, in a folder of its own. */
    QString WriteFile(const QString& name) const
    {
        constexpr int rate = 8000;
        return m_originals.Write(
            name, WavTest::WavBytes{.sampleRate = rate, .data = QByteArray(qsizetype(m_seconds) * rate * 2, '\0')}
                      .Build());
    }
    QString CopyPath(const QString& name) const { return m_copies.Path(name); }

    [[nodiscard]] bool IsReady()
    {
        return QTest::qWaitFor([this] {
            const bool canPlay = Player().mediaStatus() == QMediaPlayer::LoadedMedia && Player().duration() > 0;
            return canPlay && !widget.IsReadingSamples();
        });
    }

    AudioPlayer& Player() { return Access::Player(widget); }
    BGFXWaveformWidget& Waveform() { return Access::Waveform(widget); }
    auto& Controls() { return Access::Controls(widget); }

    RecordingPlayerWidget widget;

private:
    int m_seconds;
    TemporaryFiles m_originals;
    TemporaryFiles m_copies;
};

/** Types a time over the one that the field shows, as a user does. Digit by digit: with a mask and a validator a
 *  field cannot be emptied first. */
inline void OverwriteTime(QLineEdit& field, const QString& text)
{
    QTest::keyClick(&field, Qt::Key_Home);
    QTest::keyClicks(&field, text);
}

inline void TypeTime(QLineEdit& field, const QString& text)
{
    OverwriteTime(field, text);
    QTest::keyClicks(&field, text);
    QTest::keyClick(&field, Qt::Key_Return);
}

} // namespace vantoraudio::vantorAudioEngine::UI
