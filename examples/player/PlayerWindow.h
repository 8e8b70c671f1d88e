#pragma once

#include "Appearance.h"
#include "FileExport.h"
#include "WorkingFolder.h"

#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/AudioPlayerActions.h>

#include <QtCore/QTimer>
#include <QtWidgets/QMainWindow>

#include <memory>

class DragHandle;
class FailureBar;
class FileList;
class HostPlayer;
class QAction;
class QLabel;
class QMenu;
class QToolButton;
class RecentFiles;
class SelectionHistory;
class SpeedMenu;
class TaskProgress;
class ThemeMenu;
class ViewMemory;
class ZoomBar;

/** A small audio player: one file with its waveform, played whole or by the stretch that is selected in it. Parts
 *  of it can be written to new files. */
class PlayerWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit PlayerWindow(QWidget* parent = nullptr);
    ~PlayerWindow() override;

    /** Shows the file as soon as it is ready to play, and ends with Opened(), OpenFailed() or OpenCancelled().
     *  After a failure a sentence above the waveform tells the reason. The former file stays until then. */
    void OpenFile(const QString& path);
    /** Opens the first one. Several of them become the list of files. */
    void OpenFiles(const QStringList& paths);
    enum class Existing
    {
        Keep,
        Replace
    };
    /** These write a new file in the background and end with ExportEnded(). Without a selection, or two channels,
     *  there is nothing to write. An existing file is left alone, also
     *  one that comes meanwhile, with a sentence that says so, or replaced when the new one is whole. */
    void ExportSelection(const QString& outPath, Existing existing = Existing::Keep);
    void ExportChannel(const QString& outPath, WavFile::ChannelFormat channel, Existing existing = Existing::Keep);
    void ConvertFile(const QString& outPath, const QAudioFormat& format, Existing existing = Existing::Keep);
    void CancelExport();
    /** Gives up what the user is waiting for: the file that is being opened, or else the export. */
    void CancelTask();

    void Play();
    void ShowRange(double start, double end);
    void SelectRange(double start, double end);

    /** No samples are being read: the picture is complete. */
    bool IsPictureComplete() const;
    /** Length of the open file in seconds, 0 without one. */
    double Duration() const;
    /** The sentence of the last failure, empty when all went well since. */
    QString FailureText() const;

Q_SIGNALS:
    // Also for files that the user opens with the player's own button.
    void Opened();
    void OpenFailed();
    void OpenCancelled();
    void PictureCompleted();
    void PositionChanged(double seconds);
    void ExportEnded();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void BuildView();
    void BuildMenus();
    void BuildFileMenu();
    void BuildEditMenu();
    void BuildExport(QMenu* fileMenu);
    void BuildPlayerMenus();
    void BuildTools();
    QToolButton* MakeSpeedButton();
    void ShowShortcuts();
    void ShowContextMenu(const QPoint& globalPosition);
    void ConnectPlayer();
    void RestoreState();
    void SaveState() const;

    void AskForFiles();
    void ConnectLoading();
    void OnFileLoaded();
    void ShowFileName();
    using Problem = vantoraudio::AudioEngine::AudioFileInfo::Problem;
    void OnLoadFailed(const QString& path, Problem problem, const QString& sentence);
    void OnFailure(WavFile::AudioEngineReturnValue error);
    void OnProgress(int progress, int min, int max, const QString& text);
    void OnBusyChanged();
    void CheckPicture();

    void ShowFailure(const QString& sentence);
    void HideFailure();
    void ShowWhatCanBeCancelled();
    void EndProgressWhenIdle();

    struct Output
    {
        QString path;
        Existing existing = Existing::Keep;
    };
    bool CanExportTo(const QString& outPath, Existing existing);
    void StartExport(const QString& outPath, WavFile::ChannelFormat channel, FileExport::Task task);
    void OnSaved(const QString& path);
    void OnExportFailed(const QString& path);
    void EndExport(const QString& message);
    Output AskForOutput(const QString& what);
    Output ChooseOutput(const QString& what);
    bool IsAgreed(const QString& question);
    void ShowWhatCanBeExported();

    void AskForPosition();
    void GoToPosition(double seconds);
    void ShowInformation();
    void AskForSettings();
    void ShowAbout();
    void SetAppearance(const Appearance& appearance);
    void ShowNightIcons();

    WorkingFolder m_workingFolder;
    Appearance m_appearance;
    HostPlayer* m_player = nullptr;
    FailureBar* m_failure = nullptr;
    QLabel* m_selectionLabel = nullptr;
    DragHandle* m_dragHandle = nullptr;
    TaskProgress* m_progress = nullptr;
    FileList* m_files = nullptr;
    FileExport m_export;
    /** Looks whether the picture is complete. */
    QTimer m_look;

    /** For the export that is running. */
    Existing m_existing = Existing::Keep;

    std::unique_ptr<ViewMemory> m_views;
    std::unique_ptr<SelectionHistory> m_history;
    vantoraudio::vantorAudioEngine::UI::AudioPlayerActions* m_actions = nullptr;
    ThemeMenu* m_themes = nullptr;
    SpeedMenu* m_speeds = nullptr;
    ZoomBar* m_zoom = nullptr;
    RecentFiles* m_recentFiles = nullptr;
    QAction* m_informationAction = nullptr;
    QAction* m_goToAction = nullptr;
    QAction* m_selectAllAction = nullptr;
    QMenu* m_exportMenu = nullptr;
    QAction* m_selectionAction = nullptr;
    QAction* m_leftAction = nullptr;
    QAction* m_rightAction = nullptr;
};
