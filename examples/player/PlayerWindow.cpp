#include "PlayerWindow.h"

#include "DragHandle.h"
#include "FailureBar.h"
#include "Failures.h"
#include "FileList.h"
#include "HostPlayer.h"
#include "PointerLabel.h"
#include "RecentFiles.h"
#include "Remembered.h"
#include "SelectionHistory.h"
#include "SettingsDialog.h"
#include "TaskProgress.h"
#include "ThemeMenu.h"
#include "ViewMemory.h"
#include "ZoomBar.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QSettings>
#include <QtGui/QAction>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>
#include <QtGui/QIcon>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QVBoxLayout>

#include <chrono>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using Actions = vantoraudio::vantorAudioEngine::UI::AudioPlayerActions;
using Interaction = vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget::Interaction;

namespace {

QStringList LocalFilesOf(const QMimeData* data)
{
    QStringList files;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile()) {
            files.append(url.toLocalFile());
        }
    }
    return files;
}

} // namespace

PlayerWindow::PlayerWindow(QWidget* parent) : QMainWindow(parent), m_appearance(Appearance::Load())
{
    setWindowIcon(QIcon(u":/Resources/vantoraudioPlayer.svg"_s));
    setAcceptDrops(true);
    resize(1000, 480);
    BuildView();
    BuildMenus();
    BuildTools();
    ConnectPlayer();
    ShowFileName();
    RestoreState();
}

PlayerWindow::~PlayerWindow()
{
    m_player->Close();
    // It writes to the folder that goes before the window's widgets do.
    delete m_dragHandle;
}

void PlayerWindow::BuildView()
{
    // The focus goes to what is made next when the bar is hidden.
    m_failure = new FailureBar(this);
    m_player = new HostPlayer(this);
    // Its rows break for this width until it gets its own; broken ones would make the window higher.
    m_player->resize(size());
    m_player->UseFlexibleSizes();
    m_player->SetLabelsFit(true);
    m_player->SetWaveformTakesFocus(true);
    m_player->SetPositionMovesSmoothly(true);
    m_player->SetChannelChangeKeepsPlace(true);
    m_player->SetDeviceChangeKeepsPlace(true);
    m_player->SetSelectionChangeKeepsPlace(true);
    m_player->SetEditMode(true);
    m_player->SetInteractions(Interaction::SelectBeyondView | Interaction::MoveFromInside |
                              Interaction::ExtendWithShift | Interaction::LeftButtonOnly |
                              Interaction::ForgetCleared | Interaction::DoubleClickOnlyZooms |
                              Interaction::DragFromDistance);
    m_player->SetKeepsViewFilled(true);
    m_player->SetKeepPeaks(true);
    m_player->SetShowsPositionAtOnce(true);
    m_player->SetPlayReturnsToStart(true);
    m_player->SetTypedPositionSeeks(true);
    m_player->SetEditedPositionStays(true);
    m_player->SetLoadInBackground(true);
    m_player->SetProgramChoosesFiles(true);
    connect(m_player, &HostPlayer::LoadRequested, this, &PlayerWindow::AskForFiles);
    m_player->SetWritableDirectoryPath(m_workingFolder.Path());
    m_views = std::make_unique<ViewMemory>(*m_player);
    m_player->SetHint(tr("Wheel: scroll   Ctrl + wheel: zoom   Double click: whole file   Drag: select   "
                         "Space: play and pause   F1: all keys"));

    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_failure);
    layout->addWidget(m_player, 1);
    setCentralWidget(content);

    m_selectionLabel = new QLabel(this);
    m_dragHandle = new DragHandle(*m_player, m_workingFolder.Path(), this);
    m_progress = new TaskProgress(this);
    statusBar()->addWidget(m_selectionLabel);
    auto* pointerLabel = new PointerLabel(*m_player, this);
    connect(this, &PlayerWindow::PictureCompleted, pointerLabel, &PointerLabel::Refresh);
    statusBar()->addWidget(pointerLabel);
    statusBar()->addPermanentWidget(m_progress);
    statusBar()->addPermanentWidget(m_dragHandle);

    m_files = new FileList(this);
    addDockWidget(Qt::RightDockWidgetArea, m_files);
    resizeDocks({m_files}, {200}, Qt::Horizontal);
    m_files->hide();
}

void PlayerWindow::ConnectPlayer()
{
    connect(m_player, &HostPlayer::AudioFileChanged, this, &PlayerWindow::OnFileLoaded);
    connect(m_player, &HostPlayer::Failed, this, &PlayerWindow::OnFailure);
    connect(m_player, &HostPlayer::PlaybackFailed, this, [this](const QString& reason) {
        ShowFailure(DescribePlaybackFailure(m_player->GetOriginalAudioFilePath(), reason));
    });
    connect(m_player, &HostPlayer::ProgressChanged, this, &PlayerWindow::OnProgress);
    connect(m_player, &HostPlayer::BusyChanged, this, &PlayerWindow::OnBusyChanged);
    connect(m_player, &HostPlayer::AudioPositionChanged, this, &PlayerWindow::PositionChanged);
    connect(m_player, &HostPlayer::WaveFormSelectionChanged, this, &PlayerWindow::ShowWhatCanBeExported);
    connect(m_player, &HostPlayer::ContextMenuRequested, this, &PlayerWindow::ShowContextMenu);
    connect(m_player, &HostPlayer::SettingsButtonClicked, this, &PlayerWindow::AskForSettings);
    connect(m_dragHandle, &DragHandle::Progressed, m_progress, &TaskProgress::ShowProgress);
    connect(m_dragHandle, &DragHandle::Started, this, &PlayerWindow::HideFailure);
    connect(m_dragHandle, &DragHandle::Started, this, &PlayerWindow::ShowWhatCanBeCancelled);
    connect(m_dragHandle, &DragHandle::Ended, this, &PlayerWindow::ShowWhatCanBeCancelled);
    connect(m_dragHandle, &DragHandle::Failed, this,
            [this](const QString& path) { ShowFailure(DescribeExportFailure(path)); });
    ConnectLoading();
    // A task reports its end a moment before it has ended.
    m_look.callOnTimeout(this, &PlayerWindow::CheckPicture);
    m_look.setInterval(10ms);
}

void PlayerWindow::ConnectLoading()
{
    connect(m_player, &HostPlayer::LoadStarted, this, &PlayerWindow::HideFailure);
    for (const auto loadChanged :
         {&HostPlayer::LoadStarted, &HostPlayer::LoadFinished, &HostPlayer::LoadCancelled}) {
        connect(m_player, loadChanged, this, &PlayerWindow::ShowWhatCanBeCancelled);
    }
    // Another path may lead to the file that is loaded already.
    connect(m_player, &HostPlayer::LoadFinished, this, [this](const QString& path) {
        m_files->MarkLoaded(path);
        Q_EMIT Opened();
    });
    connect(m_player, &HostPlayer::LoadFailed, this, &PlayerWindow::OnLoadFailed);
    connect(m_player, &HostPlayer::LoadCancelled, this, &PlayerWindow::OpenCancelled);
}

void PlayerWindow::RestoreState()
{
    const QSettings settings;
    restoreGeometry(settings.value(u"geometry"_s).toByteArray());
    Remembered::RestorePlayer(*m_player);
    m_actions->Get(Actions::Mute)->setChecked(m_player->GetAudioPlayBackMute());
    SetAppearance(m_appearance);
}

void PlayerWindow::SaveState() const
{
    QSettings().setValue(u"geometry"_s, saveGeometry());
    Remembered::KeepPlayer(*m_player);
    m_appearance.Save();
}

void PlayerWindow::OpenFile(const QString& path)
{
    m_player->LoadFile(QFileInfo(path).absoluteFilePath());
}

void PlayerWindow::OpenFiles(const QStringList& paths)
{
    if (paths.size() > 1) {
        m_files->SetFiles(paths);
    }
    if (!paths.isEmpty()) {
        OpenFile(paths.constFirst());
    }
}

void PlayerWindow::OnFileLoaded()
{
    HideFailure();
    ShowFileName();
    m_recentFiles->Add(m_player->GetOriginalAudioFilePath());
    Remembered::KeepFolderOf(Remembered::Folder::Open, m_player->GetOriginalAudioFilePath());
    m_views->Restore();
    // Who goes through the list of files goes on there.
    if (!m_files->isAncestorOf(QApplication::focusWidget())) {
        m_player->setFocus();
    }
    ShowWhatCanBeExported();
}

void PlayerWindow::ShowFileName()
{
    const QString path = m_player->GetAudioFileName().isEmpty() ? QString() : m_player->GetOriginalAudioFilePath();
    setWindowFilePath(path);
    // Qt takes this for the place of a mark, and the doubled one for itself.
    const QString name = QFileInfo(path).fileName().replace(u"[*]"_s, u"[*][*]"_s);
    setWindowTitle(name.isEmpty() ? tr("Player") : name);
}

void PlayerWindow::OnLoadFailed(const QString& /*path*/, Problem /*problem*/, const QString& sentence)
{
    ShowFailure(sentence);
    ShowFileName();
    ShowWhatCanBeCancelled();
    ShowWhatCanBeExported();
    Q_EMIT OpenFailed();
}

/** Of what follows opening; OnLoadFailed() tells more of a file that cannot be opened. */
void PlayerWindow::OnFailure(WavFile::AudioEngineReturnValue error)
{
    if (error == WavFile::ErrorFilterChannel || error == WavFile::Success) {
        ShowFailure(DescribeChannelFailure(m_player->GetOriginalAudioFilePath()));
    }
}

void PlayerWindow::OnProgress(int progress, int min, int max, const QString& text)
{
    m_progress->ShowProgress(progress, min, max, text);
    if (!m_look.isActive()) {
        m_look.start();
    }
}

void PlayerWindow::OnBusyChanged()
{
    ShowWhatCanBeCancelled();
    ShowWhatCanBeExported();
}

void PlayerWindow::ShowWhatCanBeCancelled()
{
    const bool isCancellable = m_player->IsLoading() || m_export.IsRunning() || m_dragHandle->IsWriting();
    if (!isCancellable && m_progress->isAncestorOf(focusWidget())) {
        // The button hides, and would leave the focus to what is made next.
        m_player->setFocus();
    }
    m_progress->SetCancellable(isCancellable);
    EndProgressWhenIdle();
}

void PlayerWindow::EndProgressWhenIdle()
{
    if (!m_player->IsLoading() && !m_player->IsBusy() && !m_export.IsRunning() && !m_dragHandle->IsWriting() &&
        IsPictureComplete()) {
        m_progress->End();
    }
}

void PlayerWindow::CancelTask()
{
    if (m_player->IsLoading()) {
        m_player->CancelLoad();
    } else {
        m_dragHandle->Cancel();
        CancelExport();
    }
}

void PlayerWindow::CheckPicture()
{
    if (!IsPictureComplete()) {
        return;
    }
    m_look.stop();
    EndProgressWhenIdle();
    Q_EMIT PictureCompleted();
}

void PlayerWindow::Play()
{
    m_player->Play();
}

void PlayerWindow::ShowRange(double start, double end)
{
    m_player->ShowRange(start, end);
}

void PlayerWindow::SelectRange(double start, double end)
{
    m_player->SetSelectedSnippet({start, end});
}

bool PlayerWindow::IsPictureComplete() const
{
    return !m_player->IsReadingSamples();
}

double PlayerWindow::Duration() const
{
    return m_player->GetAudioDuration();
}

QString PlayerWindow::FailureText() const
{
    return m_failure->Sentence();
}

void PlayerWindow::dragEnterEvent(QDragEnterEvent* event)
{
    // What is dragged out of this window is not meant to be opened in it.
    if (!event->source() && !LocalFilesOf(event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
    }
}

void PlayerWindow::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    OpenFiles(LocalFilesOf(event->mimeData()));
}

void PlayerWindow::closeEvent(QCloseEvent* event)
{
    SaveState();
    m_export.Cancel();
    m_dragHandle->Cancel();
    m_player->Reset();
    QMainWindow::closeEvent(event);
}

void PlayerWindow::AskForFiles()
{
    OpenFiles(QFileDialog::getOpenFileNames(this, tr("Open"), Remembered::GetFolder(Remembered::Folder::Open),
                                            HostPlayer::GetLoadableFiles()));
}

void PlayerWindow::ShowFailure(const QString& sentence)
{
    m_failure->SetSentence(sentence);
}

void PlayerWindow::HideFailure()
{
    m_failure->SetSentence(QString());
}

void PlayerWindow::AskForSettings()
{
    SettingsDialog dialog(m_appearance, this);
    connect(&dialog, &SettingsDialog::Changed, this, &PlayerWindow::SetAppearance);
    dialog.exec();
    m_appearance.Save();
}

void PlayerWindow::SetAppearance(const Appearance& appearance)
{
    m_appearance = appearance;
    m_appearance.ApplyTo(*m_player);
    m_themes->Check(m_appearance.theme);
    ShowNightIcons();
}

void PlayerWindow::ShowNightIcons()
{
    m_actions->SetNightIcons(m_appearance.IsDark());
    m_zoom->SetNightIcons(m_appearance.IsDark());
}

void PlayerWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    // The system's palette became dark or light.
    if (event->type() == QEvent::PaletteChange && m_zoom) {
        m_appearance.ApplyColorsTo(*m_player);
        ShowNightIcons();
    }
}
