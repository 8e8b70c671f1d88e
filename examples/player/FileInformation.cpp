#include "FileInformation.h"

#include "HostPlayer.h"
#include "Question.h"
#include "Times.h"

#include <vantorAudioEngine/AudioFileInfo.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>

#include <chrono>

using namespace std::chrono_literals;
using vantoraudio::AudioEngine::AudioFileInfo;

namespace {

struct Facts
{
    AudioFileInfo info;
    /** In bytes; -1 when there is no file. */
    qint64 size = -1;
};

Facts FactsOf(const QString& path)
{
    const QFileInfo file(path);
    return {AudioFileInfo::Probe(path), file.exists() ? file.size() : -1};
}

/** Of the file itself, or of its working copy when it has gone since it was loaded, or its disk does not answer.
 */
Facts FactsOf(const HostPlayer& player)
{
    Question<Facts> question([path = player.GetOriginalAudioFilePath()] { return FactsOf(path); });
    const auto original = question.AnswerUntil(std::chrono::steady_clock::now() + 1s);
    return original && original->info.CanBeLoaded() ? *original
                                                    : Facts{AudioFileInfo::Probe(player.GetAudioFileName())};
}

} // namespace

FileInformation::FileInformation(const HostPlayer& player, QWidget* parent)
    : QDialog(parent), m_table(new QFormLayout(this))
{
    setWindowTitle(tr("Information"));
    const QFileInfo file(player.GetOriginalAudioFilePath());
    const auto [info, size] = FactsOf(player);
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
    Add(tr("Size"), size < 0 ? QString() : locale.formattedDataSize(size));
    Add(tr("Note"), size < 0 ? tr("The file cannot be read now. This is what was loaded of it.") : QString());

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
