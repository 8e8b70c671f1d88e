#include "RecordingDevice.h"
#include "WaveformPicture.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <array>
#include <bit>
#include <random>

using namespace vantoraudio;
using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

QList<float> Noise(qsizetype count)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> level(-0.9F, 0.9F);
    QList<float> samples(count);
    std::ranges::generate(samples, [&] { return level(random); });
    return samples;
}

/** Five minutes at 10 kHz in a diagram of 400 x 200. */
struct Bench
{
    Bench()
    {
        RecordingDevice::Adopt(log);
        diagram.resize(400, 200);
        QAudioFormat format;
        format.setSampleRate(10'000);
        diagram.SetAudioFormat(format);
        diagram.SetDuration(299.0);
        static const QList<float> samples = Noise(2'990'000);
        diagram.UpdateAudioSampleBuffer(samples);
        diagram.SetSceneRange(100.0, 200.0);
    }
    ~Bench() { bgfx::DrawingDevice::Get().Shutdown(); }

    /** The strip of a new frame. */
    RecordedDraw Frame()
    {
        log.clear();
        diagram.grab();
        const auto strip = std::ranges::find(log, bgfx::Topology::LineStrip, &RecordedDraw::topology);
        return strip == log.end() ? RecordedDraw{} : *strip;
    }

    /** What the device was given for the strip of the next frame was given before. */
    bool NextFrameUploadsNothing()
    {
        const RecordedDraw before = last;
        last = Frame();
        return last.vertices != nullptr && last.vertices == before.vertices;
    }

    RecordingDevice::Log log;
    BGFXWaveformDiagramWidget diagram;
    RecordedDraw last;
};

} // namespace

/** What a frame costs, told by what the drawing device gets. */
class TestWaveformFrames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFrameHasAFewVerticesPerColumnWhateverItShows_data()
    {
        QTest::addColumn<double>("span");
        for (const double span : {0.02, 0.1, 0.2, 1.0, 10.0, 60.0, 199.0}) {
            QTest::addRow("%g s", span) << span;
        }
    }

    void aFrameHasAFewVerticesPerColumnWhateverItShows()
    {
        QFETCH(const double, span);
        Bench bench;
        bench.diagram.SetSceneRange(100.0, 100.0 + span);
        const auto columns = static_cast<std::uint32_t>(std::ceil(400 * bench.diagram.devicePixelRatioF()));
        const RecordedDraw frame = bench.Frame();
        QVERIFY(frame.vertexCount >= std::min<std::uint32_t>(columns * 3, static_cast<std::uint32_t>(span * 1e4)));
        QVERIFY(frame.vertexCount <= (columns + 2) * 4);
    }

    void thePositionMovesWithoutAnyUpload()
    {
        Bench bench;
        bench.NextFrameUploadsNothing();
        for (const double position : {110.0, 111.0, 150.5, 199.9}) {
            bench.diagram.SetAudioPosition(position, false);
            QVERIFY(bench.NextFrameUploadsNothing());
        }
    }

    void selectionsAndColoursChangeWithoutAnyUpload()
    {
        Bench bench;
        bench.NextFrameUploadsNothing();
        bench.diagram.SetSelectedSnippet({120.0, 130.0});
        QVERIFY(bench.NextFrameUploadsNothing());
        bench.diagram.SetSelectionEndTime(140.0);
        QVERIFY(bench.NextFrameUploadsNothing());
        bench.diagram.m_waveformColor = Qt::red;
        QVERIFY(bench.NextFrameUploadsNothing());
    }

    void whatShowsIsUploadedWhenItChanges()
    {
        Bench bench;
        bench.NextFrameUploadsNothing();
        bench.diagram.ScrollTo(100.1);
        QVERIFY2(!bench.NextFrameUploadsNothing(), "panned");
        QVERIFY(bench.NextFrameUploadsNothing());
        bench.diagram.SetSceneRange(100.1, 150.0);
        QVERIFY2(!bench.NextFrameUploadsNothing(), "zoomed");
        bench.diagram.resize(401, 200);
        QVERIFY2(!bench.NextFrameUploadsNothing(), "widened");
        bench.diagram.resize(401, 201);
        QVERIFY2(bench.NextFrameUploadsNothing(), "columns are the same whatever their height");
        bench.diagram.UpdateAudioSampleBuffer(Noise(2'990'000));
        QVERIFY2(!bench.NextFrameUploadsNothing(), "new samples");
    }

    void theGridIsDrawnInTwoCallsFirstAcrossThenUpwards()
    {
        Bench bench;
        const auto isUpright = [](const RecordedDraw& lines) {
            QList<bool> result;
            for (std::size_t i = 0; i + 1 < lines.coloured.size(); i += 2) {
                result << (lines.coloured[i].x == lines.coloured[i + 1].x);
            }
            return result;
        };
        bench.Frame();
        QList<RecordedDraw> calls;
        for (const RecordedDraw& draw : bench.log) {
            if (draw.topology == bgfx::Topology::Lines) {
                calls << draw;
            }
        }
        QCOMPARE(calls.size(), 3); // the third is the position
        QVERIFY(isUpright(calls[0]).contains(false));
        QVERIFY(!isUpright(calls[0]).contains(true));
        QVERIFY(isUpright(calls[1]).contains(true));
        QVERIFY(!isUpright(calls[1]).contains(false));
    }

    void theGridKeepsTheAlphaOfItsColour()
    {
        Bench bench;
        bench.diagram.m_gridColor = QColor(10, 20, 30, 40);
        bench.Frame();
        int grids = 0;
        for (const RecordedDraw& draw : bench.log) {
            if (draw.topology == bgfx::Topology::Lines && grids < 2) {
                ++grids;
                for (const auto& vertex : draw.coloured) {
                    const auto bytes = std::bit_cast<std::array<std::uint8_t, 4>>(vertex.rgba);
                    QCOMPARE(bytes, (std::array<std::uint8_t, 4>{10, 20, 30, 40}));
                }
                QVERIFY(!draw.coloured.empty());
            }
        }
        QCOMPARE(grids, 2);
    }

    void theWaveformKeepsTheAlphaOfItsColour()
    {
        Bench bench;
        bench.diagram.m_waveformColor = QColor::fromRgbF(0.0F, 1.0F, 0.0F, 0.2F);
        const RecordedDraw strip = bench.Frame();
        const auto color = std::ranges::find(strip.uniforms, "u_waveformColor", &bgfx::UniformValue::name);
        QVERIFY(color != strip.uniforms.end());
        QCOMPARE(color->value[1], 1.0F);
        QCOMPARE(color->value[3], bench.diagram.m_waveformColor.alphaF());
        QVERIFY(color->value[3] < 0.25F);
    }

    void theSamplesAreSharedNotCopied()
    {
        Bench bench;
        const QList<float> samples = Noise(100'000);
        bench.diagram.UpdateAudioSampleBuffer(samples);
        QCOMPARE(WaveformTestAccess::Vertices(bench.diagram).Samples().constData(), samples.constData());
    }

    void changingTheSuppliedListLaterChangesNothing()
    {
        Bench bench;
        QList<float> samples(1000, 0.25F);
        bench.diagram.UpdateAudioSampleBuffer(samples);
        samples.fill(0.75F);
        QCOMPARE(WaveformTestAccess::Vertices(bench.diagram)[500].y, 0.25F);
    }
};

QTEST_MAIN(TestWaveformFrames)
#include "tst_waveformframes.moc"
