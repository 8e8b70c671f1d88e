#include "engine/samples/S24Samples.h"
#include "engine/samples/SampleBlocks.h"
#include "engine/samples/SampleEncoding.h"
#include "tests/support/WavBytes.h"

#include <QtCore/QRandomGenerator>
#include <QtTest/QtTest>

#include <algorithm>
#include <vector>

using namespace WavTest;
using namespace vantoraudio::AudioEngine;

namespace {

/** More frames than are widened at once, and not a multiple of anything. */
constexpr qsizetype manyFrames = 5003;

QByteArray Noise(qsizetype size)
{
    QRandomGenerator random(24);
    QByteArray bytes(size, '\0');
    std::ranges::generate(bytes, [&] { return static_cast<char>(random.bounded(256)); });
    return bytes;
}

int SampleAt(const QByteArray& block, qsizetype sample)
{
    const auto byte = [&](qsizetype i) { return static_cast<int>(static_cast<quint8>(block[3 * sample + i])); };
    const int value = byte(0) + 256 * byte(1) + 65536 * byte(2);
    return value < 8388608 ? value : value - 16777216;
}

float ValueAt(const QByteArray& block, qsizetype sample)
{
    return static_cast<float>(SampleAt(block, sample)) / 8388607.0F;
}

} // namespace

class S24SamplesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void widensSamples()
    {
        const QByteArray block = PackS24({0, 1, -1, 8388607, -8388608, 0x123456, -2, 3});
        QCOMPARE(WidenS24Block(block), PackS32({0, 256, -256, 2147483392, -2147483648LL, 0x12345600, -512, 768}));
    }

    void dropsASampleCutOff()
    {
        QCOMPARE(WidenS24Block(QByteArray(PackS24({5, 6}) + "xy")), PackS32({5 * 256, 6 * 256}));
        QCOMPARE(WidenS24Block(QByteArray("xy")), QByteArray());
    }

    void widensEveryLengthAlikeWithAndWithoutTheProcessorsHelp()
    {
        const QByteArray noise = Noise(3 * 100);
        for (qsizetype count = 0; count <= 100; ++count) {
            // Without room behind it, so that a sanitizer sees any reading past the end.
            const std::vector<char> block(noise.begin(), noise.begin() + 3 * count);
            QByteArray expected(4 * count, '\0');
            WidenS24Plainly(block.data(), expected.data(), count);
            QCOMPARE(WidenS24Block({block.data(), 3 * count}), expected);
        }
    }

    void handsOverWholeFramesOnly()
    {
        const QByteArray block = Noise(6 * manyFrames) + "xyz!";
        QByteArray together;
        QList<qsizetype> sizes;
        ForWidenedStretches(block, 6, [&](const QByteArray& stretch) {
            together += stretch;
            sizes.append(stretch.size());
        });
        QCOMPARE(together, WidenS24Block(block));
        QCOMPARE(sizes.size(), 5);
        QVERIFY(std::all_of(sizes.begin(), sizes.end() - 1, [](qsizetype size) { return size % 8 == 0; }));
    }

    void readsLongBlocksAsShortOnes()
    {
        const QByteArray block = Noise(6 * manyFrames);
        QList<float> right;
        AppendS24Block(right, block, 2, {1, WavFile::ChannelRight});
        QList<float> average;
        AppendS24Block(average, block, 2, {1, WavFile::ChannelLeftRight});
        QList<float> mono;
        AppendS24Block(mono, block, 1, {1, WavFile::ChannelNone});
        QList<float> thirdOfThree;
        AppendS24Block(thirdOfThree, block, 3, {1, WavFile::ChannelLeft});
        QCOMPARE(right.size(), manyFrames);
        QCOMPARE(mono.size(), 2 * manyFrames);
        QCOMPARE(thirdOfThree.size(), 2 * manyFrames / 3);
        for (qsizetype i = 0; i < manyFrames; ++i) {
            QVERIFY(right[i] == ValueAt(block, 2 * i + 1));
            QVERIFY(average[i] == (ValueAt(block, 2 * i + 1) + ValueAt(block, 2 * i)) * 0.5F);
            QVERIFY(mono[i] == ValueAt(block, i));
            QVERIFY(thirdOfThree[i / 3] == ValueAt(block, i / 3 * 3));
        }
    }

    void encodesLongBlocksAsShortOnes()
    {
        const QByteArray block = Noise(6 * manyFrames) + PackS24({1});
        const QByteArray right = EncodeS24BlockAsF32(block, 2, WavFile::ChannelRight);
        const QByteArray mono = EncodeS24BlockAsF32(block, 1, WavFile::ChannelRight);
        QCOMPARE(right.size(), 4 * manyFrames);
        QCOMPARE(mono.size(), 4 * (2 * manyFrames + 1));
        for (qsizetype i = 0; i < manyFrames; ++i) {
            QVERIFY(qFromLittleEndian<float>(right.data() + 4 * i) == ValueAt(block, 2 * i + 1));
            QVERIFY(qFromLittleEndian<float>(mono.data() + 4 * i) == ValueAt(block, i));
        }
    }
};

QTEST_GUILESS_MAIN(S24SamplesTest)
#include "tst_s24samples.moc"
