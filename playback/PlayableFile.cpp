#include "playback/PlayableFile.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QtEndian>

namespace vantoraudio::AudioEngine {

namespace {

constexpr quint32 mostChannels = 64;
/** A header with more chunks ahead of its format is not looked through. */
constexpr int mostChunks = 1000;

bool FitsAnOutput(quint32 rate, quint32 channels)
{
    return rate <= quint32(highestPlayableRate) && channels <= mostChannels;
}

/** The file stands behind the 12 bytes that begin every WAV file. */
bool IsWavPlayable(QFile& file)
{
    for (int i = 0; i < mostChunks; ++i) {
        const QByteArray head = file.read(8);
        if (head.size() < 8) {
            break;
        }
        const auto size = qFromLittleEndian<quint32>(head.constData() + 4);
        if (head.startsWith("fmt ")) {
            const QByteArray format = file.read(8);
            return format.size() < 8 || FitsAnOutput(qFromLittleEndian<quint32>(format.constData() + 4),
                                                     qFromLittleEndian<quint16>(format.constData() + 2));
        }
        if (!file.seek(file.pos() + size + size % 2)) {
            break;
        }
    }
    return true;
}

/** Of the description at the beginning: bytes 18 to 20 hold the rate in 20 bits. */
bool IsFlacPlayable(const QByteArray& begin)
{
    const auto rate = qFromBigEndian<quint32>(begin.constData() + 17) >> 4 & 0xFFFFF;
    return FitsAnOutput(rate, 1);
}

} // namespace

bool CanBePlayed(const QString& path)
{
    QFile file(path);
    // A pipe would block for ever when it is opened.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return true;
    }
    const QByteArray begin = file.peek(21);
    if (begin.size() == 21 && begin.startsWith("fLaC")) {
        return IsFlacPlayable(begin);
    }
    const bool isWav = (begin.startsWith("RIFF") || begin.startsWith("RF64")) && begin.mid(8, 4) == "WAVE";
    return !isWav || !file.seek(12) || IsWavPlayable(file);
}

} // namespace vantoraudio::AudioEngine
