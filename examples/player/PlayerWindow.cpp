#include "PlayerWindow.h"

#include "DeviceMenu.h"
#include "OpenFailure.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QScopedValueRollback>
#include <QtCore/QThread>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget;

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

} // namespace

PlayerWindow::PlayerWindow(QWidget* parent) : QMainWindow(parent)
{
    setWindowTitle(tr("Player"));
    setAcceptDrops(true);
    resize(1000, 420);
    BuildView();
    BuildActions();
    ConnectWaveform();
    ConnectPlayer();
    connect(&m_extraction, &QFutureWatcher<void>::finished, this, &PlayerWindow::OnExtractionFinished);
    ShowPosition(0.0);
}

PlayerWindow::~PlayerWindow()
{
    StopExtraction();
}

bool PlayerWindow::OpenFile(const QString& path)
{
    // Decoding runs an event loop, in which the user may ask for yet another file.
    if (m_isLoading) {
        return false;
    }
    const QScopedValueRollback loading(m_isLoading, true);
    // A file of its own, so that one that cannot be read does not take the shown one away.
    auto file = std::make_unique<WavFile>();
    const WavFile::AudioEngineReturnValue result = Load(path, *file);
    if (result != WavFile::Success) {
        ShowFailure(DescribeOpenFailure(path, result));
        return false;
    }
    if (!HoldsAudio(*file)) {
        ShowFailure(DescribeSilentFile(path));
        return false;
    }
    HideFailure();
    Adopt(std::move(file), path);
    return true;
}

/** WAV files are read as they are; everything else, also a WAV file of an unusual kind, is decoded first. */
WavFile::AudioEngineReturnValue PlayerWindow::Load(const QString& path, WavFile& file)
{
    const WavFile::AudioEngineReturnValue result = file.Open(path);
    return result == WavFile::ErrorInvalidFormat || result == WavFile::ErrorReadFile ? Decode(path, file) : result;
}

WavFile::AudioEngineReturnValue PlayerWindow::Decode(const QString& path, WavFile& file)
{
    statusBar()->showMessage(tr("Decoding…"));
    const QString decoded = m_decodedFiles.filePath(QString::number(++m_decodedCount) + u".wav"_s);
    const WavFile::AudioEngineReturnValue result = Decoder::ConvertToFloat(path, decoded, -1);
    statusBar()->clearMessage();
    return result == WavFile::Success ? file.Open(decoded) : result;
}

void PlayerWindow::Play()
{
    if (m_file && m_player.playbackState() != QMediaPlayer::PlayingState) {
        m_player.PauseResume();
    }
}

void PlayerWindow::ShowRange(double start, double end)
{
    m_waveform->OnSceneRectChangeRequested(QRectF(start, 0.0, end - start, 1.0));
}

void PlayerWindow::SelectRange(double start, double end)
{
    m_waveform->SetSelectedSnippet({start, end});
}

bool PlayerWindow::IsPictureComplete() const
{
    return !m_extraction.isRunning();
}

double PlayerWindow::Duration() const
{
    return m_file ? m_file->GetDuration() : 0.0;
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

void PlayerWindow::BuildView()
{
    m_waveform = new BGFXWaveformWidget(this);
    m_waveform->SetEditMode(true);

    m_failure = new QLabel(this);
    m_failure->setObjectName("failure"_L1);
    m_failure->setWordWrap(true);
    m_failure->setMargin(8);
    m_failure->setTextFormat(Qt::PlainText);
    m_failure->setStyleSheet(u"background: #7a2e2e; color: white"_s);
    m_failure->hide();

    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 8);
    layout->addWidget(m_failure);
    layout->addWidget(m_waveform, 1);
    setCentralWidget(content);

    m_positionLabel = new QLabel(this);
    m_selectionLabel = new QLabel(this);
    statusBar()->addWidget(m_positionLabel);
    statusBar()->addWidget(m_selectionLabel);
    statusBar()->addPermanentWidget(
        new QLabel(tr("Wheel: scroll   Ctrl + wheel: zoom   Double click: whole file   Drag: select"), this));
}

void PlayerWindow::BuildActions()
{
    QMenu* fileMenu = menuBar()->addMenu(tr("&File"));
    QAction* open = fileMenu->addAction(style()->standardIcon(QStyle::SP_DialogOpenButton), tr("&Open…"),
                                        QKeySequence::Open, this, &PlayerWindow::AskForFile);
    BuildExport(fileMenu);
    fileMenu->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

    QMenu* playbackMenu = menuBar()->addMenu(tr("&Playback"));
    m_playAction = playbackMenu->addAction(style()->standardIcon(QStyle::SP_MediaPlay), tr("&Play"),
                                           QKeySequence(Qt::Key_Space), &m_player, &AudioPlayer::PauseResume);
    m_playAction->setEnabled(false);
    m_loopAction = playbackMenu->addAction(style()->standardIcon(QStyle::SP_BrowserReload), tr("&Loop"));
    m_loopAction->setShortcut(QKeySequence(Qt::Key_L));
    m_loopAction->setCheckable(true);
    connect(m_loopAction, &QAction::toggled, &m_player, &AudioPlayer::LoopPlayback);

    auto* devices = new DeviceMenu(this);
    connect(devices, &DeviceMenu::DeviceChosen, &m_player, &AudioPlayer::SetAudioOutputDevice);
    playbackMenu->addMenu(devices);

    QToolBar* toolBar = addToolBar(tr("Transport"));
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->addActions({open, m_playAction, m_loopAction});
    toolBar->addAction(devices->menuAction());
    devices->menuAction()->setIcon(style()->standardIcon(QStyle::SP_MediaVolume));
    if (auto* button = qobject_cast<QToolButton*>(toolBar->widgetForAction(devices->menuAction()))) {
        button->setPopupMode(QToolButton::InstantPopup);
    }
}

void PlayerWindow::ConnectWaveform()
{
    connect(m_waveform, &BGFXWaveformWidget::GetSamples, this, &PlayerWindow::StartExtraction);
    connect(m_waveform, &BGFXWaveformWidget::AudioPositionChanged, this, &PlayerWindow::OnPositionClicked);
    connect(m_waveform, &BGFXWaveformWidget::SelectionChanged, this, &PlayerWindow::OnSelectionChanged);
}

void PlayerWindow::ConnectPlayer()
{
    connect(&m_player, &QMediaPlayer::positionChanged, this, &PlayerWindow::OnPlayerPositionChanged);
    connect(&m_player, &QMediaPlayer::playbackStateChanged, this, &PlayerWindow::OnPlaybackStateChanged);
}

void PlayerWindow::AskForFile()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open"), QString(), tr("Audio files (*.wav *.mp3 *.flac *.ogg *.m4a);;All files (*)"));
    if (!path.isEmpty()) {
        OpenFile(path);
    }
}

void PlayerWindow::Adopt(std::unique_ptr<WavFile> file, const QString& path)
{
    m_player.stop();
    StopExtraction();
    m_file = std::move(file);
    m_file->SetSelectedChannel(WavFile::ChannelLeftRight);
    m_waveform->Initilize(m_file->GetFileFormat(), m_file->GetDuration());
    m_player.SetAudio(m_file->fileName(), m_file->GetDuration());
    m_playAction->setEnabled(true);
    m_shownPath = path;
    setWindowTitle(QFileInfo(path).fileName());
    ShowPosition(0.0);
    ShowWhatCanBeExported();
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

void PlayerWindow::StartExtraction(double startTime, double endTime, int stepSize)
{
    StopExtraction();
    if (!m_file) {
        return;
    }
    m_extraction.setFuture(QtConcurrent::run(
        [file = m_file.get(), startTime, endTime, stepSize] { file->ReadData(startTime, endTime, stepSize); }));
}

void PlayerWindow::StopExtraction()
{
    // An extraction that is only queued would clear the abort flag when it starts, so it is asked again until it
    // has ended.
    while (m_extraction.isRunning()) {
        m_file->AbortRead();
        QThread::yieldCurrentThread();
    }
    // Forgets the ended extraction, whose values no longer fit what the view asked for.
    m_extraction.setFuture(QFuture<void>());
}

void PlayerWindow::OnExtractionFinished()
{
    m_waveform->UpdateAudioSampleBuffer(m_file->GetSamples());
    Q_EMIT PictureCompleted();
}

void PlayerWindow::OnPositionClicked(double seconds)
{
    if (m_hasSelection) {
        m_hasSelection = false;
        m_player.ClearSelection();
        ShowWhatCanBeExported();
        ShowSelection({0.0, 0.0});
    }
    m_player.setPosition(static_cast<qint64>(seconds * 1000.0));
    ShowPosition(seconds);
}

void PlayerWindow::OnSelectionChanged(std::pair<double, double> selection)
{
    ShowSelection(selection);
    m_hasSelection = selection.first < selection.second;
    ShowWhatCanBeExported();
    if (m_hasSelection) {
        m_player.SetSelection(selection.first, selection.second);
    }
}

void PlayerWindow::OnPlayerPositionChanged(qint64 milliseconds)
{
    const double seconds = static_cast<double>(milliseconds) / 1000.0;
    m_waveform->SetAudioPosition(seconds);
    ShowPosition(seconds);
    Q_EMIT PositionChanged(seconds);
}

void PlayerWindow::OnPlaybackStateChanged(QMediaPlayer::PlaybackState state)
{
    const bool playing = state == QMediaPlayer::PlayingState;
    m_playAction->setIcon(style()->standardIcon(playing ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    m_playAction->setText(playing ? tr("&Pause") : tr("&Play"));
}

void PlayerWindow::ShowPosition(double seconds)
{
    m_positionLabel->setText(
        tr("%1 of %2")
            .arg(BGFXWaveformWidget::FormatToTime(seconds), BGFXWaveformWidget::FormatToTime(Duration())));
}

void PlayerWindow::ShowSelection(std::pair<double, double> selection)
{
    const bool empty = !(selection.first < selection.second);
    m_selectionLabel->setText(empty ? QString()
                                    : tr("Selected: %1 to %2")
                                          .arg(BGFXWaveformWidget::FormatToTime(selection.first),
                                               BGFXWaveformWidget::FormatToTime(selection.second)));
}
