#pragma once

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFutureWatcher>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>

#include <memory>
#include <utility>

/** A small audio player: one WAV file with its waveform, played whole or by the stretch that is selected in it. */
class PlayerWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit PlayerWindow(QWidget* parent = nullptr);
    ~PlayerWindow() override;

    /** Shows the file and makes it ready to play. When that fails, what was shown before stays and a sentence
     *  above the waveform tells why. */
    bool OpenFile(const QString& path);
    void Play();
    void ShowRange(double start, double end);
    void SelectRange(double start, double end);

    /** No extraction of samples is running: the picture is complete. */
    bool IsPictureComplete() const;
    /** Length of the open file in seconds, 0 without one. */
    double Duration() const;
    /** The sentence of the last failed OpenFile(), empty after a successful one. */
    QString FailureText() const;

Q_SIGNALS:
    void PictureCompleted();
    void PositionChanged(double seconds);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void BuildActions();
    void BuildView();
    void ConnectWaveform();
    void ConnectPlayer();

    void AskForFile();
    void Adopt(std::unique_ptr<WavFile> file);
    void ShowFailure(const QString& sentence);
    void HideFailure();

    void StartExtraction(double startTime, double endTime, int stepSize);
    void StopExtraction();
    void OnExtractionFinished();

    void OnPositionClicked(double seconds);
    void OnSelectionChanged(std::pair<double, double> selection);
    void OnPlayerPositionChanged(qint64 milliseconds);
    void OnPlaybackStateChanged(QMediaPlayer::PlaybackState state);
    void ShowPosition(double seconds);
    void ShowSelection(std::pair<double, double> selection);

    std::unique_ptr<WavFile> m_file;
    QFutureWatcher<void> m_extraction;
    AudioPlayer m_player;
    bool m_hasSelection = false;

    vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget* m_waveform = nullptr;
    QLabel* m_failure = nullptr;
    QLabel* m_positionLabel = nullptr;
    QLabel* m_selectionLabel = nullptr;
    QAction* m_playAction = nullptr;
    QAction* m_loopAction = nullptr;
};
