#include "DragHandle.h"
#include "Failures.h"
#include "HostPlayer.h"
#include "PlayerWindow.h"
#include "Remembered.h"
#include "TaskProgress.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStatusBar>

#include <array>
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

} // namespace

void PlayerWindow::BuildExport(QMenu* fileMenu)
{
    connect(&m_export, &FileExport::Progressed, m_progress, &TaskProgress::ShowProgress);
    connect(&m_export, &FileExport::Saved, this, &PlayerWindow::OnSaved);
    connect(&m_export, &FileExport::Failed, this, &PlayerWindow::OnExportFailed);
    connect(&m_export, &FileExport::Cancelled, this, [this] { EndExport(tr("Cancelled.")); });
    connect(m_progress, &TaskProgress::CancelRequested, this, &PlayerWindow::CancelTask);

    m_exportMenu = fileMenu->addMenu(tr("&Export"));
    m_exportMenu->setObjectName("export"_L1);
    m_selectionAction = m_exportMenu->addAction(tr("&Selection…"), QKeySequence::Save, this, [this] {
        const auto [path, existing] = AskForOutput(tr("selection"));
        ExportSelection(path, existing);
    });
    m_leftAction = m_exportMenu->addAction(tr("&Left channel…"), this, [this] {
        const auto [path, existing] = AskForOutput(tr("left"));
        ExportChannel(path, WavFile::ChannelLeft, existing);
    });
    m_rightAction = m_exportMenu->addAction(tr("&Right channel…"), this, [this] {
        const auto [path, existing] = AskForOutput(tr("right"));
        ExportChannel(path, WavFile::ChannelRight, existing);
    });
    QMenu* conversions = m_exportMenu->addMenu(tr("&Whole file as"));
    for (const Target& target : targets) {
        conversions->addAction(tr(target.name), this, [this, format = FormatOf(target)] {
            const auto [path, existing] = AskForOutput(tr("converted"));
            ConvertFile(path, format, existing);
        });
    }
}

void PlayerWindow::ExportSelection(const QString& outPath, Existing existing)
{
    const auto range = m_player->GetSelectedSnippet();
    if (CanExportTo(outPath, existing) && range.first < range.second) {
        StartExport(outPath, m_player->GetSelectedChannel(), FileExport::WriteRange(outPath, range));
    }
}

void PlayerWindow::ExportChannel(const QString& outPath, WavFile::ChannelFormat channel, Existing existing)
{
    if (CanExportTo(outPath, existing) && m_player->GetAudioFileFormat().channelCount() == 2) {
        StartExport(outPath, channel,
                    [=](WavFile& source) { return source.FilterChannel(outPath) == WavFile::Success; });
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
}

bool PlayerWindow::CanExportTo(const QString& outPath, Existing existing)
{
    if (outPath.isEmpty() || m_player->GetAudioFileName().isEmpty() || m_export.IsRunning()) {
        return false;
    }
    if (existing == Existing::Keep && QFileInfo::exists(outPath)) {
        ShowFailure(DescribeExistingFile(outPath));
        return false;
    }
    m_existing = existing;
    return true;
}

void PlayerWindow::StartExport(const QString& outPath, WavFile::ChannelFormat channel, FileExport::Task task)
{
    HideFailure();
    const auto existing =
        m_existing == Existing::Keep ? WavFile::ExistingFile::Refuse : WavFile::ExistingFile::Replace;
    m_export.Start(m_player->GetAudioFileName(), channel, outPath, existing, std::move(task));
    ShowWhatCanBeCancelled();
    ShowWhatCanBeExported();
}

void PlayerWindow::OnSaved(const QString& path)
{
    EndExport(tr("Saved “%1”.").arg(QDir::toNativeSeparators(path)));
}

void PlayerWindow::OnExportFailed(const QString& path)
{
    // The name was free when the user chose it.
    const bool isTaken = m_existing == Existing::Keep && QFileInfo::exists(path);
    ShowFailure(isTaken ? DescribeExistingFile(path) : DescribeExportFailure(path));
    EndExport(QString());
}

void PlayerWindow::EndExport(const QString& message)
{
    ShowWhatCanBeCancelled();
    statusBar()->showMessage(message, 5000);
    ShowWhatCanBeExported();
    Q_EMIT ExportEnded();
}

/** An empty path when the user gives up, or when another file was loaded while the dialogs asked about this one.
 */
PlayerWindow::Output PlayerWindow::AskForOutput(const QString& what)
{
    bool isStillLoaded = true;
    const auto watch = connect(m_player, &HostPlayer::AudioFileChanged, this, [&] { isStillLoaded = false; });
    Output output = ChooseOutput(what);
    disconnect(watch);
    if (!isStillLoaded && !output.path.isEmpty()) {
        ShowFailure(tr("Nothing was exported: another file was loaded meanwhile."));
        return {};
    }
    return output;
}

/** An empty path when the user gives up. A file that is there may be replaced: the user has been asked. One that
 *  comes later may not. */
PlayerWindow::Output PlayerWindow::ChooseOutput(const QString& what)
{
    const QFileInfo shown(m_player->GetOriginalAudioFilePath());
    QFileDialog dialog(this, tr("Export"), Remembered::GetFolder(Remembered::Folder::Export, shown.path()),
                       tr("WAV files (*.wav)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.selectFile(shown.completeBaseName() + u' ' + what + u".wav"_s);
    while (dialog.exec() == QDialog::Accepted) {
        const QString chosen = dialog.selectedFiles().constFirst();
        Remembered::KeepFolderOf(Remembered::Folder::Export, chosen);
        const bool isNamed = chosen.endsWith(u".wav"_s, Qt::CaseInsensitive);
        const QString path = isNamed ? chosen : chosen + u".wav"_s;
        if (!QFileInfo::exists(path)) {
            return {path, Existing::Keep};
        }
        const bool isOpenFile = QFileInfo(path).canonicalFilePath() == shown.canonicalFilePath();
        // The suffix is not added by the dialog: some do not ask about the name that they make.
        if (isOpenFile ? IsAgreed(DescribeLossOfTheOpenFile(path))
                       : isNamed || IsAgreed(DescribeReplacement(path))) {
            return {path, Existing::Replace};
        }
        dialog.selectFile(chosen);
    }
    return {};
}

bool PlayerWindow::IsAgreed(const QString& question)
{
    // One key press too many must not cost a file.
    return QMessageBox::question(this, tr("Export"), question, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

void PlayerWindow::ShowWhatCanBeExported()
{
    const bool isLoaded = !m_player->GetAudioFileName().isEmpty();
    const bool isStereo = isLoaded && m_player->GetAudioFileFormat().channelCount() == 2;
    const auto [start, end] = m_player->GetSelectedSnippet();
    const bool hasSelection = isLoaded && start < end;
    m_exportMenu->setEnabled(isLoaded && !m_export.IsRunning());
    m_informationAction->setEnabled(isLoaded);
    m_goToAction->setEnabled(isLoaded);
    m_selectAllAction->setEnabled(isLoaded);
    m_selectionAction->setEnabled(hasSelection);
    m_leftAction->setEnabled(isStereo);
    m_rightAction->setEnabled(isStereo);
    m_dragHandle->setEnabled(hasSelection);
    const QString length = locale().toString(end - start, 'f', 3);
    m_selectionLabel->setText(hasSelection ? tr("Selected: %1 s").arg(length) : QString());
}
