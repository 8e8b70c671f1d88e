/**
 * Runs one task of the library as a whole process, so that it can be timed against other programs.
 *
 *   vantoraudio-task idle                              starts and ends, for its own memory
 *   vantoraudio-task left IN OUT                       the left channel
 *   vantoraudio-task mix IN OUT SECONDS                both channels averaged, from the start
 *   vantoraudio-task decode IN OUT RATE                any audio to a WAV file of floats
 *   vantoraudio-task convert IN OUT RATE               a WAV file to mono floats
 */
#include <vantorAudioEngine/Decoder.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <cstdio>

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

bool Run(const QStringList& arguments)
{
    const QString task = arguments.value(1);
    const QString in = arguments.value(2);
    const QString out = arguments.value(3);
    const QString number = arguments.value(4);
    if (task == u"idle"_s) {
        return true;
    }
    QFile::remove(out);
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
    qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    const QCoreApplication application(argc, argv);
    const bool done = Run(QCoreApplication::arguments());
    if (!done) {
        std::fputs("vantoraudio-task: failed\n", stderr);
    }
    return done ? 0 : 1;
}
