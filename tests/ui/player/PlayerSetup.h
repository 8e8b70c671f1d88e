#pragma once

#include "engine/SharedValue.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavFileTestAccess.h"
#include "tests/ui/player/PlayerTestAccess.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtCore/QThreadPool>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <atomic>
#include <memory>

/** A player in edit mode, with a folder for the caller's files and one for the working copies. */
class PlayerSetup
{
public:
    using Access = vantoraudio::vantorAudioEngine::UI::AudioPlayerWidgetTestAccess;
    using Player = vantoraudio::vantorAudioEngine::UI::RecordingPlayerWidget;
    using Waveform = vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget;

    PlayerSetup()
    {
        player->SetWritableDirectoryPath(copies.Path(QString()));
        player->SetEditMode(true);
    }

    /** True when the file is loaded and its samples are there. */
    bool Load(const QString& path)
    {
        player->SetAudioFile(path);
        return player->errors.isEmpty() && File().isOpen() && HasRead();
    }
    bool Load(const QString& name, const QByteArray& bytes) { return Load(originals.Write(name, bytes)); }

    bool HasRead() const
    {
        return QTest::qWaitFor([this] { return !player->IsReadingSamples(); }, patience);
    }
    bool IsIdle() const
    {
        return QTest::qWaitFor([this] { return !player->IsBusy(); }, patience);
    }

    const auto& Controls() const { return Access::Controls(*player); }
    WavFile& File() const { return Access::File(*player); }
    AudioPlayer& Audio() const { return Access::Player(*player); }
    Waveform& View() const { return Access::Waveform(*player); }

    static constexpr int patience = 30000;

    const TemporaryFiles originals;
    const TemporaryFiles copies;
    std::unique_ptr<Player> player = std::make_unique<Player>();
};

/** Holds the tasks of a file up in their first report of progress. */
class HeldTask
{
public:
    explicit HeldTask(WavFile& file)
    {
        m_connection = QObject::connect(
            &file, &WavFile::ProgressChanged, &file,
            [this] {
                if (!m_isReleased) {
                    m_begun.release();
                    m_end.acquire();
                    m_end.release();
                }
            },
            Qt::DirectConnection);
    }
    ~HeldTask()
    {
        Release();
        QThreadPool::globalInstance()->waitForDone();
        QObject::disconnect(m_connection);
    }
    Q_DISABLE_COPY_MOVE(HeldTask)

    /** Lets a task go on that the player waits for, but not before it is told to end. */
    void ReleaseUpon(bool& abortFlag)
    {
        m_releaser.start([this, &abortFlag] {
            while (!vantoraudio::AudioEngine::LoadShared(abortFlag)) {
                QThread::yieldCurrentThread();
            }
            Release();
        });
    }

    bool HasBegun() { return m_begun.tryAcquire(1, PlayerSetup::patience); }
    void Release()
    {
        m_isReleased = true;
        m_end.release();
    }

private:
    QMetaObject::Connection m_connection;
    std::atomic<bool> m_isReleased = false;
    QSemaphore m_begun;
    QSemaphore m_end;
    QThreadPool m_releaser;
};
