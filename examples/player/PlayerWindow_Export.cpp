#include "Failures.h"
#include "HostPlayer.h"
#include "PlayerWindow.h"
#include "Remembered.h"
#include "TaskProgress.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStatusBar>

#include <array>
#include <cstdio>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Target
{
    const char* name;
    QAudioFormat::SampleFormat sampleFormat;
    int sampleRate;
    int channelCount;
};

constexpr std::array targets{
    Target{QT_TRANSLATE_NOOP("PlayerWindow", "44.1 kHz, stereo, 16 bit"), QAudioFormat::Int16, 44100, 2},
    Target{QT_TRANSLATE_NOOP("PlayerWindow", "48 kHz, stereo, 16 bit"), QAudioFormat::Int16, 48000, 2},
    Target{QT_TRANSLATE_NOOP("PlayerWindow", "48 kHz, stereo, 32 bit"), QAudioFormat::Int32, 48000, 2},
    Target{QT_TRANSLATE_NOOP("PlayerWindow", "96 kHz, stereo, float"), QAudioFormat::Float, 96000, 2},
    Target{QT_TRANSLATE_NOOP("PlayerWindow", "16 kHz, mono, 16 bit"), QAudioFormat::Int16, 16000, 1}};

QAudioFormat FormatOf(const Target& target)
{
    QAudioFormat format;
    format.setSampleFormat(target.sampleFormat);
    format.setSampleRate(target.sampleRate);
    format.setChannelCount(target.channelCount);
    return format;
}

bool MoveOver(const QString& from, const QString& to)
{
    // QFile's own function never replaces a file.
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

/** FilterChannel() leaves an existing file alone, so the channel takes its place from beside it. */
bool WriteChannel(WavFile& source, const QString& outPath)
{
    const QFileInfo former(outPath);
    if (!former.exists()) {
        return source.FilterChannel(outPath) == WavFile::Success;
    }
    if (!former.isWritable()) {
        return false;
    }
    const QTemporaryDir beside(former.canonicalPath() + u"/.export-XXXXXX"_s);
    const QString written = beside.filePath(u"channel.wav"_s);
    return beside.isValid() && source.FilterChannel(written) == WavFile::Success &&
           QFile::setPermissions(written, former.permissions()) && MoveOver(written, former.canonicalFilePath());
}

} // namespace

void PlayerWindow::BuildExport(QMenu* fileMenu)
{
    connect(&m_export, &FileExport::Progressed, m_progress, &TaskProgress::ShowProgress);
    connect(&m_export, &FileExport::Saved, this,
            [this](const QString& path) { EndExport(tr("Saved “%1”.").arg(QDir::toNativeSeparators(path))); });
    connect(&m_export, &FileExport::Failed, this, [this](const QString& path) {
        ShowFailure(DescribeExportFailure(path));
        EndExport(QString());
    });
    connect(&m_export, &FileExport::Cancelled, this, [this] { EndExport(tr("Cancelled.")); });
    connect(m_progress, &TaskProgress::CancelRequested, this, &PlayerWindow::CancelTask);

    m_exportMenu = fileMenu->addMenu(tr("&Export"));
    m_exportMenu->setObjectName("export"_L1);
    m_selectionAction = m_exportMenu->addAction(tr("&Selection…"), QKeySequence::Save, this, [this] {
        ExportSelection(AskForOutput(tr("selection")), Existing::Replace);
    });
    m_leftAction = m_exportMenu->addAction(tr("&Left channel…"), this, [this] {
        ExportChannel(AskForOutput(tr("left")), WavFile::ChannelLeft, Existing::Replace);
    });
    m_rightAction = m_exportMenu->addAction(tr("&Right channel…"), this, [this] {
        ExportChannel(AskForOutput(tr("right")), WavFile::ChannelRight, Existing::Replace);
    });
    QMenu* conversions = m_exportMenu->addMenu(tr("&Whole file as"));
    for (const Target& target : targets) {
        conversions->addAction(tr(target.name), this, [this, format = FormatOf(target)] {
            ConvertFile(AskForOutput(tr("converted")), format, Existing::Replace);
        });
    }
}

void PlayerWindow::ExportSelection(const QString& outPath, Existing existing)
{
    if (!CanExportTo(outPath, existing)) {
        return;
    }
    HideFailure();
    m_snippetPath = outPath;
    // The player drops a request that comes while it reads the waveform.
    m_isSnippetWaiting = m_player->IsReadingSamples();
    if (!m_isSnippetWaiting) {
        m_player->CreateSnippet(outPath);
    }
    ShowWhatCanBeExported();
}

void PlayerWindow::ExportChannel(const QString& outPath, WavFile::ChannelFormat channel, Existing existing)
{
    if (CanExportTo(outPath, existing)) {
        StartExport(outPath, channel, [=](WavFile& source) { return WriteChannel(source, outPath); });
    }
}

void PlayerWindow::ConvertFile(const QString& outPath, const QAudioFormat& format, Existing existing)
{
    if (CanExportTo(outPath, existing)) {
        StartExport(outPath, WavFile::ChannelLeftRight,
                    [=](WavFile& source) { return source.Convert(format, outPath); });
    }
}

void PlayerWindow::CancelExport()
{
    m_export.Cancel();
    if (m_snippetPath.isEmpty()) {
        return;
    }
    m_isSnippetWaiting = false;
    m_player->CancelSnippet();
    // One that is complete already is still announced.
    if (!m_player->IsBusy()) {
        EndExport(tr("Cancelled."));
    }
}

bool PlayerWindow::CanExportTo(const QString& outPath, Existing existing)
{
    if (outPath.isEmpty() || m_player->GetAudioFileName().isEmpty() || m_export.IsRunning() ||
        !m_snippetPath.isEmpty()) {
        return false;
    }
    if (existing == Existing::Keep && QFileInfo::exists(outPath)) {
        ShowFailure(DescribeExistingFile(outPath));
        return false;
    }
    return true;
}

void PlayerWindow::StartExport(const QString& outPath, WavFile::ChannelFormat channel, FileExport::Task task)
{
    HideFailure();
    m_export.Start(m_player->GetAudioFileName(), channel, outPath, std::move(task));
    ShowWhatCanBeCancelled();
    ShowWhatCanBeExported();
}

void PlayerWindow::EndExport(const QString& message)
{
    m_snippetPath.clear();
    m_isSnippetWaiting = false;
    ShowWhatCanBeCancelled();
    statusBar()->showMessage(message, 5000);
    ShowWhatCanBeExported();
    Q_EMIT ExportEnded();
}

/** Empty when the user gives up. An existing file may be replaced: the user has been asked. */
QString PlayerWindow::AskForOutput(const QString& what)
{
    const QFileInfo shown(m_player->GetOriginalAudioFilePath());
    QFileDialog dialog(this, tr("Export"), Remembered::GetFolder(Remembered::Folder::Export, shown.path()),
                       tr("WAV files (*.wav)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.selectFile(shown.completeBaseName() + u' ' + what + u".wav"_s);
    if (dialog.exec() != QDialog::Accepted) {
        return {};
    }
    QString chosen = dialog.selectedFiles().constFirst();
    Remembered::KeepFolderOf(Remembered::Folder::Export, chosen);
    if (chosen.endsWith(u".wav"_s, Qt::CaseInsensitive)) {
        return chosen;
    }
    // Not by the dialog: some do not ask about the name that they make.
    const QString named = chosen + u".wav"_s;
    return !QFileInfo::exists(named) || MayReplace(named) ? named : QString();
}

bool PlayerWindow::MayReplace(const QString& path)
{
    return QMessageBox::question(this, tr("Export"), DescribeReplacement(path)) == QMessageBox::Yes;
}

void PlayerWindow::ShowWhatCanBeExported()
{
    const bool isLoaded = !m_player->GetAudioFileName().isEmpty();
    const bool isStereo = isLoaded && m_player->GetAudioFileFormat().channelCount() == 2;
    const auto [start, end] = m_player->GetSelectedSnippet();
    const bool hasSelection = isLoaded && start < end;
    m_exportMenu->setEnabled(isLoaded && !m_export.IsRunning() && m_snippetPath.isEmpty());
    m_informationAction->setEnabled(isLoaded);
    m_goToAction->setEnabled(isLoaded);
    m_selectionAction->setEnabled(hasSelection);
    m_leftAction->setEnabled(isStereo);
    m_rightAction->setEnabled(isStereo);
    m_selectionLabel->setText(hasSelection ? tr("Selected: %1 s").arg(end - start, 0, 'f', 3) : QString());
}
