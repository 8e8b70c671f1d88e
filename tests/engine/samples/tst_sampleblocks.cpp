#include "engine/samples/SampleBlocks.h"
#include "tests/support/AudioFormat.h"
#include "tests/support/WavBytes.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtCore/QRandomGenerator>
#include <QtTest/QtTest>

#include <bit>
#include <cmath>
#include <limits>

using namespace WavTest;
using namespace vantoraudio::AudioEngine;

namespace {

using Values = QList<float>;

/** Compares bit by bit, not-a-number included. */
bool AreSame(const Values& a, const Values& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](float x, float y) { return std::bit_cast<quint32>(x) == std::bit_cast<quint32>(y); });
}

// A second decoding, written as slowly and plainly as possible.

qint64 IntegerAt(const QByteArray& block, qsizetype offset, int bytes)
{
    qint64 value = 0;
    for (int i = 0; i < bytes; ++i) {
        value += qint64(static_cast<unsigned char>(block[offset + i])) << (8 * i);
    }
    const qint64 range = qint64(1) << (8 * bytes);
    return value >= range / 2 ? value - range : value;
}

float ReferenceSample(const QByteArray& block, qsizetype offset, QAudioFormat::SampleFormat format, int bits)
{
    if (format == QAudioFormat::Float) {
        return std::bit_cast<float>(static_cast<qint32>(IntegerAt(block, offset, 4)));
    }
    const auto value = static_cast<float>(IntegerAt(block, offset, bits / 8));
    switch (bits) {
    case 16:
        return value / 32767.0F;
    case 24:
        return value / 8388607.0F;
    default:
        return std::ldexp(value, -31);
    }
}

Values Reference(const QByteArray& block, int step, const QAudioFormat& format, int bits,
                 WavFile::ChannelFormat channel)
{
    const int sampleBytes = format.sampleFormat() == QAudioFormat::Float ? 4 : bits / 8;
    const int frameBytes = sampleBytes * format.channelCount();
    Values values;
    for (qsizetype frame = 0; (frame + 1) * frameBytes <= block.size(); frame += step) {
        const qsizetype offset = frame * frameBytes;
        const float left = ReferenceSample(block, offset, format.sampleFormat(), bits);
        if (format.channelCount() == 1 || channel == WavFile::ChannelLeft) {
            values.append(left);
            continue;
        }
        const float right = ReferenceSample(block, offset + sampleBytes, format.sampleFormat(), bits);
        values.append(channel == WavFile::ChannelRight ? right : (left + right) * 0.5F);
    }
    return values;
}

} // namespace

class TestSampleBlocks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void convertsSingleSamples_data();
    void convertsSingleSamples();
    void takesTheSelectedChannelOfAStereoBlock_data();
    void takesTheSelectedChannelOfAStereoBlock();
    void ignoresTheChannelOfAMonoBlock_data();
    void ignoresTheChannelOfAMonoBlock();
    void picksOneFrameOutOfEveryStep_data();
    void picksOneFrameOutOfEveryStep();
    void dropsAnIncompleteLastFrame_data();
    void dropsAnIncompleteLastFrame();
    void dispatchesByFormatAndSampleSize_data();
    void dispatchesByFormatAndSampleSize();
    void givesNothingForFormatsThatItDoesNotKnow_data();
    void givesNothingForFormatsThatItDoesNotKnow();
    void givesNothingForAnEmptyBlock();
    void givesNothingWithoutChannels();
    void takesAStepBelowOneAsOne();
    void decodesASingle24BitSample();
    void passesFloatsUnchanged();
    void appendsBehindFormerValues();
    void countsTheBytesOfAFrameAsItTakesThem_data();
    void countsTheBytesOfAFrameAsItTakesThem();
    void agreesWithAPlainDecodingOfRandomBlocks();

private:
    Values Read(WavFileTestAccess::Reader reader, const QByteArray& block, int step, const QAudioFormat& format,
                WavFile::ChannelFormat channel = WavFile::ChannelLeftRight, int sampleSize = 0)
    {
        WavFileTestAccess(m_file).SampleSize() = sampleSize;
        return (m_file.*reader)(block, step, format, channel);
    }

    WavFile m_file;
};

void TestSampleBlocks::convertsSingleSamples_data()
{
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<int>("sampleFormat");
    QTest::addColumn<int>("sampleSize");
    QTest::addColumn<float>("expected");
    const auto add = [](const char* name, const QByteArray& block, QAudioFormat::SampleFormat format,
                        int sampleSize,
                        float expected) { QTest::newRow(name) << block << int(format) << sampleSize << expected; };
    add("16-bit zero", PackS16({0}), QAudioFormat::Int16, 16, 0.0F);
    add("16-bit largest is 1", PackS16({32767}), QAudioFormat::Int16, 16, 1.0F);
    add("16-bit smallest is below -1", PackS16({-32768}), QAudioFormat::Int16, 16, -1.0000305F);
    add("16-bit half", PackS16({16384}), QAudioFormat::Int16, 16, 0.50001526F);
    add("24-bit zero", PackS24({0}), QAudioFormat::Int32, 24, 0.0F);
    add("24-bit largest is 1", QByteArray::fromHex("ffff7f"), QAudioFormat::Int32, 24, 1.0F);
    add("24-bit smallest is below -1", QByteArray::fromHex("000080"), QAudioFormat::Int32, 24, -1.0000001F);
    add("24-bit minus one step", QByteArray::fromHex("ffffff"), QAudioFormat::Int32, 24, -1.0F / 8388607.0F);
    add("24-bit byte order", QByteArray::fromHex("563412"), QAudioFormat::Int32, 24, 1193046.0F / 8388607.0F);
    add("32-bit zero", PackS32({0}), QAudioFormat::Int32, 32, 0.0F);
    add("32-bit half is exactly a half", PackS32({0x40000000}), QAudioFormat::Int32, 32, 0.5F);
    add("32-bit smallest is exactly -1", PackS32({-2147483648LL}), QAudioFormat::Int32, 32, -1.0F);
    add("32-bit one step", PackS32({1}), QAudioFormat::Int32, 32, std::ldexp(1.0F, -31));
    add("float is not clipped", PackF32({-1019.25F}), QAudioFormat::Float, 32, -1019.25F);
}

void TestSampleBlocks::convertsSingleSamples()
{
    QFETCH(const QByteArray, block);
    QFETCH(const int, sampleFormat);
    QFETCH(const int, sampleSize);
    QFETCH(const float, expected);
    const auto format = Format(QAudioFormat::SampleFormat(sampleFormat), 1);
    const Values values = Read(WavFileTestAccess::readBlock, block, 1, format, WavFile::ChannelNone, sampleSize);
    QVERIFY2(AreSame(values, {expected}), qPrintable(QString::number(values.value(0), 'g', 10)));
}

void TestSampleBlocks::takesTheSelectedChannelOfAStereoBlock_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<QList<float>>("of16");
    QTest::addColumn<QList<float>>("of24");
    QTest::addColumn<QList<float>>("of32");
    QTest::addColumn<QList<float>>("ofFloat");
    const Values left24{4194304.0F / 8388607.0F, 1.0F};
    const Values right24{-4194304.0F / 8388607.0F, 0.0F};
    const Values mix24{0.0F, 0.5F};
    QTest::newRow("left") << 2 << Values{0.50001526F, 1.0F} << left24 << Values{0.5F, 0.25F} << Values{1.0F, 3.0F};
    QTest::newRow("right") << 3 << Values{-0.50001526F, 0.0F} << right24 << Values{-0.5F, 0.75F}
                           << Values{0.0F, -1.0F};
    for (const int channel : {0, 1, 4}) {
        QTest::addRow("average for channel value %d", channel)
            << channel << Values{0.0F, 0.5F} << mix24 << Values{0.0F, 0.5F} << Values{0.5F, 1.0F};
    }
}

void TestSampleBlocks::takesTheSelectedChannelOfAStereoBlock()
{
    QFETCH(const int, channel);
    const auto selected = WavFile::ChannelFormat(channel);
    QTEST(Read(WavFileTestAccess::readS16Block, PackS16({16384, -16384, 32767, 0}), 1,
               Format(QAudioFormat::Int16, 2), selected),
          "of16");
    QTEST(Read(WavFileTestAccess::readS24Block, PackS24({4194304, -4194304, 8388607, 0}), 1,
               Format(QAudioFormat::Int32, 2), selected, 24),
          "of24");
    QTEST(Read(WavFileTestAccess::readS32Block, PackS32({0x40000000, -0x40000000, 0x20000000, 0x60000000}), 1,
               Format(QAudioFormat::Int32, 2), selected, 32),
          "of32");
    QTEST(Read(WavFileTestAccess::readF32Block, PackF32({1.0F, 0.0F, 3.0F, -1.0F}), 1,
               Format(QAudioFormat::Float, 2), selected, 32),
          "ofFloat");
}

void TestSampleBlocks::ignoresTheChannelOfAMonoBlock_data()
{
    QTest::addColumn<int>("channel");
    for (int channel = 0; channel <= 4; ++channel) {
        QTest::addRow("channel value %d", channel) << channel;
    }
}

void TestSampleBlocks::ignoresTheChannelOfAMonoBlock()
{
    QFETCH(const int, channel);
    const auto selected = WavFile::ChannelFormat(channel);
    QCOMPARE(Read(WavFileTestAccess::readS16Block, PackS16({32767, -32767}), 1, Format(QAudioFormat::Int16, 1),
                  selected),
             Values({1.0F, -1.0F}));
    QCOMPARE(Read(WavFileTestAccess::readS24Block, PackS24({8388607, -8388607}), 1, Format(QAudioFormat::Int32, 1),
                  selected, 24),
             Values({1.0F, -1.0F}));
    QCOMPARE(Read(WavFileTestAccess::readS32Block, PackS32({0x40000000, -0x40000000}), 1,
                  Format(QAudioFormat::Int32, 1), selected),
             Values({0.5F, -0.5F}));
    QCOMPARE(
        Read(WavFileTestAccess::readF32Block, PackF32({7.0F, -8.0F}), 1, Format(QAudioFormat::Float, 1), selected),
        Values({7.0F, -8.0F}));
}

void TestSampleBlocks::picksOneFrameOutOfEveryStep_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("step");
    QTest::addColumn<QList<float>>("expected");
    QTest::newRow("10 frames, step 3") << 10 << 3 << Values{0, 3, 6, 9};
    QTest::newRow("9 frames, step 3") << 9 << 3 << Values{0, 3, 6};
    QTest::newRow("a last partial step yields a value") << 5 << 4 << Values{0, 4};
    QTest::newRow("step 1") << 3 << 1 << Values{0, 1, 2};
    QTest::newRow("step beyond the block") << 3 << 100 << Values{0};
    QTest::newRow("largest step") << 3 << std::numeric_limits<int>::max() << Values{0};
}

void TestSampleBlocks::picksOneFrameOutOfEveryStep()
{
    QFETCH(const int, frames);
    QFETCH(const int, step);
    QByteArray mono;
    QByteArray stereo;
    QByteArray mono24;
    QByteArray stereo24;
    for (int i = 0; i < frames; ++i) {
        mono += PackF32({float(i)});
        stereo += PackF32({float(i), 1000.0F});
        mono24 += PackS24({i});
        stereo24 += PackS24({-1, i});
    }
    QTEST(Read(WavFileTestAccess::readF32Block, mono, step, Format(QAudioFormat::Float, 1)), "expected");
    QTEST(
        Read(WavFileTestAccess::readF32Block, stereo, step, Format(QAudioFormat::Float, 2), WavFile::ChannelLeft),
        "expected");

    QFETCH(Values, expected);
    for (float& value : expected) {
        value /= 8388607.0F;
    }
    QCOMPARE(Read(WavFileTestAccess::readS24Block, mono24, step, Format(QAudioFormat::Int32, 1)), expected);
    QCOMPARE(Read(WavFileTestAccess::readS24Block, stereo24, step, Format(QAudioFormat::Int32, 2),
                  WavFile::ChannelRight),
             expected);
}

void TestSampleBlocks::dropsAnIncompleteLastFrame_data()
{
    QTest::addColumn<int>("sampleFormat");
    QTest::addColumn<int>("sampleSize");
    QTest::addColumn<int>("channelCount");
    QTest::addColumn<int>("frameBytes");
    for (const int channels : {1, 2}) {
        QTest::addRow("16-bit, %d channels", channels)
            << int(QAudioFormat::Int16) << 16 << channels << 2 * channels;
        QTest::addRow("24-bit, %d channels", channels)
            << int(QAudioFormat::Int32) << 24 << channels << 3 * channels;
        QTest::addRow("32-bit, %d channels", channels)
            << int(QAudioFormat::Int32) << 32 << channels << 4 * channels;
        QTest::addRow("float, %d channels", channels)
            << int(QAudioFormat::Float) << 32 << channels << 4 * channels;
    }
}

void TestSampleBlocks::dropsAnIncompleteLastFrame()
{
    QFETCH(const int, sampleFormat);
    QFETCH(const int, sampleSize);
    QFETCH(const int, channelCount);
    QFETCH(const int, frameBytes);
    const auto format = Format(QAudioFormat::SampleFormat(sampleFormat), channelCount);
    for (int bytes = 0; bytes <= 3 * frameBytes; ++bytes) {
        // Exactly as large as its contents, so that a sanitizer sees every read behind it.
        const std::unique_ptr<char[]> exact(new char[size_t(bytes)]());
        const auto block = QByteArray::fromRawData(exact.get(), bytes);
        const auto wholeFrames = bytes / frameBytes;
        for (const auto channel : {WavFile::ChannelLeft, WavFile::ChannelRight, WavFile::ChannelLeftRight}) {
            const Values all = Read(WavFileTestAccess::readBlock, block, 1, format, channel, sampleSize);
            QCOMPARE(all.size(), wholeFrames);
            const Values every2nd = Read(WavFileTestAccess::readBlock, block, 2, format, channel, sampleSize);
            QCOMPARE(every2nd.size(), (wholeFrames + 1) / 2);
        }
    }
}

void TestSampleBlocks::dispatchesByFormatAndSampleSize_data()
{
    QTest::addColumn<int>("sampleFormat");
    QTest::addColumn<int>("sampleSize");
    QTest::addColumn<QList<float>>("expected");
    // The block below is 00 00 00 40 00 00.
    QTest::newRow("Int16") << int(QAudioFormat::Int16) << 16 << Values{0.0F, 16384.0F / 32767.0F, 0.0F};
    QTest::newRow("Int32 of 24 bits") << int(QAudioFormat::Int32) << 24 << Values{0.0F, 64.0F / 8388607.0F};
    QTest::newRow("Int32 of 32 bits") << int(QAudioFormat::Int32) << 32 << Values{0.5F};
    QTest::newRow("Int32 of any other size") << int(QAudioFormat::Int32) << 16 << Values{0.5F};
    QTest::newRow("Float") << int(QAudioFormat::Float) << 32 << Values{2.0F};
    QTest::newRow("Float that says 16 bits") << int(QAudioFormat::Float) << 16 << Values{2.0F};
    QTest::newRow("Float that says 24 bits") << int(QAudioFormat::Float) << 24 << Values{2.0F};
}

void TestSampleBlocks::dispatchesByFormatAndSampleSize()
{
    QFETCH(const int, sampleFormat);
    QFETCH(const int, sampleSize);
    const QByteArray block = QByteArray::fromHex("000000400000");
    const auto format = Format(QAudioFormat::SampleFormat(sampleFormat), 1);
    QTEST(Read(WavFileTestAccess::readBlock, block, 1, format, WavFile::ChannelMono, sampleSize), "expected");
}

void TestSampleBlocks::givesNothingForFormatsThatItDoesNotKnow_data()
{
    QTest::addColumn<int>("sampleFormat");
    QTest::newRow("UInt8") << int(QAudioFormat::UInt8);
    QTest::newRow("Unknown") << int(QAudioFormat::Unknown);
    QTest::newRow("NSampleFormats") << int(QAudioFormat::NSampleFormats);
}

void TestSampleBlocks::givesNothingForFormatsThatItDoesNotKnow()
{
    QFETCH(const int, sampleFormat);
    const auto format = Format(QAudioFormat::SampleFormat(sampleFormat), 1);
    QVERIFY(Read(WavFileTestAccess::readBlock, QByteArray(64, 'x'), 1, format).isEmpty());
}

void TestSampleBlocks::givesNothingForAnEmptyBlock()
{
    for (const auto reader :
         {WavFileTestAccess::readBlock, WavFileTestAccess::readS16Block, WavFileTestAccess::readS24Block,
          WavFileTestAccess::readS32Block, WavFileTestAccess::readF32Block}) {
        QVERIFY(Read(reader, {}, 1, Format(QAudioFormat::Int16, 1)).isEmpty());
        QVERIFY(Read(reader, {}, 3, Format(QAudioFormat::Int16, 2)).isEmpty());
    }
}

void TestSampleBlocks::givesNothingWithoutChannels()
{
    for (const int channelCount : {0, -1}) {
        for (const auto reader : {WavFileTestAccess::readS16Block, WavFileTestAccess::readS24Block,
                                  WavFileTestAccess::readS32Block, WavFileTestAccess::readF32Block}) {
            QVERIFY(Read(reader, QByteArray(64, 'x'), 1, Format(QAudioFormat::Int16, channelCount)).isEmpty());
        }
    }
}

void TestSampleBlocks::takesAStepBelowOneAsOne()
{
    for (const int step : {0, -1, std::numeric_limits<int>::min()}) {
        QCOMPARE(Read(WavFileTestAccess::readF32Block, PackF32({1, 2, 3}), step, Format(QAudioFormat::Float, 1)),
                 Values({1, 2, 3}));
    }
}

void TestSampleBlocks::decodesASingle24BitSample()
{
    WavFileTestAccess access(m_file);
    const unsigned char smallest[] = {0x00, 0x00, 0x80};
    const unsigned char largest[] = {0xFF, 0xFF, 0x7F};
    const unsigned char minusTwo[] = {0xFE, 0xFF, 0xFF};
    // The format is not looked at.
    QVERIFY(AreSame({access.ReadS24S(smallest, {})}, {-1.0000001F}));
    QVERIFY(AreSame({access.ReadS24S(largest, Format(QAudioFormat::UInt8, 7))}, {1.0F}));
    QVERIFY(AreSame({access.ReadS24S(minusTwo, {})}, {-2.0F / 8388607.0F}));
}

void TestSampleBlocks::passesFloatsUnchanged()
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const Values odd{infinity,
                     -infinity,
                     std::numeric_limits<float>::quiet_NaN(),
                     -0.0F,
                     std::numeric_limits<float>::denorm_min(),
                     1e30F};
    QByteArray block;
    for (const float value : odd) {
        block += PackF32({value});
    }
    QVERIFY(AreSame(Read(WavFileTestAccess::readF32Block, block, 1, Format(QAudioFormat::Float, 1)), odd));
}

void TestSampleBlocks::appendsBehindFormerValues()
{
    Values values{7.0F};
    AppendBlock(values, PackF32({1, 2}), SampleCoding::F32, 1, {});
    AppendBlock(values, PackS16({32767}), SampleCoding::S16, 1, {});
    QCOMPARE(values, Values({7, 1, 2, 1}));
}

void TestSampleBlocks::countsTheBytesOfAFrameAsItTakesThem_data()
{
    QTest::addColumn<int>("sampleFormat");
    QTest::addColumn<int>("sampleSize");
    QTest::addColumn<int>("bytesPerSample");
    QTest::newRow("unknown") << int(QAudioFormat::Unknown) << 16 << 0;
    QTest::newRow("8 bits") << int(QAudioFormat::UInt8) << 8 << 0;
    QTest::newRow("16 bits") << int(QAudioFormat::Int16) << 16 << 2;
    QTest::newRow("24 bits") << int(QAudioFormat::Int32) << 24 << 3;
    QTest::newRow("32 bits") << int(QAudioFormat::Int32) << 32 << 4;
    QTest::newRow("float") << int(QAudioFormat::Float) << 32 << 4;
    QTest::newRow("float that says 16 bits") << int(QAudioFormat::Float) << 16 << 4;
    QTest::newRow("float that says 24 bits") << int(QAudioFormat::Float) << 24 << 4;
}

void TestSampleBlocks::countsTheBytesOfAFrameAsItTakesThem()
{
    QFETCH(const int, sampleFormat);
    QFETCH(const int, sampleSize);
    QFETCH(const int, bytesPerSample);
    for (const int channels : {-1, 0, 1, 2, 6}) {
        StoredFormat format{{}, sampleSize};
        format.audio.setSampleFormat(QAudioFormat::SampleFormat(sampleFormat));
        format.audio.setChannelCount(channels);
        QCOMPARE(format.CodedFrameSize(), qMax(0, channels) * bytesPerSample);
        const QByteArray block(11 * format.CodedFrameSize(), '\0');
        for (const int missing : {0, 1}) {
            Values values;
            AppendBlock(values, QByteArrayView(block).chopped(qMin(missing, int(block.size()))), format.Coding(),
                        channels, {});
            QCOMPARE(values.size(), block.isEmpty() ? 0 : 11 - missing);
        }
    }
}

void TestSampleBlocks::agreesWithAPlainDecodingOfRandomBlocks()
{
    struct Coding
    {
        QAudioFormat::SampleFormat format;
        int bits;
    };
    constexpr Coding codings[] = {{QAudioFormat::Int16, 16},
                                  {QAudioFormat::Int32, 24},
                                  {QAudioFormat::Int32, 32},
                                  {QAudioFormat::Float, 32}};
    QRandomGenerator random(20240607);
    for (int round = 0; round < 4000; ++round) {
        const Coding coding = codings[random.bounded(4)];
        const auto format = Format(coding.format, 1 + random.bounded(2));
        const auto channel = WavFile::ChannelFormat(random.bounded(5));
        const int step = 1 + random.bounded(12);
        QByteArray block(random.bounded(300), '\0');
        for (char& byte : block) {
            byte = static_cast<char>(random.bounded(256));
        }
        if (coding.format == QAudioFormat::Float) {
            // Without not-a-numbers and infinities, whose average has no fixed bits.
            for (qsizetype i = 3; i < block.size(); i += 4) {
                block[i] = static_cast<char>(block[i] & 0xBF);
            }
        }
        const Values expected = Reference(block, step, format, coding.bits, channel);
        const Values values = Read(WavFileTestAccess::readBlock, block, step, format, channel, coding.bits);
        QVERIFY2(AreSame(values, expected),
                 qPrintable(QStringLiteral("round %1, %2 bits, step %3").arg(round).arg(coding.bits).arg(step)));
    }
}

QTEST_APPLESS_MAIN(TestSampleBlocks)
#include "tst_sampleblocks.moc"
