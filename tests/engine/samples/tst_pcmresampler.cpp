#include "engine/samples/PcmResampler.h"
#include "tests/support/ScarceMemory.h"
#include "tests/support/StandardErrorCapture.h"

#include <QtTest/QtTest>

#include <optional>

using namespace vantoraudio::AudioEngine;

namespace {

/** FFmpeg's numbers of 16-bit integers and of floats, interleaved. */
constexpr int s16 = 1;
constexpr int f32 = 3;

PcmLayout Mono(int sampleRate, int sampleFormat = s16)
{
    return {.sampleFormat = sampleFormat, .channelCount = 1, .sampleRate = sampleRate};
}

QList<qint16> Samples(int count)
{
    QList<qint16> samples;
    for (int i = 0; i < count; ++i) {
        samples << static_cast<qint16>(i * 7919 % 20011 - 10000);
    }
    return samples;
}

void Append(QByteArray& bytes, std::optional<QByteArrayView> converted)
{
    QVERIFY(converted.has_value());
    bytes.append(converted->data(), converted->size());
}

/** All of the samples converted in blocks of `blockFrames`. */
QByteArray Converted(PcmResampler& resampler, const QList<qint16>& samples, qsizetype blockFrames)
{
    QByteArray bytes;
    for (qsizetype first = 0; first < samples.size(); first += blockFrames) {
        const auto frames = static_cast<int>(qMin(blockFrames, samples.size() - first));
        Append(bytes, resampler.Convert(reinterpret_cast<const char*>(samples.data() + first), frames));
    }
    Append(bytes, resampler.Drain());
    return bytes;
}

} // namespace

class TestPcmResampler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesSmallerBlocksWhereTheyBecomeHuge_data()
    {
        QTest::addColumn<int>("sourceRate");
        QTest::addColumn<int>("targetRate");
        QTest::addColumn<int>("blockFrames");
        QTest::addRow("the same rate") << 44100 << 44100 << 1024;
        QTest::addRow("downwards") << 192000 << 8000 << 1024;
        QTest::addRow("upwards") << 8000 << 192000 << 1024;
        QTest::addRow("1024 times the rate") << 100 << 102400 << 1024;
        QTest::addRow("2048 times the rate") << 100 << 204800 << 512;
        QTest::addRow("96000 times the rate") << 1 << 96000 << 11;
        QTest::addRow("200000 times the rate") << 1 << 200000 << 5;
    }
    void takesSmallerBlocksWhereTheyBecomeHuge()
    {
        QFETCH(const int, sourceRate);
        QFETCH(const int, targetRate);
        const PcmResampler resampler(Mono(sourceRate), Mono(targetRate), 1024);
        QVERIFY(resampler.IsReady());
        QTEST(resampler.BlockFrames(), "blockFrames");
    }

    void refusesRatesThatWouldTakeHugeMemory_data()
    {
        QTest::addColumn<int>("sourceRate");
        QTest::addColumn<int>("targetRate");
        QTest::addColumn<bool>("isReady");
        QTest::addRow("the usual ones") << 192000 << 8000 << true;
        QTest::addRow("the highest to a low one") << 768000 << 8000 << true;
        QTest::addRow("without a common divisor") << 768000 << 8001 << true;
        QTest::addRow("a whole multiple") << 8000000 << 8000 << true;
        QTest::addRow("gigabytes of filter") << 1860000001 << 192000 << false;
        QTest::addRow("1000 times the rate") << 44100001 << 44100 << false;
        QTest::addRow("more taps than an int counts") << 2147483647 << 1 << false;
        QTest::addRow("a gigabyte held back") << 1 << 400000 << false;
    }
    void refusesRatesThatWouldTakeHugeMemory()
    {
        QFETCH(const int, sourceRate);
        QFETCH(const int, targetRate);
        const PcmResampler resampler(Mono(sourceRate), Mono(targetRate), 1024);
        QTEST(resampler.IsReady(), "isReady");
    }

    void takesNoLargerBlocksThanAnnounced()
    {
        QCOMPARE(PcmResampler(Mono(44100), Mono(48000), 7).BlockFrames(), 7);
        QCOMPARE(PcmResampler(Mono(1), Mono(192000), 2).BlockFrames(), 2);
    }

    void givesTheSameBytesForBlocksOfAnySize_data()
    {
        QTest::addColumn<int>("sourceRate");
        QTest::addColumn<int>("targetRate");
        QTest::addColumn<int>("frames");
        QTest::addRow("upwards") << 44100 << 48000 << 700;
        QTest::addRow("downwards") << 48000 << 8000 << 700;
        QTest::addRow("8000 times the rate") << 1 << 8000 << 700;
        QTest::addRow("6300 times the rate") << 7 << 44100 << 700;
        QTest::addRow("more inside at the end than a block becomes") << 1 << 96000 << 60;
    }
    void givesTheSameBytesForBlocksOfAnySize()
    {
        QFETCH(const int, sourceRate);
        QFETCH(const int, targetRate);
        QFETCH(const int, frames);
        const QList<qint16> samples = Samples(frames);
        PcmResampler atOnce(Mono(sourceRate), Mono(targetRate, f32), 1024);
        const QByteArray whole = Converted(atOnce, samples, samples.size());
        QVERIFY(whole.size() > 100);
        for (const int blockFrames : {1, 3, 11, 131, 512}) {
            PcmResampler inBlocks(Mono(sourceRate), Mono(targetRate, f32), 1024);
            QVERIFY(Converted(inBlocks, samples, blockFrames) == whole);
        }
    }

    void refusesWhatItCannotBeReadyFor_data()
    {
        QTest::addColumn<int>("sourceRate");
        QTest::addColumn<int>("sampleFormat");
        QTest::addColumn<int>("blockFrames");
        QTest::addColumn<QByteArray>("message");
        const QByteArray noSource = "Could not allocate source samples\n";
        const QByteArray noTarget = "Could not allocate destination samples\n";
        QTest::addRow("no frames") << 48000 << s16 << 0 << noSource;
        QTest::addRow("frames that cannot be counted") << 48000 << s16 << -1 << noSource;
        // 1024 * 600,000 frames of 4 bytes
        QTest::addRow("a block of more than 2 GiB") << 1 << f32 << 1024 << noTarget;
        QTest::addRow("no sample format")
            << 48000 << -1 << 1024 << QByteArray("Failed to initialize the resampling context\n");
    }
    void refusesWhatItCannotBeReadyFor()
    {
        QFETCH(const int, sourceRate);
        QFETCH(const int, sampleFormat);
        QFETCH(const int, blockFrames);
        StandardErrorCapture capture;
        const PcmResampler resampler(Mono(sourceRate), Mono(600000, sampleFormat), blockFrames);
        QTEST(capture.Text(), "message");
        QVERIFY(!resampler.IsReady());
    }

    /** In this order. */
    void tellsThatThereIsNoContext()
    {
        StandardErrorCapture capture;
        const ScarceMemory memory(1);
        const PcmResampler resampler(Mono(44100), Mono(48000), 1024);
        QCOMPARE(capture.Text(), "Could not allocate resampler context\n"
                                 "Failed to set resampler context options\n");
        QVERIFY(!resampler.IsReady());
    }

    void refusesARateThatCannotBeSet()
    {
        StandardErrorCapture capture;
        const PcmResampler resampler(Mono(-1), Mono(48000), 1024);
        QVERIFY(capture.Text().endsWith("\nFailed to set resampler context options\n"));
        QVERIFY(!resampler.IsReady());
    }

    void tellsThatABlockCannotBeConverted()
    {
        const QList<qint16> samples = Samples(1024);
        PcmResampler resampler(Mono(44100), Mono(48000, f32), 1024);
        QVERIFY(resampler.IsReady());
        StandardErrorCapture capture;
        const ScarceMemory memory(1000);
        QVERIFY(!resampler.Convert(reinterpret_cast<const char*>(samples.data()), 1024));
        QCOMPARE(capture.Text(), "Error while converting\n");
    }
};

QTEST_APPLESS_MAIN(TestPcmResampler)
#include "tst_pcmresampler.moc"
