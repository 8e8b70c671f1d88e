#pragma once

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFutureWatcher>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>

#include <functional>
#include <memory>
#include <utility>

class ExportBar;

/** A small audio player: one file with its waveform, played whole or by the stretch that is selected in it. Parts
 *  of it can be written to new files. */
class PlayerWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit PlayerWindow(QWidget* parent = nullptr);
    ~PlayerWindow() override;

    /** Shows the file and makes it ready to play. When that fails, what was shown before stays and a sentence
     *  above the waveform tells why. */
    bool OpenFile(const QString& path);
    /** These write a new file in the background and end with ExportEnded(). An existing file is left alone. */
    void ExportSelection(const QString& outPath, double start, double end);
    void ExportChannel(const QString& outPath, WavFile::ChannelFormat channel);
    void ConvertFile(const QString& outPath, const QAudioFormat& format);
    void CancelExport();

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
    void ExportEnded();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void BuildActions();
    void BuildExport(QMenu* fileMenu);
    void BuildView();
    void ConnectWaveform();
    void ConnectPlayer();

    void AskForFile();
    WavFile::AudioEngineReturnValue Load(const QString& path, WavFile& file);
    WavFile::AudioEngineReturnValue Decode(const QString& path, WavFile& file);
    void Adopt(std::unique_ptr<WavFile> file, const QString& path);
    void ShowFailure(const QString& sentence);
    void HideFailure();

    void StartExport(const QString& outPath, WavFile::ChannelFormat channel, std::function<bool(WavFile&)> task);
    QString AskForOutput(const QString& what);
    void ShowWhatCanBeExported();

    void StartExtraction(double startTime, double endTime, int stepSize);
    void StopExtraction();
    void OnExtractionFinished();

    void OnPositionClicked(double seconds);
    void OnSelectionChanged(std::pair<double, double> selection);
    void OnPlayerPositionChanged(qint64 milliseconds);
    void OnPlaybackStateChanged(QMediaPlayer::PlaybackState state);
    void ShowPosition(double seconds);
    void ShowSelection(std::pair<double, double> selection);

    /** Holds decoded copies of compressed files. */
    QTemporaryDir m_decodedFiles;
    int m_decodedCount = 0;
    bool m_isLoading = false;
    QString m_shownPath;
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

    ExportBar* m_exportBar = nullptr;
    QMenu* m_exportMenu = nullptr;
    QAction* m_selectionAction = nullptr;
    QAction* m_leftAction = nullptr;
    QAction* m_rightAction = nullptr;
};
