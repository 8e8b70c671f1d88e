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

/** The file stands behind the 12 bytes that begin every WAV file. Nothing where no format is found. */
std::optional<bool> IsWavPlayable(QFile& file)
{
    for (int i = 0; i < mostChunks; ++i) {
        const QByteArray head = file.read(8);
        if (head.size() < 8) {
            break;
        }
        if (head.startsWith("fmt ")) {
            return IsFormatPlayable(file);
        }
        const auto size = qFromLittleEndian<quint32>(head.constData() + 4);
        if (!file.seek(file.pos() + size + size % 2)) {
            break;
        }
    }
    return std::nullopt;
}

bool IsWav(const QByteArray& begin)
{
    return (begin.startsWith("RIFF") || begin.startsWith("RF64")) && begin.mid(8, 4) == "WAVE";
}

/** Goes behind the tags that MP3 files begin with, and others now and then. */
void SkipTags(QFile& file)
{
    constexpr int mostTags = 16;
    constexpr qint64 headSize = 10;
    for (int i = 0; i < mostTags; ++i) {
        const QByteArray head = file.peek(headSize);
        if (head.size() < headSize || !head.startsWith("ID3")) {
            return;
        }
        qint64 size = 0;
        for (const char sevenBits : head.last(4)) {
            size = size << 7 | (sevenBits & 0x7F);
        }
        constexpr char hasFooter = 0x10;
        file.seek(file.pos() + headSize + size + (head[5] & hasFooter ? headSize : 0));
    }
}

/** What the first bytes of a FLAC or MP3 file tell; nothing about others. A look into these might take seconds, as
 * pictures in them are decoded for it. */
std::optional<bool> IsCompressedPlayable(const QByteArray& begin)
{
    constexpr qsizetype description = 21;
    if (begin.startsWith("fLaC")) {
        // Bytes 18 to 20 hold the rate in 20 bits.
        return begin.size() < description ||
               FitsAnOutput(qFromBigEndian<quint32>(begin.constData() + 17) >> 4 & 0xFFFFF, 1);
    }
    // MP3 knows no rate that is too high.
    const bool isMp3 = begin.size() > 1 && quint8(begin[0]) == 0xFF && quint8(begin[1]) >= 0xE0;
    return isMp3 ? std::optional(true) : std::nullopt;
}

} // namespace

bool CanBePlayed(const QString& path)
{
    QFile file(path);
    if (!IsRegularFile(path) || IsEmptyFile(path) || !file.open(QIODevice::ReadOnly)) {
        return true;
    }
    std::optional<bool> isPlayable;
    if (IsWav(file.peek(12))) {
        file.seek(12);
        isPlayable = IsWavPlayable(file);
    } else {
        SkipTags(file);
        isPlayable = IsCompressedPlayable(file.peek(21));
    }
    if (isPlayable) {
        return *isPlayable;
    }
    const AudioFileInfo info = AudioFileInfo::Probe(path);
    return FitsAnOutput(info.GetSampleRate(), info.GetChannelCount());
}

} // namespace vantoraudio::AudioEngine
