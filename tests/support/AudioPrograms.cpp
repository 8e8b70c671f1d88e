#include "tests/support/AudioPrograms.h"

#include <QtCore/QProcess>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace AudioPrograms {

namespace {

QList<float> MiddleHalf(const QList<float>& channel)
{
    return channel.mid(channel.size() / 4, channel.size() / 2);
}

} // namespace

QByteArray Output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    process.closeWriteChannel();
    const bool isDone =
        process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return isDone ? QByteArray("") + process.readAllStandardOutput() : QByteArray();
}

bool Succeeds(const QString& program, const QStringList& arguments)
{
    return !Output(program, arguments).isNull();
}

bool MakeTone(const QString& path, int rate, int channels, double seconds)
{
    QStringList arguments{u"-n"_s,
                          u"-R"_s,
                          u"-b"_s,
                          u"16"_s,
                          u"-r"_s,
                          QString::number(rate),
                          u"-c"_s,
                          QString::number(channels),
                          path,
                          u"synth"_s,
                          QString::number(seconds),
                          u"sine"_s,
                          u"440"_s};
    if (channels == 2) {
        arguments += {u"sine"_s, u"880"_s};
    }
    return Succeeds(u"sox"_s, arguments + QStringList{u"vol"_s, u"0.4"_s});
}

bool Encode(const QString& format, const QString& wavPath, const QString& path)
{
    if (format == u"mp3"_s) {
        return Succeeds(u"lame"_s, {u"--quiet"_s, wavPath, path});
    }
    if (format == u"m4a"_s) {
        return Succeeds(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, wavPath, u"-c:a"_s, u"aac"_s, path});
    }
    return Succeeds(u"sox"_s, {wavPath, u"-t"_s, format, path});
}

QByteArray DecodedByFFmpeg(const QString& path, const QString& kind, int rate)
{
    QStringList arguments{u"-v"_s, u"error"_s, u"-i"_s, path, u"-f"_s, kind};
    if (rate != 0) {
        arguments += {u"-ar"_s, QString::number(rate)};
    }
    return Output(u"ffmpeg"_s, arguments + QStringList{u"-"_s});
}

double ProbedSeconds(const QString& path)
{
    return Output(u"ffprobe"_s,
                  {u"-v"_s, u"error"_s, u"-show_entries"_s, u"format=duration"_s, u"-of"_s, u"csv=p=0"_s, path})
        .trimmed()
        .toDouble();
}

QList<float> Floats(const QByteArray& bytes)
{
    QList<float> floats(bytes.size() / 4);
    std::copy_n(bytes.begin(), floats.size() * 4, reinterpret_cast<char*>(floats.data()));
    return floats;
}

QList<float> Channel(const QList<float>& samples, int first, int step)
{
    QList<float> channel;
    for (qsizetype i = first; i < samples.size(); i += step) {
        channel.append(samples[i]);
    }
    return channel;
}

double MiddleRms(const QList<float>& channel)
{
    double sum = 0.0;
    const QList<float> middle = MiddleHalf(channel);
    for (const float sample : middle) {
        sum += static_cast<double>(sample) * sample;
    }
    return std::sqrt(sum / static_cast<double>(middle.size()));
}

double MiddleFrequency(const QList<float>& channel, int rate)
{
    int rises = 0;
    const QList<float> middle = MiddleHalf(channel);
    for (qsizetype i = 1; i < middle.size(); ++i) {
        rises += middle[i - 1] < 0.0F && middle[i] >= 0.0F ? 1 : 0;
    }
    return static_cast<double>(rises) * rate / static_cast<double>(middle.size());
}

} // namespace AudioPrograms
