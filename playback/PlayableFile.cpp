#include "playback/PlayableFile.h"

#include "engine/files/RegularFile.h"

#include <vantorAudioEngine/AudioFileInfo.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QtEndian>

#include <optional>

namespace vantoraudio::AudioEngine {

namespace {

constexpr qint64 mostChannels = 64;
/** With more of them ahead of its format, a WAV file is looked into like any other. */
constexpr int mostChunks = 1000;

bool FitsAnOutput(qint64 rate, qint64 channels)
{
    return rate <= highestPlayableRate && channels <= mostChannels;
}

/** Whether the eight bytes from the file's position on, of a format chunk, state what an output plays. */
bool IsFormatPlayable(QFile& file)
{
    const QByteArray format = file.read(8);
    return format.size() < 8 || FitsAnOutput(qFromLittleEndian<quint32>(format.constData() + 4),
                                             qFromLittleEndian<quint16>(format.constData() + 2));
}

/** The file stands behind the 12 bytes that begin every WAV file. Nothing where a header is too long for a look.
 */
std::optional<bool> IsWavPlayable(QFile& file)
{
    for (int i = 0; i < mostChunks; ++i) {
        const QByteArray head = file.read(8);
        if (head.size() < 8) {
            return true;
        }
        if (head.startsWith("fmt ")) {
            return IsFormatPlayable(file);
        }
        const auto size = qFromLittleEndian<quint32>(head.constData() + 4);
        if (!file.seek(file.pos() + size + size % 2)) {
            return true;
        }
    }
    return std::nullopt;
}

bool IsWav(const QByteArray& begin)
{
    return (begin.startsWith("RIFF") || begin.startsWith("RF64")) && begin.mid(8, 4) == "WAVE";
}

} // namespace

bool CanBePlayed(const QString& path)
{
    QFile file(path);
    if (!IsRegularFile(path) || IsEmptyFile(path) || !file.open(QIODevice::ReadOnly)) {
        return true;
    }
    if (IsWav(file.read(12))) {
        if (const std::optional<bool> isPlayable = IsWavPlayable(file)) {
            return *isPlayable;
        }
    }
    const AudioFileInfo info = AudioFileInfo::Probe(path);
    return FitsAnOutput(info.GetSampleRate(), info.GetChannelCount());
}

} // namespace vantoraudio::AudioEngine
