#include "engine/samples/LinearResampling.h"

#include <QtTest/QTest>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>

using namespace vantoraudio::AudioEngine;

namespace {

template<typename Sample>
QList<Sample> Resampled(const QList<Sample>& samples, int channels, int rate, int targetRate)
{
    const QByteArray bytes = ResampleLinearly<Sample>({samples, channels, rate}, targetRate);
    QList<Sample> result(bytes.size() / static_cast<qsizetype>(sizeof(Sample)));
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(result.data()));
    return result;
}

/** One sample at a time, as the interpolation is defined. */
template<typename Sample>
QList<Sample> SlowlyResampled(const QList<Sample>& samples, int channels, int rate, int targetRate)
{
    const auto frames = static_cast<int>(samples.size()) / channels;
    const auto targetFrames = static_cast<int>(qint64{frames} * targetRate / rate);
    QList<Sample> result;
    for (int i = 0; i < targetFrames; ++i) {
        const double position = double(i) * frames / targetFrames;
        const double index = std::floor(position);
        const double t = position - index;
        for (int channel = 0; channel < channels; ++channel) {
            const qsizetype at = qsizetype(index) * channels + channel;
            result << (at + channels < samples.size()
                           ? static_cast<Sample>(samples[at] * (1.0 - t) + samples[at + channels] * t)
                           : samples[at]);
        }
    }
    return result;
}

template<typename Sample>
void CompareWithSlowlyResampled(int frames, int channels, int rate, int targetRate)
{
    std::minstd_rand random(1);
    QList<Sample> samples(qsizetype{frames} * channels);
    for (Sample& sample : samples) {
        if constexpr (std::is_floating_point_v<Sample>) {
            sample = std::uniform_real_distribution<Sample>(-1, 1)(random);
        } else {
            sample = static_cast<Sample>(random());
        }
    }
    QCOMPARE(Resampled(samples, channels, rate, targetRate), SlowlyResampled(samples, channels, rate, targetRate));
}

} // namespace

class TestLinearResampling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copiesABufferOfTheTargetRateByteForByte()
    {
        const QList<float> odd{1.0e30F, -0.0F, std::numeric_limits<float>::denorm_min(), 7.0F, 0.1F};
        const QByteArray bytes(reinterpret_cast<const char*>(odd.constData()), odd.size() * 4);
        QCOMPARE(ResampleLinearly<float>({odd, 2, 96000}, 96000), bytes);
        QCOMPARE(Resampled<quint8>({1, 2, 3}, 2, 8000, 8000), (QList<quint8>{1, 2, 3}));
    }

    void makes480FramesOf441()
    {
        QList<qint16> samples;
        for (int frame = 0; frame < 441; ++frame) {
            samples << qint16(frame * 50) << qint16(-frame * 70);
        }
        const QList<qint16> result = Resampled(samples, 2, 44100, 48000);
        QCOMPARE(result.size(), 480 * 2);
        QCOMPARE(result.first(2), samples.first(2));
        QCOMPARE(result.last(2), samples.last(2));
        // Frame 1 lies at 441 / 480 = 0.91875, frame 240 at 220.5.
        QCOMPARE(result.mid(2, 2), (QList<qint16>{45, -64}));
        QCOMPARE(result.mid(480, 2), (QList<qint16>{11025, -15435}));
    }

    void interpolatesEveryChannelByItself()
    {
        QCOMPARE(Resampled<float>({0.0F, 1.0F, 1.0F, -1.0F}, 2, 100, 200),
                 (QList<float>{0.0F, 1.0F, 0.5F, 0.0F, 1.0F, -1.0F, 1.0F, -1.0F}));
        QCOMPARE(Resampled<float>({0.0F, 1.0F}, 1, 100, 400),
                 (QList<float>{0.0F, 0.25F, 0.5F, 0.75F, 1.0F, 1.0F, 1.0F, 1.0F}));
        QCOMPARE(Resampled<qint32>({10, 20, 30, 40, 50, 60}, 3, 100, 200),
                 (QList<qint32>{10, 20, 30, 25, 35, 45, 40, 50, 60, 40, 50, 60}));
    }

    void givesEveryLengthWhatTheFormulaGives_data()
    {
        QTest::addColumn<int>("rate");
        QTest::addColumn<int>("targetRate");
        for (const auto& [rate, targetRate] :
             {std::pair(48000, 96000), {44100, 96000}, {44100, 48000}, {96000, 44100}, {8000, 96000}}) {
            QTest::addRow("%d to %d", rate, targetRate) << rate << targetRate;
        }
    }

    void givesEveryLengthWhatTheFormulaGives()
    {
        QFETCH(const int, rate);
        QFETCH(const int, targetRate);
        for (const int frames : {1, 2, 3, 127, 128, 129, 255, 256, 257, 511, 512, 513, 1024, 1152, 4608}) {
            for (const int channels : {1, 2, 3, 6}) {
                CompareWithSlowlyResampled<quint8>(frames, channels, rate, targetRate);
                CompareWithSlowlyResampled<qint16>(frames, channels, rate, targetRate);
                CompareWithSlowlyResampled<qint32>(frames, channels, rate, targetRate);
                CompareWithSlowlyResampled<float>(frames, channels, rate, targetRate);
                if (QTest::currentTestFailed()) {
                    return;
                }
            }
        }
    }

    void leavesFramesOutOnTheWayDown()
    {
        QCOMPARE(Resampled<qint32>({0, 10, 20, 30, 40, 50}, 1, 300, 100), (QList<qint32>{0, 30}));
        QCOMPARE(Resampled<qint32>({0, 10, 20}, 1, 300, 200), (QList<qint32>{0, 15}));
    }

    void truncatesIntegersTowardZero()
    {
        QCOMPARE(Resampled<qint16>({0, 3}, 1, 100, 200), (QList<qint16>{0, 1, 3, 3}));
        QCOMPARE(Resampled<qint16>({0, -3}, 1, 100, 200), (QList<qint16>{0, -1, -3, -3}));
        QCOMPARE(Resampled<qint32>({-7, 0}, 1, 100, 200), (QList<qint32>{-7, -3, 0, 0}));
    }

    void readsEightBitsAsUnsigned()
    {
        QCOMPARE(Resampled<quint8>({100, 255}, 1, 100, 200), (QList<quint8>{100, 177, 255, 255}));
    }

    void keepsTheExtremesOfEveryType()
    {
        const auto low = std::numeric_limits<qint32>::min();
        const auto high = std::numeric_limits<qint32>::max();
        for (const int targetRate : {101, 199, 333, 1009}) {
            for (const qint32 value : Resampled<qint32>({low, low, low}, 1, 100, targetRate)) {
                QCOMPARE(value, low);
            }
            for (const qint32 value : Resampled<qint32>({high, high, high}, 1, 100, targetRate)) {
                QVERIFY(value >= high - 1);
            }
        }
        QCOMPARE(Resampled<qint32>({low, high}, 1, 100, 200), (QList<qint32>{low, 0, high, high}));
        QCOMPARE(Resampled<qint16>({-32768, 32767}, 1, 100, 200), (QList<qint16>{-32768, 0, 32767, 32767}));
    }

    void computesFloatsInDouble()
    {
        const float first = 0.1F;
        const float second = 0.7F;
        const QList<float> result = Resampled<float>({first, second}, 1, 100, 300);
        QCOMPARE(result.size(), 6);
        const double third = 1.0 * 2 / 6;
        const auto expected = static_cast<float>(first * (1.0 - third) + second * third);
        QVERIFY(std::memcmp(&result[1], &expected, sizeof expected) == 0);
    }

    void givesNothingWhereNoFrameIsLeft_data()
    {
        QTest::addColumn<int>("frames");
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("rate");
        QTest::addColumn<int>("targetRate");
        QTest::addRow("empty buffer") << 0 << 2 << 44100 << 48000;
        QTest::addRow("empty buffer of the target rate") << 0 << 2 << 48000 << 48000;
        QTest::addRow("one frame on the way down") << 1 << 1 << 96000 << 48000;
        QTest::addRow("target rate 0") << 100 << 1 << 44100 << 0;
        QTest::addRow("negative target rate") << 100 << 1 << 44100 << -8000;
        QTest::addRow("buffer rate 0") << 100 << 1 << 0 << 48000;
        QTest::addRow("negative buffer rate") << 100 << 1 << -44100 << 48000;
        QTest::addRow("buffer rate -1, product at the lowest") << 32768 << 1 << -1 << 65536;
        QTest::addRow("no channels") << 100 << 0 << 44100 << 48000;
        QTest::addRow("product wraps to below zero") << 1152 << 1 << 44100 << 2147483647;
        QTest::addRow("product wraps to zero") << 65536 << 1 << 44100 << 65536;
    }
    void givesNothingWhereNoFrameIsLeft()
    {
        QFETCH(const int, frames);
        QFETCH(const int, channels);
        QFETCH(const int, rate);
        QFETCH(const int, targetRate);
        const QList<qint16> samples(frames * channels, 1);
        QCOMPARE(Resampled(samples, channels, rate, targetRate), QList<qint16>());
    }

    void wrapsTheFrameProductAt32Bits()
    {
        // 65537 * 65536 is 65536 in 32 bits; divided by 8192 that makes 8 frames.
        const QList<quint8> samples(65537, 9);
        QCOMPARE(Resampled(samples, 1, 8192, 65536), QList<quint8>(8, 9));
    }
};

QTEST_APPLESS_MAIN(TestLinearResampling)
#include "tst_linearresampling.moc"
