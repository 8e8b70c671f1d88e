#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

/** What a tone file holds: a sine in each channel, 16-bit stereo at 44100 Hz. */
struct Tone
{
    int leftFrequency = 440;
    int rightFrequency = 880;
    double seconds = 1.0;
    double amplitude = 0.4;
};

/** The bytes of a WAV file: a plain 44-byte header and the samples. */
QByteArray ToneFileBytes(const Tone& tone);

/** True when the file was written whole. */
bool WriteToneFile(const QString& path, const Tone& tone);
