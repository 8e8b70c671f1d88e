#include "PlayerWindow.h"

#include "DeviceMenu.h"
#include "Failures.h"
#include "HostPlayer.h"
#include "SettingsDialog.h"
#include "TaskProgress.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QScopedValueRollback>
#include <QtCore/QSettings>
#include <QtCore/QTimer>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QStyle>
#include <QtWidgets/QVBoxLayout>

#include <chrono>
#include <cmath>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace {

bool HoldsAudio(const WavFile& file)
{
    return std::isfinite(file.GetDuration()) && file.GetDuration() > 0.0;
}

QString LocalFileOf(const QMimeData* data)
{
    const QList<QUrl> urls = data->urls();
    return urls.size() == 1 ? urls.first().toLocalFile() : QString();
}

QString NameOf(const QString& path)
{
    return QFileInfo(path).fileName();
}

/** The player reads such files as they are and decodes all others. */
bool IsReadAsWav(const QString& path)
{
    return QFileInfo(path).completeSuffix() == u"wav"_s;
}

} // namespace

PlayerWindow::PlayerWindow(QWidget* parent)
    : QMainWindow(parent), m_nextFolder(m_workingFolder.Next()), m_appearance(Appearance::Load())
{
    setWindowTitle(tr("Player"));
    setAcceptDrops(true);
    resize(1000, 480);
    BuildView();
    BuildMenus();
    ConnectPlayer();
    RestoreState();
}

PlayerWindow::~PlayerWindow()
{
    m_player->Close();
}

void PlayerWindow::BuildView()
{
    m_player = new HostPlayer(this);
    // The time fields are narrow for some systems' fonts.
    m_player->setStyleSheet(u"#edCurrentPosition, #edTotalDuration { font-size: 8pt }"_s);
    m_player->SetEditMode(true);
    m_player->SetDecodeToFloat(true);
    m_player->SetWritableDirectoryPath(m_nextFolder);
    m_player->SetHint(tr("Wheel: scroll   Ctrl + wheel: zoom   Double click: whole file   Drag: select   "
                         "Space: play and pause"));

    m_failure = new QLabel(this);
    m_failure->setObjectName("failure"_L1);
    m_failure->setWordWrap(true);
    m_failure->setMargin(8);
    m_failure->setTextFormat(Qt::PlainText);
    m_failure->setStyleSheet(u"background: #7a2e2e; color: white"_s);
    m_failure->hide();

    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_failure);
    layout->addWidget(m_player, 1);
    setCentralWidget(content);

    m_selectionLabel = new QLabel(this);
    m_progress = new TaskProgress(this);
    statusBar()->addWidget(m_selectionLabel);
    statusBar()->addPermanentWidget(m_progress);
}

void PlayerWindow::BuildMenus()
{
    QMenu* fileMenu = menuBar()->addMenu(tr("&File"));
    fileMenu->addAction(style()->standardIcon(QStyle::SP_DialogOpenButton), tr("&Open…"), QKeySequence::Open, this,
                        &PlayerWindow::AskForFile);
    BuildExport(fileMenu);
    fileMenu->addAction(tr("S&ettings…"), this, &PlayerWindow::AskForSettings);
    fileMenu->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

    auto* devices = new DeviceMenu(this);
    connect(devices, &DeviceMenu::DeviceChosen, m_player, &HostPlayer::SetAudioOutputDevice);
    menuBar()->addMenu(devices);
}

void PlayerWindow::ConnectPlayer()
{
    connect(m_player, &HostPlayer::AudioFileChanged, this, &PlayerWindow::OnFileLoaded);
    connect(m_player, &HostPlayer::Failed, this, &PlayerWindow::OnFailure);
    connect(m_player, &HostPlayer::ProgressChanged, this, &PlayerWindow::OnProgress);
    connect(m_player, &HostPlayer::BusyChanged, this, &PlayerWindow::OnBusyChanged);
    connect(m_player, &HostPlayer::AudioPositionChanged, this, &PlayerWindow::PositionChanged);
    connect(m_player, &HostPlayer::WaveFormSelectionChanged, this, &PlayerWindow::ShowWhatCanBeExported);
    connect(m_player, &HostPlayer::SettingsButtonClicked, this, &PlayerWindow::AskForSettings);
    connect(m_player, &HostPlayer::CreateSnippetFinished, this,
            [this](const QString& path) { EndExport(tr("Saved “%1”.").arg(QDir::toNativeSeparators(path))); });
}

void PlayerWindow::RestoreState()
{
    const QSettings settings;
    restoreGeometry(settings.value(u"geometry"_s).toByteArray());
    m_player->SetAudioPlayBackVolume(settings.value(u"volume"_s, 99).toInt());
    SetAppearance(m_appearance);
}

void PlayerWindow::SaveState() const
{
    QSettings settings;
    settings.setValue(u"geometry"_s, saveGeometry());
    settings.setValue(u"volume"_s, m_player->findChild<QSlider*>(u"hSliderVolume"_s)->value());
    m_appearance.Save();
}

bool PlayerWindow::OpenFile(const QString& path)
{
    // Decoding runs an event loop, in which the user may ask for yet another file.
    if (m_isLoading) {
        return false;
    }
    const QScopedValueRollback loading(m_isLoading, true);
    HideFailure();
    m_openingPath = QFileInfo(path).absoluteFilePath();
    m_loadError.reset();
    const bool isWav = IsReadAsWav(path);
    const auto prepared = isWav ? PrepareWavFile(m_openingPath, m_nextFolder) : WavFile::Success;
    if (prepared == WavFile::Success) {
        statusBar()->showMessage(isWav ? QString() : tr("Decoding…"));
        m_player->SetAudioFile(m_openingPath);
        statusBar()->clearMessage();
    } else if (FailureText().isEmpty()) {
        ShowFailure(DescribeOpenFailure(path, prepared));
    }
    return prepared == WavFile::Success && !m_loadError;
}

/**
 * Looks into a WAV file before the player takes it, so that a bad one does not take the shown one away. One of a
 * kind that the player does not read is decoded to where the player expects its working copy.
 */
WavFile::AudioEngineReturnValue PlayerWindow::PrepareWavFile(const QString& path, const QString& folder)
{
    WavFile file;
    const WavFile::AudioEngineReturnValue result = file.Open(path);
    if (result == WavFile::Success && !HoldsAudio(file)) {
        ShowFailure(DescribeSilentFile(path));
        return WavFile::ErrorInvalidFormat;
    }
    const bool mayBeDecoded = result == WavFile::ErrorInvalidFormat || result == WavFile::ErrorReadFile;
    return mayBeDecoded ? Decoder::ConvertToFloat(path, folder + u'/' + NameOf(path), -1) : result;
}

void PlayerWindow::OnFileLoaded()
{
    HideFailure();
    setWindowTitle(NameOf(m_player->GetOriginalAudioFilePath()));
    m_nextFolder = m_workingFolder.Next();
    m_player->SetWritableDirectoryPath(m_nextFolder);
    m_player->setFocus();
    ShowWhatCanBeExported();
}

void PlayerWindow::OnFailure(WavFile::AudioEngineReturnValue error)
{
    const QString shown = m_player->GetOriginalAudioFilePath();
    if (m_isLoading) {
        m_loadError = error;
        ShowFailure(DescribeOpenFailure(m_openingPath, error));
    } else if (!m_snippetPath.isEmpty()) {
        ShowFailure(DescribeExportFailure(m_snippetPath));
        EndExport(QString());
    } else if (error == WavFile::ErrorFilterChannel || error == WavFile::Success) {
        ShowFailure(DescribeChannelFailure(shown));
    } else {
        ShowFailure(DescribeOpenFailure(shown, error));
    }
    if (m_player->GetAudioFileName().isEmpty()) {
        setWindowTitle(tr("Player"));
    }
    ShowWhatCanBeExported();
}

void PlayerWindow::OnProgress(int progress, int min, int max, const QString& text)
{
    m_progress->ShowProgress(progress, min, max, text);
    // The last report of the waveform's samples may overtake the samples themselves.
    QTimer::singleShot(0, this, &PlayerWindow::CheckPicture);
}

void PlayerWindow::OnBusyChanged(bool isBusy)
{
    m_progress->SetCancellable(isBusy && !m_snippetPath.isEmpty());
    if (!isBusy) {
        m_progress->End();
    }
    ShowWhatCanBeExported();
}

void PlayerWindow::CheckPicture()
{
    if (!IsPictureComplete()) {
        // A task reports its end a moment before it has ended.
        QTimer::singleShot(10ms, this, &PlayerWindow::CheckPicture);
        return;
    }
    if (!m_player->IsBusy() && !m_export.IsRunning()) {
        m_progress->End();
    }
    if (m_isSnippetWaiting) {
        m_isSnippetWaiting = false;
        m_player->CreateSnippet(m_snippetPath);
    }
    Q_EMIT PictureCompleted();
}

void PlayerWindow::Play()
{
    auto* button = m_player->findChild<QPushButton*>(u"btnPlayPause"_s);
    if (!button->isChecked()) {
        button->click();
    }
}

void PlayerWindow::ShowRange(double start, double end)
{
    Q_EMIT m_player->SceneRectChangeRequested(QRectF(start, 0.0, end - start, 1.0));
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
    return m_failure->text();
}

void PlayerWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!LocalFileOf(event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
    }
}

void PlayerWindow::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    OpenFile(LocalFileOf(event->mimeData()));
}

void PlayerWindow::closeEvent(QCloseEvent* event)
{
    SaveState();
    m_export.Cancel();
    m_player->Reset();
    QMainWindow::closeEvent(event);
}

void PlayerWindow::AskForFile()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open"), QString(), tr("Audio files (*.wav *.mp3 *.flac *.ogg *.m4a);;All files (*)"));
    if (!path.isEmpty()) {
        OpenFile(path);
    }
}

void PlayerWindow::ShowFailure(const QString& sentence)
{
    m_failure->setText(sentence);
    m_failure->show();
}

void PlayerWindow::HideFailure()
{
    m_failure->clear();
    m_failure->hide();
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
}
