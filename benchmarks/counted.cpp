/**
 * Does one piece of work inside the function CountedWork(), whose instructions benchmarks/check-counts.sh counts.
 *
 *   vantoraudio-counted NAME     one of those that a call without a name prints
 */
#include "render/bgfx/DrawingDevice.h"
#include "tests/support/WavBytes.h"
#include "tests/support/WavFileTestAccess.h"
#include "ui/waveform/BGFXWaveformDiagramWidget.h"

#include <QtCore/QTemporaryDir>
#include <QtCore/QTemporaryFile>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <vector>

using namespace Qt::Literals::StringLiterals;
using Diagram = vantoraudio::vantorAudioEngine::UI::BGFXWaveformDiagramWidget;

namespace {

using Work = std::function<void()>;

constexpr int Blocks = 500;
constexpr int FramesPerBlock = 200;

QAudioFormat Stereo(QAudioFormat::SampleFormat sampleFormat)
{
    QAudioFormat format;
    format.setSampleFormat(sampleFormat);
    format.setSampleRate(48000);
    format.setChannelCount(2);
    return format;
}

QByteArray Noise(qsizetype size)
{
    std::minstd_rand random;
    QByteArray bytes(size, '\0');
    std::ranges::generate(bytes, [&] { return static_cast<char>(random()); });
    return bytes;
}

/** Stays until the end of the program, as the work refers to it. */
struct Output
{
    QTemporaryDir folder;
    WavFile file;
    WavFile source;

    Output()
    {
        file.setFileName(folder.filePath(u"out.wav"_s));
        if (!file.open(QIODevice::WriteOnly)) {
            std::exit(2);
        }
    }
};

/** The same for what is read from a file. */
struct Input
{
    QTemporaryFile file;
    WavFile wav;

    Input()
    {
        if (!file.open()) {
            std::exit(2);
        }
    }
};

Work Reading(WavFileTestAccess::Reader reader, QAudioFormat::SampleFormat sampleFormat, int sampleSize)
{
    const QByteArray block = Noise(FramesPerBlock * 2 * sampleSize);
    return [=] {
        WavFile file;
        for (int i = 0; i < Blocks; ++i) {
            (file.*reader)(block, 1, Stereo(sampleFormat), WavFile::ChannelLeftRight);
        }
    };
}

Work Writing(WavFileTestAccess::Writer writer, QAudioFormat::SampleFormat sampleFormat, int sampleSize)
{
    const QByteArray block = Noise(FramesPerBlock * 2 * sampleSize);
    return [=, output = std::make_shared<Output>()] {
        for (int i = 0; i < Blocks; ++i) {
            (output->source.*writer)(block, output->file, Stereo(sampleFormat), WavFile::ChannelLeft);
        }
        output->file.close();
    };
}

/** As for the view of an hour; the blocks come from a file. */
Work ReadingPeaks()
{
    auto input = std::make_shared<Input>();
    const QByteArray bytes = WavTest::WavBytes{.channels = 2,
                                               .sampleRate = 48000,
                                               .data = Noise(qsizetype(Blocks) * FramesPerBlock * 4)}
                                 .Build();
    if (input->file.write(bytes) != bytes.size() || !input->file.flush() ||
        input->wav.Open(input->file.fileName()) != WavFile::Success) {
        std::exit(2);
    }
    input->wav.SetKeepPeaks(true);
    return [input] { input->wav.ReadData(0.0, input->wav.GetDuration(), 100); };
}

/** Panning through an hour, on the software device. */
Work Frames()
{
    auto diagram = std::make_shared<Diagram>();
    diagram->resize(1600, 300);
    diagram->show();
    QApplication::processEvents();
    diagram->SetAudioFormat(Stereo(QAudioFormat::Int16));
    int stepSize = 1;
    QObject::connect(diagram.get(), &Diagram::GetSamples, [&](double, double, int step) { stepSize = step; });
    diagram->SetDuration(3600.0);
    std::minstd_rand random;
    std::uniform_real_distribution<float> level(-0.9F, 0.9F);
    QList<float> samples(qsizetype(3600) * 48000 / stepSize);
    std::ranges::generate(samples, [&] { return level(random); });
    diagram->UpdateAudioSampleBuffer(samples);
    diagram->SetSceneRange(600.0, 3000.0);
    QApplication::processEvents();
    diagram->repaint();
    return [diagram] {
        for (int i = 1; i <= 10; ++i) {
            diagram->ScrollTo(600.0 + 3.3 * i);
            diagram->repaint();
        }
    };
}

struct Counted
{
    const char* name;
    std::function<Work()> prepare;
};

const std::vector<Counted>& All()
{
    using Access = WavFileTestAccess;
    static const std::vector<Counted> all{
        {"read-16-bit", [] { return Reading(Access::readS16Block, QAudioFormat::Int16, 2); }},
        {"read-24-bit", [] { return Reading(Access::readS24Block, QAudioFormat::Int32, 3); }},
        {"read-32-bit", [] { return Reading(Access::readS32Block, QAudioFormat::Int32, 4); }},
        {"read-float", [] { return Reading(Access::readF32Block, QAudioFormat::Float, 4); }},
        {"read-peaks", [] { return ReadingPeaks(); }},
        {"write-16-bit", [] { return Writing(Access::writeS16Block, QAudioFormat::Int16, 2); }},
        {"write-24-bit", [] { return Writing(Access::convertS24BlockToF32Block, QAudioFormat::Int32, 3); }},
        {"write-32-bit", [] { return Writing(Access::writeS32Block, QAudioFormat::Int32, 4); }},
        {"write-float", [] { return Writing(Access::writeF32Block, QAudioFormat::Float, 4); }},
        {"frame", [] { return Frames(); }},
    };
    return all;
}

} // namespace

/** Found by its name, so it must be neither inlined nor hidden. */
extern "C" [[gnu::noinline, gnu::visibility("default")]] void CountedWork(const Work& work)
{
    work();
}

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const QString name = QApplication::arguments().value(1);
    for (const Counted& counted : All()) {
        if (name.isEmpty()) {
            std::puts(counted.name);
        } else if (name == QLatin1StringView(counted.name)) {
            CountedWork(counted.prepare());
            return 0;
        }
    }
    return name.isEmpty() ? 0 : 1;
}
