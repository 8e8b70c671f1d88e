/**
 * Runs one task of the library as a whole process, so that it can be timed against other programs.
 *
 *   vantoraudio-task idle                              starts and ends, for its own memory
 *   vantoraudio-task left IN OUT                       the left channel
 *   vantoraudio-task mix IN OUT SECONDS                both channels averaged, from the start
 *   vantoraudio-task decode IN OUT RATE                any audio to a WAV file of floats
 *   vantoraudio-task import IN OUT RATE                the same with AudioImporter; 0 is the file's own rate
 *   vantoraudio-task convert IN OUT RATE               a WAV file to mono floats
 *   vantoraudio-task read IN FROM TO STEP              samples for a view, with nobody listening
 *   vantoraudio-task listen IN FROM TO STEP            the same with a receiver on another thread
 *   vantoraudio-task report COUNT                      so many reports to such a receiver, and nothing else
 *
 * The last three and import print milliseconds.
 */
#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/Decoder.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QLibraryInfo>
#include <QtCore/QStringList>
#include <QtCore/QThread>
#include <QtCore/QVersionNumber>

#include <cstdio>
#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace {

bool CopyLeft(WavFile& file, const QString& out)
{
    file.SetSelectedChannel(WavFile::ChannelLeft);
    return file.FilterChannel(out) == WavFile::Success;
}

bool ConvertToMono(WavFile& file, const QString& out, int rate)
{
    QAudioFormat format;
    format.setSampleFormat(QAudioFormat::Float);
    format.setChannelCount(1);
    format.setSampleRate(rate);
    return file.Convert(format, out);
}

void PrintTime(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    std::printf("%.2f\n", static_cast<double>(timer.nsecsElapsed()) / 1e6);
}

/** Tells what came of it on standard error. */
bool Import(const QString& in, const QString& out, int rate)
{
    using namespace vantoraudio::AudioEngine;
    ImportResult result;
    PrintTime([&] { result = AudioImporter::ImportNow(in, out, {.sampleRate = rate}); });
    std::fprintf(stderr, "%lld frames, %d Hz, %d channels, %lld damaged packets. %s\n", result.frameCount,
                 result.sampleRate, result.channelCount, result.damagedPackets,
                 qPrintable(AudioFileInfo::TextOf(result.problem, in)));
    return result.IsSuccess();
}

bool Read(WavFile& file, const QStringList& range)
{
    file.SetSelectedChannel(WavFile::ChannelLeftRight);
    PrintTime(
        [&] { file.ReadData(range.value(0).toDouble(), range.value(1).toDouble(), range.value(2).toInt()); });
    return !file.GetSamples().isEmpty();
}

/** Does the work while a receiver on another thread counts its reports. */
template<typename Work>
bool IsHeard(WavFile& file, Work work)
{
    QThread thread;
    QObject listener;
    qint64 reports = 0;
    listener.moveToThread(&thread);
    QObject::connect(&file, &WavFile::ProgressChanged, &listener, [&] { ++reports; });
    thread.start();
    const bool isDone = work();
    // The thread ends after the reports that came before this.
    QMetaObject::invokeMethod(&listener, [&] { thread.quit(); });
    thread.wait();
    return isDone && reports > 0;
}

bool ReadWithListener(WavFile& file, const QStringList& range)
{
    return IsHeard(file, [&] { return Read(file, range); });
}

bool ReportOnly(int count)
{
    WavFile file;
    const auto report = [&, text = u"Updating..."_s] {
        for (int i = 0; i < count; ++i) {
            Q_EMIT file.ProgressChanged(i % 100, 0, 100, text);
        }
    };
    return IsHeard(file, [&] {
        PrintTime(report);
        return true;
    });
}

bool Run(const QStringList& arguments)
{
    const QString task = arguments.value(1);
    const QString in = arguments.value(2);
    const QString out = arguments.value(3);
    const QString number = arguments.value(4);
    if (task == u"idle"_s) {
        return true;
    }
    if (task == u"report"_s) {
        return ReportOnly(in.toInt());
    }
    const QStringList range = arguments.mid(3);
    if (task == u"read"_s || task == u"listen"_s) {
        WavFile file;
        return file.Open(in) == WavFile::Success &&
               (task == u"read"_s ? Read(file, range) : ReadWithListener(file, range));
    }
    QFile::remove(out);
    if (task == u"import"_s) {
        return Import(in, out, number.toInt());
    }
    if (task == u"decode"_s) {
        return Decoder::Convert(in, out, number.toInt()) == WavFile::Success;
    }
    WavFile file;
    if (file.Open(in) != WavFile::Success) {
        return false;
    }
    if (task == u"left"_s) {
        return CopyLeft(file, out);
    }
    if (task == u"mix"_s) {
        return file.CreateSnippet(out, 0.0, number.toDouble()) == WavFile::Success;
    }
    return task == u"convert"_s && ConvertToMono(file, out, number.toInt());
}

} // namespace

int main(int argc, char* argv[])
{
    // Qt before 6.5 would choose a backend that needs further plug-ins.
    if (QLibraryInfo::version() < QVersionNumber(6, 5)) {
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    }
    const QCoreApplication application(argc, argv);
    const bool done = Run(QCoreApplication::arguments());
    if (!done) {
        std::fputs("vantoraudio-task: failed\n", stderr);
    }
    return done ? 0 : 1;
}
