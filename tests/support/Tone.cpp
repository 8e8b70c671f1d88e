#include "tests/support/Tone.h"

#include <QtCore/QFile>
#include <QtCore/QtEndian>

#include <cmath>
#include <numbers>

namespace {

constexpr int rate = 44100;

template<typename Integer>
void Append(QByteArray& bytes, Integer value)
{
    const Integer little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
}

qint16 Sine(int frequency, int frame, double amplitude)
{
    const double phase = 2.0 * std::numbers::pi * frequency * frame / rate;
    return static_cast<qint16>(std::lround(std::sin(phase) * amplitude * 32767.0));
}

} // namespace

QByteArray ToneFileBytes(const Tone& tone)
{
    const int frames = static_cast<int>(std::lround(tone.seconds * rate));
    const auto dataSize = static_cast<quint32>(frames) * 4;
    QByteArray bytes("RIFF");
    Append(bytes, dataSize + 36);
    bytes.append("WAVEfmt ");
    Append(bytes, quint32(16));
    Append(bytes, quint16(1));
    Append(bytes, quint16(2));
    Append(bytes, quint32(rate));
    Append(bytes, quint32(rate * 4));
    Append(bytes, quint16(4));
    Append(bytes, quint16(16));
    bytes.append("data");
    Append(bytes, dataSize);
    for (int frame = 0; frame < frames; ++frame) {
        Append(bytes, Sine(tone.leftFrequency, frame, tone.amplitude));
        Append(bytes, Sine(tone.rightFrequency, frame, tone.amplitude));
    }
    return bytes;
}

bool WriteToneFile(const QString& path, const Tone& tone)
{
    const QByteArray bytes = ToneFileBytes(tone);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
