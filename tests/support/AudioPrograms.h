#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/** Audio files of all kinds, made and read by other programs: lame, sox, ffmpeg and ffprobe. */
namespace AudioPrograms {

/** What the program writes to its standard output; null when it fails. */
QByteArray Output(const QString& program, const QStringList& arguments);

bool Succeeds(const QString& program, const QStringList& arguments);

/** A 16-bit tone of 440 Hz, and of 880 Hz in the right channel, as the WAV file `path`. */
bool MakeTone(const QString& path, int rate, int channels, double seconds = 2.0);

/** Encodes a WAV file; the format is mp3, flac, ogg or m4a. */
bool Encode(const QString& format, const QString& wavPath, const QString& path);

/** The file as ffmpeg decodes it: raw samples of the given kind ("f32le", "s16le"), at `rate` unless that is 0. */
QByteArray DecodedByFFmpeg(const QString& path, const QString& kind, int rate = 0);

/** The duration that ffprobe tells, in seconds. */
double ProbedSeconds(const QString& path);

QList<float> Floats(const QByteArray& bytes);
/** Every `step`-th sample from `first` on: one channel of interleaved samples. */
QList<float> Channel(const QList<float>& samples, int first, int step);
/** Level and frequency of the middle half, so that a codec's start and end do not matter. */
double MiddleRms(const QList<float>& channel);
double MiddleFrequency(const QList<float>& channel, int rate);

} // namespace AudioPrograms
