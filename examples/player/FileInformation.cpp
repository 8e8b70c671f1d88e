#include "FileInformation.h"

#include "HostPlayer.h"
#include "Times.h"

#include <vantorAudioEngine/AudioFileInfo.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>

using vantoraudio::AudioEngine::AudioFileInfo;

namespace {

/** Of the file itself, or of its working copy when it has gone since it was loaded. */
AudioFileInfo InformationOf(const HostPlayer& player)
{
    const AudioFileInfo original = AudioFileInfo::Probe(player.GetOriginalAudioFilePath());
    return original.CanBeLoaded() ? original : AudioFileInfo::Probe(player.GetAudioFileName());
}

} // namespace

FileInformation::FileInformation(const HostPlayer& player, QWidget* parent)
    : QDialog(parent), m_table(new QFormLayout(this))
{
    setWindowTitle(tr("Information"));
    const QFileInfo file(player.GetOriginalAudioFilePath());
    const AudioFileInfo info = InformationOf(player);
    const QLocale locale;
    Add(tr("Name"), file.fileName());
    Add(tr("Folder"), QDir::toNativeSeparators(file.absolutePath()));
    Add(tr("Title"), info.GetTitle());
    Add(tr("Artist"), info.GetArtist());
    Add(tr("Format"), info.GetContainer());
    Add(tr("Coding"), info.GetCodec());
    Add(tr("Sample rate"),
        info.GetSampleRate() > 0 ? tr("%1 Hz").arg(locale.toString(info.GetSampleRate())) : QString());
    Add(tr("Channels"), info.GetChannelCount() > 0 ? locale.toString(info.GetChannelCount()) : QString());
    Add(tr("Bits of a sample"),
        info.GetBitsPerSample() > 0 ? locale.toString(info.GetBitsPerSample()) : QString());
    // What the file itself says may be an estimate.
    Add(tr("Length"), TextOfTime(player.GetAudioDuration()));
    Add(tr("Size"), file.exists() ? locale.formattedDataSize(file.size()) : QString());

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_table->addRow(buttons);
}

/** Nothing for an empty value: the file does not say it. */
void FileInformation::Add(const QString& name, const QString& value)
{
    if (value.isEmpty()) {
        return;
    }
    auto* text = new QLabel(value, this);
    // A title may be anything.
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_table->addRow(tr("%1:").arg(name), text);
}
