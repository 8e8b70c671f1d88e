/**
 * Measures the waveform view at 1600 x 300 device pixels and prints tables: what frames of all visible spans cost,
 * how long samples take to be supplied, and the memory that they need. Run it on a display of scale 1:
 *
 *   scripts/private-session.sh build/release/benchmarks/vantoraudio-frame
 */
#include "render/bgfx/DrawingDevice.h"
#include "ui/waveform/BGFXWaveformDiagramWidget.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <utility>
#include <vector>

using namespace vantoraudio;
using Diagram = vantorAudioEngine::UI::BGFXWaveformDiagramWidget;

namespace {

constexpr int Frames = 25;
/** Just below five minutes every sample is there. */
constexpr double LongestWithEverySample = 299.99;

struct Times
{
    double min = 0.0;
    double median = 0.0;
    double max = 0.0;
};

/** Milliseconds. */
Times Measure(int runs, const std::function<void(int)>& work)
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        work(run);
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::ranges::sort(times);
    return {.min = times.front(), .median = times[times.size() / 2], .max = times.back()};
}

QList<float> LoudNoise(qsizetype count)
{
    std::minstd_rand random;
    std::uniform_real_distribution<float> level(-0.9F, 0.9F);
    QList<float> samples(count);
    std::ranges::generate(samples, [&] { return level(random); });
    return samples;
}

/** A view of a whole file of loud noise, with the samples that it has asked for. */
class View
{
public:
    View(int sampleRate, double duration)
    {
        m_diagram.resize(1600, 300);
        m_diagram.show();
        QAudioFormat format;
        format.setSampleRate(sampleRate);
        m_diagram.SetAudioFormat(format);
        QObject::connect(&m_diagram, &Diagram::GetSamples, &m_diagram,
                         [this](double, double, int stepSize) { m_stepSize = stepSize; });
        m_diagram.SetDuration(duration);
        m_diagram.UpdateAudioSampleBuffer(LoudNoise(static_cast<qsizetype>(sampleRate * duration / m_stepSize)));
        QApplication::processEvents();
        m_diagram.repaint();
    }

    void Show(double left, double span) { m_diagram.SetSceneRange(left, left + span); }

    /** Each frame shows another range. */
    Times Pan()
    {
        const QRectF start = m_diagram.GetSceneRect();
        return Measure(Frames, [&](int frame) {
            m_diagram.ScrollTo(start.left() + start.width() * 0.00137 * (frame + 1));
            m_diagram.repaint();
        });
    }

    /** The same, but each frame is waited for, however long the device takes. */
    Times PanAndWait()
    {
        const QRectF start = m_diagram.GetSceneRect();
        QPixmap picture(m_diagram.size());
        return Measure(Frames, [&](int frame) {
            m_diagram.ScrollTo(start.left() + start.width() * 0.00137 * (frame + 1));
            m_diagram.render(&picture);
        });
    }

    Times MovePosition()
    {
        const QRectF range = m_diagram.GetSceneRect();
        return Measure(Frames, [&](int frame) {
            m_diagram.SetAudioPosition(range.left() + range.width() * frame / Frames, false);
            m_diagram.repaint();
        });
    }

private:
    Diagram m_diagram;
    int m_stepSize = 1;
};

double PlainFrame()
{
    // Two vertices to a pixel column.
    View view(1000, 3.2);
    return view.MovePosition().median;
}

struct Span
{
    const char* name;
    double seconds;
    double duration;
};

constexpr Span Spans[] = {
    {"0.1 s", 0.1, LongestWithEverySample},
    {"1 s", 1.0, LongestWithEverySample},
    {"10 s", 10.0, LongestWithEverySample},
    {"60 s", 60.0, LongestWithEverySample},
    {"300 s", LongestWithEverySample, LongestWithEverySample},
    {"1 h", 3600.0, 3600.0},
    {"3 h", 10800.0, 10800.0},
};

void PrintFrames(const char* device)
{
    const double plain = PlainFrame();
    std::printf("\n%s: a frame of 3,200 vertices takes %.2f ms; milliseconds a frame:\n\n", device, plain);
    std::printf("| visible | rate | panning, median | max | waiting for each frame, median | max "
                "| moving position, median | max | ratio to plain |\n");
    std::printf("|---|---|---|---|---|---|---|---|---|\n");
    std::vector<double> quickest;
    for (const int rate : {44'100, 48'000, 96'000}) {
        for (const Span& span : Spans) {
            View view(rate, span.duration);
            view.Show((span.duration - span.seconds) / 2.0, span.seconds);
            const Times panning = view.Pan();
            view.Show((span.duration - span.seconds) / 2.0, span.seconds);
            const Times waiting = view.PanAndWait();
            const Times moving = view.MovePosition();
            std::printf("| %s | %d | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f |\n", span.name, rate,
                        panning.median, panning.max, waiting.median, waiting.max, moving.median, moving.max,
                        panning.median / plain);
            quickest.push_back(panning.min);
        }
    }
    // Of the quickest frames, which other programs on the machine disturb least.
    const auto [fastest, slowest] = std::ranges::minmax(quickest);
    std::printf("\nThe slowest span takes %.2f times what the fastest takes.\n", slowest / fastest);
}

/** A figure of the process's state, in bytes; 0 where there is no such thing. */
double StateOf(const char* name)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0.0;
    }
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith(name)) {
            return line.simplified().split(' ').value(1).toDouble() * 1024.0;
        }
    }
    return 0.0;
}

void ForgetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        file.write("5");
    }
}

void PrintSupply()
{
    Diagram diagram;
    diagram.resize(1600, 300);
    diagram.show();
    QAudioFormat format;
    format.setSampleRate(96'000);
    diagram.SetAudioFormat(format);
    diagram.SetDuration(LongestWithEverySample);
    diagram.UpdateAudioSampleBuffer({0.5F});
    QApplication::processEvents();
    diagram.repaint();

    const double idle = StateOf("VmRSS");
    const QList<float> samples = LoudNoise(28'800'000);
    const auto count = static_cast<double>(samples.size());
    ForgetPeak();
    diagram.UpdateAudioSampleBuffer(samples);
    diagram.repaint();
    const double peak = StateOf("VmHWM") - idle;

    std::vector<float> copy(static_cast<std::size_t>(samples.size()), 1.0F);
    const double copying =
        Measure(5, [&](int) { std::memcpy(copy.data(), samples.data(), copy.size() * sizeof(float)); }).median;
    const double supplying = Measure(5, [&](int) { diagram.UpdateAudioSampleBuffer(samples); }).median;
    std::printf("28.8 million samples are supplied in %.1f ms, %.2f times a copy's %.1f ms;\n"
                "shown, they take %.2f bytes a sample, their own 4 included\n",
                supplying, supplying / copying, copying, peak / count);
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    // Every frame writes a line for developers.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    // Its memory is not to be mixed with that of a device which is starting.
    bgfx::DrawingDevice::Get().Use(bgfx::device::Kind::Software);
    PrintSupply();
    for (const auto& [device, name] :
         {std::pair(bgfx::device::Kind::Bgfx, "bgfx"), std::pair(bgfx::device::Kind::OpenGL, "OpenGL"),
          std::pair(bgfx::device::Kind::Software, "Software")}) {
        if (bgfx::DrawingDevice::Get().Use(device)) {
            PrintFrames(name);
        }
    }
    return 0;
}
