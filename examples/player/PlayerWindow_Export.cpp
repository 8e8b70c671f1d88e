#include "ExportBar.h"
#include "PlayerWindow.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMenu>
#include <QtWidgets/QStatusBar>

#include <array>

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
    m_exportBar = new ExportBar(this);
    statusBar()->addPermanentWidget(m_exportBar);
    const auto quoted = [](const QString& path) { return QDir::toNativeSeparators(path); };
    connect(m_exportBar, &ExportBar::Saved, this, [this, quoted](const QString& path) {
        statusBar()->showMessage(tr("Saved “%1”.").arg(quoted(path)), 5000);
        ShowWhatCanBeExported();
        Q_EMIT ExportEnded();
    });
    connect(m_exportBar, &ExportBar::Failed, this, [this, quoted](const QString& path) {
        ShowFailure(tr("“%1” cannot be written: is there room, and may you write there?").arg(quoted(path)));
        ShowWhatCanBeExported();
        Q_EMIT ExportEnded();
    });
    connect(m_exportBar, &ExportBar::Cancelled, this, [this] {
        statusBar()->showMessage(tr("Cancelled."), 5000);
        ShowWhatCanBeExported();
        Q_EMIT ExportEnded();
    });

    m_exportMenu = fileMenu->addMenu(tr("&Export"));
    m_selectionAction = m_exportMenu->addAction(tr("&Selection…"), this, [this] {
        const auto [start, end] = m_waveform->GetSelectedSnippet();
        ExportSelection(AskForOutput(tr("selection")), start, end);
    });
    m_leftAction = m_exportMenu->addAction(
        tr("&Left channel…"), this, [this] { ExportChannel(AskForOutput(tr("left")), WavFile::ChannelLeft); });
    m_rightAction = m_exportMenu->addAction(
        tr("&Right channel…"), this, [this] { ExportChannel(AskForOutput(tr("right")), WavFile::ChannelRight); });
    QMenu* conversions = m_exportMenu->addMenu(tr("&Whole file as"));
    for (const Target& target : targets) {
        conversions->addAction(tr(target.name), this, [this, format = FormatOf(target)] {
            ConvertFile(AskForOutput(tr("converted")), format);
        });
    }
    ShowWhatCanBeExported();
}

void PlayerWindow::ExportSelection(const QString& outPath, double start, double end)
{
    StartExport(outPath, WavFile::ChannelLeftRight,
                [=](WavFile& source) { return source.CreateSnippet(outPath, start, end) == WavFile::Success; });
}

void PlayerWindow::ExportChannel(const QString& outPath, WavFile::ChannelFormat channel)
{
    StartExport(outPath, channel,
                [=](WavFile& source) { return source.FilterChannel(outPath) == WavFile::Success; });
}

void PlayerWindow::ConvertFile(const QString& outPath, const QAudioFormat& format)
{
    StartExport(outPath, WavFile::ChannelLeftRight,
                [=](WavFile& source) { return source.Convert(format, outPath); });
}

void PlayerWindow::CancelExport()
{
    m_exportBar->Cancel();
}

void PlayerWindow::StartExport(const QString& outPath, WavFile::ChannelFormat channel,
                               std::function<bool(WavFile&)> task)
{
    if (outPath.isEmpty() || !m_file || m_exportBar->IsRunning()) {
        return;
    }
    // The library leaves existing channel files alone and would call that a success.
    if (QFileInfo::exists(outPath)) {
        ShowFailure(
            tr("“%1” is there already: please choose another name.").arg(QDir::toNativeSeparators(outPath)));
        return;
    }
    HideFailure();
    m_exportBar->Start(m_file->fileName(), channel, outPath, std::move(task));
    ShowWhatCanBeExported();
}

QString PlayerWindow::AskForOutput(const QString& what)
{
    const QFileInfo shown(m_shownPath);
    const QString proposal = shown.path() + u'/' + shown.completeBaseName() + u' ' + what + QStringLiteral(".wav");
    return QFileDialog::getSaveFileName(this, tr("Export"), proposal, tr("WAV files (*.wav)"), nullptr,
                                        QFileDialog::DontConfirmOverwrite);
}

void PlayerWindow::ShowWhatCanBeExported()
{
    const bool isStereo = m_file && m_file->GetFileFormat().channelCount() == 2;
    m_exportMenu->setEnabled(m_file && !m_exportBar->IsRunning());
    m_selectionAction->setEnabled(m_hasSelection);
    m_leftAction->setEnabled(isStereo);
    m_rightAction->setEnabled(isStereo);
}
