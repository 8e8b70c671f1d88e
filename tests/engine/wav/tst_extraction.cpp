#include "tests/support/BrokenReading.h"
#include "tests/support/OpenedWav.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <semaphore>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

namespace {

using Values = QList<float>;

/** Frame i holds the sample i modulo 30000, in every channel with a sign of its own. */
QByteArray Ramp16(int frames, int channels)
{
    QByteArray bytes;
    bytes.reserve(qsizetype(frames) * channels * 2);
    for (int i = 0; i < frames; ++i) {
        for (int channel = 0; channel < channels; ++channel) {
            bytes += LittleEndian(static_cast<qint16>((channel == 0 ? 1 : -1) * (i % 30000)));
        }
    }
    return bytes;
}

Values RampValues(int first, int end, int step)
{
    Values values;
    for (int i = first; i < end; i += step) {
        values.append(static_cast<float>(i % 30000) / 32767.0F);
    }
    return values;
}

const QString updated = u"0 of 0..1 Updated"_s;

QString Updating(int progress)
{
    return u"%1 of 0..100 Updating..."_s.arg(progress);
}

/** Audio of which only some frames are wanted, far apart. What lies between them is not silent. */
struct DistantFrames
{
    int tag = 1;
    int bits = 16;
    int channels = 1;
    /** What the header says where that is not the same. */
    int statedBits = bits;
    /** From one wanted frame to the next one, in frames. */
    int step = 1;
    int count = 0;

    qint64 FrameSize() const { return qint64(channels) * bits / 8; }
    qint64 Distance() const { return step * FrameSize(); }
    qint64 Position(int index) const { return 44 + index * Distance(); }

    float Value(int index, int channel) const
    {
        const auto value = static_cast<float>(Integer(index, channel));
        return tag == 3     ? value
               : bits == 32 ? std::ldexp(value, -31)
                            : value / (bits == 16 ? 32767.0F : 8388607.0F);
    }

    /** `rest` bytes follow the last wanted frame; when it is negative, so many bytes of that frame are missing. */
    QByteArray File(qint64 rest) const
    {
        QByteArray data((count - 1) * Distance() + FrameSize() + qMax(qint64(0), rest), '\x11');
        for (int i = 0; i < count; ++i) {
            for (int channel = 0; channel < channels; ++channel) {
                const qint32 integer = Integer(i, channel);
                const QByteArray sample =
                    tag == 3 ? LittleEndian(static_cast<float>(integer)) : LittleEndian(integer);
                data.replace(i * Distance() + channel * bits / 8, bits / 8, sample.left(bits / 8));
            }
        }
        data.chop(qMax(qint64(0), -rest));
        return WavBytes{.formatTag = quint16(tag),
                        .channels = quint16(channels),
                        .sampleRate = 32768,
                        .bits = quint16(statedBits),
                        .data = data}
            .Build();
    }

private:
    static int Integer(int index, int channel) { return (index + 1) * (channel == 0 ? 3 : -5); }
};

void AddDistantFrames()
{
    QTest::addColumn<DistantFrames>("audio");
    for (const int channels : {1, 2}) {
        for (const int bits : {16, 24, 32}) {
            const int frameSize = channels * bits / 8;
            QTest::addRow("%d bits, %d channels, near", bits, channels)
                << DistantFrames{.bits = bits, .channels = channels, .step = 9'000 / frameSize, .count = 450};
        }
        QTest::addRow("float, %d channels, near", channels)
            << DistantFrames{.tag = 3, .bits = 32, .channels = channels, .step = 3'000, .count = 450};
    }
    QTest::newRow("16 bits, 1 channel, far") << DistantFrames{.step = 70'000, .count = 210};
    QTest::newRow("24 bits, 2 channels, far")
        << DistantFrames{.bits = 24, .channels = 2, .step = 23'000, .count = 210};
    QTest::newRow("float, 2 channels, far")
        << DistantFrames{.tag = 3, .bits = 32, .channels = 2, .step = 17'000, .count = 210};
}

/** Counts what it is asked to read. */
class CountingWav : public WavFile
{
public:
    qint64 largestRead = 0;
    qint64 bytesRead = 0;

protected:
    qint64 readData(char* bytes, qint64 size) override
    {
        const qint64 arrived = WavFile::readData(bytes, size);
        largestRead = qMax(largestRead, size);
        bytesRead += qMax(qint64(0), arrived);
        return arrived;
    }
};

} // namespace

class TestExtraction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsOneSecondInTwentyFourBlocks();
    void emitsNewDataBetweenTheLastBlockAndUpdated();
    void takesTheSelectedChannel_data();
    void takesTheSelectedChannel();
    void takesAStepBelowOneAsOne_data();
    void takesAStepBelowOneAsOne();
    void keepsThePicksEvenlySpacedAcrossBlocks_data();
    void keepsThePicksEvenlySpacedAcrossBlocks();
    void keepsEveryPeakWhenToldTo_data();
    void keepsEveryPeakWhenToldTo();
    void takesPeaksThatAreNoNumbersForSilence();
    void keepsAllValuesOfTheLastBlock();
    void measuresProgressFromTheStartOfTheFile();
    void stopsAtTheEndOfTheFile();
    void readsOnIntoChunksBehindTheData();
    void readsAllSampleFormats_data();
    void readsAllSampleFormats();
    void readsTheMiddleOfEveryFormat_data();
    void readsTheMiddleOfEveryFormat();
    void readsFramesFromFarApart_data() { AddDistantFrames(); }
    void readsFramesFromFarApart();
    void endsWithAFileBetweenDistantFrames_data() { AddDistantFrames(); }
    void endsWithAFileBetweenDistantFrames();
    void endsWithAFileWithinADistantFrame_data() { AddDistantFrames(); }
    void endsWithAFileWithinADistantFrame();
    void endsWithAFailureAmongDistantFrames_data() { AddDistantFrames(); }
    void endsWithAFailureAmongDistantFrames();
    void stopsAfterALongBlockDuringWhichItWasAborted_data() { AddDistantFrames(); }
    void stopsAfterALongBlockDuringWhichItWasAborted();
    void endsWithAFileWithinALongBlock();
    void readsLongBlocksInParts();
    void readsDistantFloatsThatSayFewerBits_data();
    void readsDistantFloatsThatSayFewerBits();
    void dropsATrailingPartialFrame_data();
    void dropsATrailingPartialFrame();
    void leavesTheFileBehindTheLastBlock();
    void leavesTheFileAtTheStartOfAnEmptyRange();

    void storesAnEmptyListForAnEmptyRange_data();
    void storesAnEmptyListForAnEmptyRange();
    void storesAnEmptyListForAnUnknownSampleFormat();
    void storesAnEmptyListForAClosedFile();
    void storesAnEmptyListForAFreshObject();
    void endsForEveryTime_data();
    void endsForEveryTime();
    void endsAfterARefusedHeader_data();
    void endsAfterARefusedHeader();
    void endsAfterTwoRefusedHeadersThatMultiplyToTooMuch();
    void takesNoMemoryForAHugeStep();
    void takesNoMemoryForAudioThatIsNotWanted();
    void takesNoMemoryForAudioThatIsNotThere();
    void truncatesFramesTowardZero();

    void wrapsOffsetsAtThirtyTwoBits();
    void readsNothingWhenTheEndWrapsBelowTheStart();
    void readsNothingWhenTheStartWrapsBelowTheFile();

    void keepsThePreviousSamplesWhenAborted();

    void showsOldOrNewSamplesWhole();
    void letsTwoExtractionsShareTheFile();

private:
    QString Write(const WavBytes& wav) { return m_files.Write(u"file.wav"_s, wav.Build()); }

    /** 100,000 frames of a ramp, 16-bit mono at 32768 Hz, where frame numbers and seconds convert exactly. */
    static QByteArray Ramp() { return WavBytes{.sampleRate = 32768, .data = Ramp16(100000, 1)}.Build(); }

    static double Seconds(qint64 frame) { return double(frame) / 32768.0; }

    TemporaryFiles m_files;
};

void TestExtraction::readsOneSecondInTwentyFourBlocks()
{
    OpenedWav wav(WavBytes{.channels = 2, .sampleRate = 48000, .data = Ramp16(60000, 2)}.Build());
    wav.file.SetSelectedChannel(WavFile::ChannelLeft);
    wav.file.ReadData(0, 1, 10);

    QStringList expected;
    for (const int progress :
         {0, 4, 8, 12, 16, 20, 25, 29, 33, 37, 41, 45, 50, 54, 58, 62, 66, 70, 75, 79, 83, 87, 91, 95}) {
        expected << Updating(progress);
    }
    QCOMPARE(expected.size(), 24);
    QCOMPARE(QStringList(wav.log), expected << u"NewData"_s << updated);
    QCOMPARE(wav.file.GetSamples().size(), 4800);
    QCOMPARE(wav.file.GetSamples(), RampValues(0, 48000, 10));
    QCOMPARE(wav.file.pos(), 44 + 192000);
}

void TestExtraction::emitsNewDataBetweenTheLastBlockAndUpdated()
{
    OpenedWav wav(Ramp());
    Values atNewData;
    connect(&wav.file, &WavFile::NewData, &wav.file, [&] { atNewData = wav.file.GetSamples(); });
    wav.file.ReadData(0, Seconds(400), 1);
    QCOMPARE(QStringList(wav.log), QStringList({Updating(5), Updating(52), u"NewData"_s, updated}));
    QCOMPARE(atNewData, RampValues(0, 400, 1));
}

void TestExtraction::takesTheSelectedChannel_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<QList<float>>("expected");
    QTest::newRow("none is the average") << 0 << Values{0.25F, 2.0F};
    QTest::newRow("mono is the average") << 1 << Values{0.25F, 2.0F};
    QTest::newRow("left") << 2 << Values{0.5F, 1.0F};
    QTest::newRow("right") << 3 << Values{0.0F, 3.0F};
    QTest::newRow("both is the average") << 4 << Values{0.25F, 2.0F};
}

void TestExtraction::takesTheSelectedChannel()
{
    QFETCH(const int, channel);
    OpenedWav wav(
        WavBytes{.formatTag = 3, .channels = 2, .bits = 32, .data = PackF32({0.5F, 0.0F, 1.0F, 3.0F})}.Build());
    wav.file.SetSelectedChannel(WavFile::ChannelFormat(channel));
    wav.file.ReadData(0, 1, 1);
    QTEST(wav.file.GetSamples(), "expected");
}

void TestExtraction::takesAStepBelowOneAsOne_data()
{
    QTest::addColumn<int>("step");
    QTest::newRow("1") << 1;
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void TestExtraction::takesAStepBelowOneAsOne()
{
    QFETCH(const int, step);
    OpenedWav wav(Ramp());
    wav.file.ReadData(0, Seconds(600), step);
    QCOMPARE(wav.file.GetSamples(), RampValues(0, 600, 1));
    QCOMPARE(wav.log.size(), 3 + 2);
}

void TestExtraction::keepsThePicksEvenlySpacedAcrossBlocks_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("step");
    QTest::newRow("whole file, step 1") << 0 << 1;
    QTest::newRow("whole file, step 7") << 0 << 7;
    QTest::newRow("whole file, step 333") << 0 << 333;
    QTest::newRow("from the middle, step 13") << 50001 << 13;
    QTest::newRow("step beyond the file") << 0 << 1000000;
}

void TestExtraction::keepsThePicksEvenlySpacedAcrossBlocks()
{
    QFETCH(const int, first);
    QFETCH(const int, step);
    OpenedWav wav(Ramp());
    wav.file.ReadData(Seconds(first), wav.file.GetDuration(), step);
    QCOMPARE(wav.file.GetSamples(), RampValues(first, 100000, step));
}

void TestExtraction::keepsEveryPeakWhenToldTo_data()
{
    QTest::addColumn<int>("tag");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("channel");
    QTest::newRow("16 bit, mono") << 1 << 16 << 1 << 50000 << 7 << 0 << 0;
    QTest::newRow("16 bit, the average of two") << 1 << 16 << 2 << 50000 << 10 << 0 << 0;
    QTest::newRow("24 bit") << 1 << 24 << 2 << 50000 << 13 << 0 << 0;
    QTest::newRow("32 bit") << 1 << 32 << 1 << 50000 << 100 << 0 << 0;
    QTest::newRow("float") << 3 << 32 << 1 << 50000 << 333 << 0 << 0;
    QTest::newRow("a step of one") << 1 << 16 << 1 << 50000 << 1 << 0 << 0;
    QTest::newRow("a rest of less than a step") << 1 << 16 << 1 << 1003 << 5 << 0 << 0;
    QTest::newRow("a rest of one step") << 1 << 16 << 1 << 1005 << 5 << 0 << 0;
    QTest::newRow("a rest of more than a step") << 1 << 16 << 1 << 1007 << 5 << 0 << 0;
    QTest::newRow("a step beyond the file") << 1 << 16 << 1 << 1000 << 100000 << 0 << 0;
    QTest::newRow("left, from the middle") << 1 << 16 << 2 << 50000 << 10 << 777 << int(WavFile::ChannelLeft);
    QTest::newRow("right") << 3 << 32 << 2 << 50000 << 10 << 0 << int(WavFile::ChannelRight);
    QTest::newRow("pieces that end between two values") << 1 << 16 << 2 << 900000 << 4099 << 0 << 0;
}

void TestExtraction::keepsEveryPeakWhenToldTo()
{
    QFETCH(const int, tag);
    QFETCH(const int, bits);
    QFETCH(const int, channels);
    QFETCH(const int, frames);
    QFETCH(const int, step);
    QFETCH(const int, first);
    QFETCH(const int, channel);
    QByteArray noise;
    for (quint32 i = 0, state = 1; i < quint32(frames * channels); ++i) {
        state = state * 1664525U + 1013904223U;
        // Mostly quiet, so that few samples are peaks.
        const qint32 sample = qint32(state) / ((state >> 5) % 64 == 0 ? 1 : 100);
        noise +=
            tag == 3 ? PackF32({float(sample) / 2147483648.0F}) : LittleEndian(sample).last(qsizetype(bits) / 8);
    }
    OpenedWav wav(WavBytes{.formatTag = quint16(tag),
                           .channels = quint16(channels),
                           .sampleRate = 32768,
                           .bits = quint16(bits),
                           .data = noise}
                      .Build());
    wav.file.SetSelectedChannel(WavFile::ChannelFormat(channel));
    const double duration = wav.file.GetDuration();
    wav.file.ReadData(Seconds(first), duration, 1);
    const Values all = wav.file.GetSamples();
    QCOMPARE(all.size(), frames - first);
    Values expected;
    for (qsizetype i = 0; i < all.size() && step > 1; i += 2 * step) {
        const Values window = all.mid(i, 2 * step);
        const auto low = std::min_element(window.begin(), window.end());
        const auto high = std::max_element(window.begin(), window.end());
        if (window.size() > step) {
            expected << *low << *high;
        } else {
            expected << (std::abs(*low) > std::abs(*high) ? *low : *high);
        }
    }
    QVERIFY(!wav.file.GetKeepPeaks());
    wav.file.SetKeepPeaks(true);
    QVERIFY(wav.file.GetKeepPeaks());
    wav.file.ReadData(Seconds(first), duration, step);
    QCOMPARE(wav.file.GetSamples(), step > 1 ? expected : all);
    QCOMPARE(wav.file.GetSamples().size(), (frames - first + step - 1) / step);
    wav.file.SetKeepPeaks(false);
    wav.file.ReadData(Seconds(first), duration, step);
    QCOMPARE(wav.file.GetSamples().first(), all.first());
    QCOMPARE(wav.file.GetSamples().last(), all.at((frames - first - 1) / step * step));
}

void TestExtraction::takesPeaksThatAreNoNumbersForSilence()
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float none = std::numeric_limits<float>::quiet_NaN();
    OpenedWav wav(WavBytes{
        .formatTag = 3, .bits = 32, .data = PackF32({none, 0.5F, 0.25F, infinity, -infinity, -0.5F, none, -0.25F})}
                      .Build());
    wav.file.SetKeepPeaks(true);
    wav.file.ReadData(0, 1, 2);
    QCOMPARE(wav.file.GetSamples(), Values({0.0F, 0.5F, -0.5F, 0.0F}));
}

void TestExtraction::keepsAllValuesOfTheLastBlock()
{
    OpenedWav wav(Ramp());
    wav.file.ReadData(0, Seconds(1), 1);
    QCOMPARE(wav.file.GetSamples(), RampValues(0, 200, 1));
    wav.file.ReadData(Seconds(100), Seconds(301), 1);
    QCOMPARE(wav.file.GetSamples(), RampValues(100, 500, 1));
}

void TestExtraction::measuresProgressFromTheStartOfTheFile()
{
    OpenedWav wav(Ramp());
    wav.file.ReadData(Seconds(1000), Seconds(1500), 1);
    // Ends at byte 3044; blocks start at 2044, 2444 and 2844.
    QCOMPARE(QStringList(wav.log), QStringList({Updating(67), Updating(80), Updating(93), u"NewData"_s, updated}));
}

void TestExtraction::stopsAtTheEndOfTheFile()
{
    OpenedWav wav(WavBytes{.sampleRate = 32768, .data = Ramp16(450, 1), .statedDataSize = 4000}.Build());
    wav.file.ReadData(0, Seconds(2000), 1);
    QCOMPARE(wav.file.GetSamples(), RampValues(0, 450, 1));
    // Ends at byte 4044; blocks start at 44, 444 and 844, and at 944 nothing is left.
    QCOMPARE(QStringList(wav.log),
             QStringList({Updating(1), Updating(10), Updating(20), Updating(23), u"NewData"_s, updated}));
}

void TestExtraction::readsOnIntoChunksBehindTheData()
{
    OpenedWav wav(WavBytes{.data = PackS16({32767}), .afterData = {{QByteArray(4, '\0'), "", 0}}}.Build());
    wav.file.ReadData(0, wav.file.GetDuration(), 1);
    QCOMPARE(wav.file.GetSamples(), Values({1.0F, 0.0F, 0.0F, 0.0F, 0.0F}));
}

void TestExtraction::readsAllSampleFormats_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QList<float>>("expected");
    const auto add = [](const char* name, const WavBytes& wav, const Values& expected) {
        QTest::newRow(name) << wav.Build() << expected;
    };
    add("16-bit", {.data = PackS16({32767, 0, -32767})}, {1.0F, 0.0F, -1.0F});
    add("24-bit", {.bits = 24, .data = PackS24({8388607, 0, -8388607})}, {1.0F, 0.0F, -1.0F});
    add("32-bit", {.bits = 32, .data = PackS32({0x40000000, 0, -0x40000000})}, {0.5F, 0.0F, -0.5F});
    add("float", {.formatTag = 3, .bits = 32, .data = PackF32({2.0F, 0.0F, -3.0F})}, {2.0F, 0.0F, -3.0F});
    add("float that says 16 bits", {.formatTag = 3, .bits = 16, .data = PackF32({2.0F, -3.0F})}, {2.0F, -3.0F});
    add("float that says 24 bits", {.formatTag = 3, .bits = 24, .data = PackF32({2.0F, -3.0F})}, {2.0F, -3.0F});
    add("24-bit stereo", {.channels = 2, .bits = 24, .data = PackS24({8388607, 0, -8388607, -8388607})},
        {0.5F, -1.0F});
}

void TestExtraction::readsAllSampleFormats()
{
    QFETCH(const QByteArray, bytes);
    OpenedWav wav(bytes);
    wav.file.ReadData(0, 1, 1);
    QTEST(wav.file.GetSamples(), "expected");
}

void TestExtraction::readsTheMiddleOfEveryFormat_data()
{
    QTest::addColumn<int>("tag");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("channels");
    QTest::addColumn<float>("unit");
    for (const int channels : {1, 2}) {
        QTest::addRow("16-bit, %d channels", channels) << 1 << 16 << channels << 1.0F / 32767.0F;
        QTest::addRow("24-bit, %d channels", channels) << 1 << 24 << channels << 1.0F / 8388607.0F;
        QTest::addRow("32-bit, %d channels", channels) << 1 << 32 << channels << std::ldexp(1.0F, -31);
        QTest::addRow("float, %d channels", channels) << 3 << 32 << channels << 1.0F;
    }
}

void TestExtraction::readsTheMiddleOfEveryFormat()
{
    QFETCH(const int, tag);
    QFETCH(const int, bits);
    QFETCH(const int, channels);
    QFETCH(const float, unit);
    QByteArray data;
    for (int frame = 0; frame < 1000; ++frame) {
        const QByteArray sample =
            tag == 3 ? PackF32({static_cast<float>(frame)}) : LittleEndian(qint32(frame)).left(bits / 8);
        data += sample.repeated(channels);
    }
    OpenedWav wav(WavBytes{.formatTag = quint16(tag),
                           .channels = quint16(channels),
                           .sampleRate = 32768,
                           .bits = quint16(bits),
                           .data = data}
                      .Build());
    wav.file.SetSelectedChannel(WavFile::ChannelLeft);
    wav.file.ReadData(Seconds(300), Seconds(701), 1);

    const int frameSize = channels * bits / 8;
    QStringList reports;
    for (const int frame : {300, 500, 700}) {
        reports << Updating((44 + frame * frameSize) * 100 / (44 + 701 * frameSize));
    }
    QCOMPARE(wav.log, reports + QStringList({u"NewData"_s, updated}));
    QCOMPARE(wav.file.pos(), 44 + 900 * frameSize);
    QCOMPARE(wav.file.GetSamples().size(), 600);
    for (int i = 0; i < 600; ++i) {
        QCOMPARE(wav.file.GetSamples().at(i), static_cast<float>(300 + i) * unit);
    }
}

void TestExtraction::readsFramesFromFarApart()
{
    QFETCH(const DistantFrames, audio);
    OpenedWav wav(audio.File(audio.Distance()));
    wav.file.SetSelectedChannel(WavFile::ChannelRight);
    // Two blocks: from the fourth wanted frame on, half a step before the last one that is asked for.
    constexpr int first = 3;
    const int last = audio.count - 1;
    wav.file.ReadData(Seconds(first * audio.step), Seconds(last * qint64(audio.step) - audio.step / 2),
                      audio.step);

    const qint64 end = audio.Position(last) - audio.step / 2 * audio.FrameSize();
    QStringList reports;
    for (int block = first; audio.Position(block) < end; block += 200) {
        reports << Updating(int(audio.Position(block) * 100 / end));
    }
    QVERIFY(reports.size() > 1);
    QCOMPARE(wav.file.pos(), wav.file.size());
    QCOMPARE(QStringList(wav.log), reports + QStringList({u"NewData"_s, updated}));
    Values expected;
    for (int i = first; i < audio.count; ++i) {
        expected << audio.Value(i, audio.channels - 1);
    }
    // The last block goes on to the end of the file, where one more frame stands.
    QCOMPARE(wav.file.GetSamples().size(), expected.size() + 1);
    QCOMPARE(wav.file.GetSamples().first(expected.size()), expected);
}

void TestExtraction::endsWithAFileBetweenDistantFrames()
{
    QFETCH(const DistantFrames, audio);
    for (const qint64 rest : {qint64(0), audio.Distance() / 2, audio.Distance() - audio.FrameSize()}) {
        OpenedWav wav(audio.File(rest));
        wav.file.SetSelectedChannel(WavFile::ChannelLeft);
        wav.file.ReadData(0, Seconds(3 * qint64(audio.count) * audio.step), audio.step);
        QCOMPARE(wav.file.GetSamples().size(), audio.count);
        for (int i = 0; i < audio.count; ++i) {
            QCOMPARE(wav.file.GetSamples().at(i), audio.Value(i, 0));
        }
        // One more block begins at the end of the file. It is empty.
        const qint64 end = audio.Position(3 * audio.count);
        QStringList reports;
        for (int block = 0; block < audio.count; block += 200) {
            reports << Updating(int(audio.Position(block) * 100 / end));
        }
        reports << Updating(int(wav.file.size() * 100 / end));
        QCOMPARE(QStringList(wav.log), reports + QStringList({u"NewData"_s, updated}));
        QCOMPARE(wav.file.pos(), wav.file.size());
    }
}

void TestExtraction::endsWithAFileWithinADistantFrame()
{
    QFETCH(const DistantFrames, audio);
    OpenedWav wav(audio.File(-1));
    wav.file.SetSelectedChannel(WavFile::ChannelLeft);
    wav.file.ReadData(0, Seconds(3 * qint64(audio.count) * audio.step), audio.step);
    QCOMPARE(wav.file.GetSamples().size(), audio.count - 1);
    QCOMPARE(wav.file.GetSamples().constLast(), audio.Value(audio.count - 2, 0));
    QCOMPARE(wav.file.pos(), wav.file.size());
}

void TestExtraction::endsWithAFailureAmongDistantFrames()
{
    QFETCH(const DistantFrames, audio);
    OpenedWav wav(audio.File(0));
    wav.file.SetSelectedChannel(WavFile::ChannelLeft);
    connect(&wav.file, &WavFile::ProgressChanged, &wav.file, [&] {
        if (wav.log.size() == 2) {
            QVERIFY(BreakReading(wav.file));
        }
    });
    wav.file.ReadData(0, wav.file.GetDuration(), audio.step);
    // What was read before the failure may count.
    QCOMPARE(wav.log.last(2), QStringList({u"NewData"_s, updated}));
    QVERIFY(wav.file.GetSamples().size() >= 200);
    QVERIFY(wav.file.GetSamples().size() < audio.count);
    for (int i = 0; i < wav.file.GetSamples().size(); ++i) {
        QCOMPARE(wav.file.GetSamples().at(i), audio.Value(i, 0));
    }
}

void TestExtraction::stopsAfterALongBlockDuringWhichItWasAborted()
{
    QFETCH(const DistantFrames, audio);
    OpenedWav wav(audio.File(0));
    connect(&wav.file, &WavFile::ProgressChanged, &wav.file, &WavFile::AbortRead);
    wav.file.ReadData(0, wav.file.GetDuration(), audio.step);
    QCOMPARE(QStringList(wav.log), QStringList({Updating(0), updated}));
    QCOMPARE(wav.file.pos(), audio.Position(200));
    QVERIFY(wav.file.GetSamples().isEmpty());
}

void TestExtraction::endsWithAFileWithinALongBlock()
{
    // Blocks of 200 values are read in parts; the file ends at the end of one.
    const DistantFrames audio{.step = 4'096, .count = 400};
    for (const int values : {16, 32, 64, 128, 256}) {
        WavFile file;
        const QString path = m_files.Write(u"file.wav"_s, audio.File(0).first(audio.Position(values)));
        QCOMPARE(file.Open(path), WavFile::Success);
        SignalLog log(file);
        file.ReadData(0, Seconds(audio.count * qint64(audio.step)), audio.step);
        QCOMPARE(file.GetSamples().size(), values);
        QStringList reports{Updating(0)};
        if (values > 200) {
            reports << Updating(int(audio.Position(200) * 100 / audio.Position(audio.count)));
        }
        reports << Updating(int(audio.Position(values) * 100 / audio.Position(audio.count)));
        QCOMPARE(QStringList(log), reports + QStringList({u"NewData"_s, updated}));
    }
}

void TestExtraction::readsLongBlocksInParts()
{
    const DistantFrames audio{.step = 60'000, .count = 210};
    CountingWav file;
    QCOMPARE(file.Open(m_files.Write(u"file.wav"_s, audio.File(0))), WavFile::Success);
    file.ReadData(0, file.GetDuration(), audio.step);
    QCOMPARE(file.GetSamples().size(), audio.count);
    // A block has 24 MB.
    QVERIFY(file.largestRead <= 1024 * 1024);
    QVERIFY(file.bytesRead >= file.size());
}

void TestExtraction::readsDistantFloatsThatSayFewerBits_data()
{
    QTest::addColumn<DistantFrames>("audio");
    for (const int bits : {16, 24}) {
        for (const int step : {4'000, 40'000}) {
            QTest::addRow("%d bits, every %dth frame", bits, step)
                << DistantFrames{.tag = 3, .bits = 32, .statedBits = bits, .step = step, .count = 180};
        }
    }
}

void TestExtraction::readsDistantFloatsThatSayFewerBits()
{
    QFETCH(const DistantFrames, audio);
    OpenedWav wav(audio.File(0));
    wav.file.ReadData(0, Seconds(3 * qint64(audio.count) * audio.step), audio.step);
    QCOMPARE(wav.file.GetSamples().size(), audio.count);
    for (int i = 0; i < audio.count; ++i) {
        QCOMPARE(wav.file.GetSamples().at(i), audio.Value(i, 0));
    }
}

void TestExtraction::dropsATrailingPartialFrame_data()
{
    QTest::addColumn<int>("tag");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("channels");
    for (const int channels : {1, 2}) {
        QTest::addRow("16-bit, %d channels", channels) << 1 << 16 << channels;
        QTest::addRow("24-bit, %d channels", channels) << 1 << 24 << channels;
        QTest::addRow("32-bit, %d channels", channels) << 1 << 32 << channels;
        QTest::addRow("float, %d channels", channels) << 3 << 32 << channels;
    }
}

void TestExtraction::dropsATrailingPartialFrame()
{
    QFETCH(const int, tag);
    QFETCH(const int, bits);
    QFETCH(const int, channels);
    const int frameBytes = channels * bits / 8;
    for (int rest = 0; rest < frameBytes; ++rest) {
        WavFile file;
        QCOMPARE(file.Open(Write({.formatTag = quint16(tag),
                                  .channels = quint16(channels),
                                  .bits = quint16(bits),
                                  .data = QByteArray(201 * frameBytes + rest, '\0')})),
                 WavFile::Success);
        file.ReadData(0, 1, 1);
        QCOMPARE(file.GetSamples(), Values(201, 0.0F));
    }
}

void TestExtraction::leavesTheFileBehindTheLastBlock()
{
    OpenedWav wav(Ramp());
    wav.file.ReadData(Seconds(100), Seconds(301), 1);
    QCOMPARE(wav.file.pos(), 44 + 500 * 2);
}

void TestExtraction::leavesTheFileAtTheStartOfAnEmptyRange()
{
    OpenedWav wav(Ramp());
    wav.file.ReadData(Seconds(100), Seconds(100), 1);
    QCOMPARE(wav.file.pos(), 44 + 100 * 2);
}

void TestExtraction::storesAnEmptyListForAnEmptyRange_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::newRow("end is start") << 1.0 << 1.0;
    QTest::newRow("end before start") << 1.0 << 0.5;
    QTest::newRow("less than a frame") << 0.0 << 0.00003;
    QTest::newRow("both not a number") << double(NAN) << double(NAN);
}

void TestExtraction::storesAnEmptyListForAnEmptyRange()
{
    QFETCH(const double, start);
    QFETCH(const double, end);
    OpenedWav wav(Ramp());
    WavFileTestAccess(wav.file).Samples() = {1.0F};
    wav.file.ReadData(start, end, 1);
    QCOMPARE(QStringList(wav.log), QStringList({u"NewData"_s, updated}));
    QVERIFY(wav.file.GetSamples().isEmpty());
}

void TestExtraction::storesAnEmptyListForAnUnknownSampleFormat()
{
    OpenedWav wav(Ramp());
    WavFileTestAccess access(wav.file);
    access.Samples() = {1.0F};
    access.FileFormat().setSampleFormat(QAudioFormat::UInt8);
    wav.file.ReadData(0, Seconds(400), 1);
    QCOMPARE(QStringList(wav.log), QStringList({Updating(5), Updating(52), u"NewData"_s, updated}));
    QVERIFY(wav.file.GetSamples().isEmpty());
}

void TestExtraction::storesAnEmptyListForAClosedFile()
{
    OpenedWav wav(Ramp());
    wav.file.close();
    WavFileTestAccess(wav.file).Samples() = {1.0F};
    wav.file.ReadData(Seconds(100), Seconds(200), 1);
    QCOMPARE(QStringList(wav.log), QStringList({Updating(0), u"NewData"_s, updated}));
    QVERIFY(wav.file.GetSamples().isEmpty());
}

void TestExtraction::storesAnEmptyListForAFreshObject()
{
    WavFile file;
    SignalLog log(file);
    file.ReadData(0, 1, 1);
    QCOMPARE(QStringList(log), QStringList({u"NewData"_s, updated}));
    QVERIFY(file.GetSamples().isEmpty());
}

void TestExtraction::endsForEveryTime_data()
{
    QTest::addColumn<quint32>("rate");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    const double times[] = {0.0,      -0.0001,   -0.001,      -1.0,
                            0.5,      1e6,       1e18,        -1e18,
                            INFINITY, -INFINITY, double(NAN), std::numeric_limits<double>::denorm_min()};
    for (const quint32 rate : {0U, 1U, 44100U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        for (const double start : times) {
            for (const double end : times) {
                QTest::addRow("rate %u, %g to %g", rate, start, end) << rate << start << end;
            }
        }
    }
}

void TestExtraction::endsForEveryTime()
{
    QFETCH(const quint32, rate);
    QFETCH(const double, start);
    QFETCH(const double, end);
    OpenedWav wav(WavBytes{.channels = 2, .sampleRate = rate, .bits = 24, .data = QByteArray(3000, 'x')}.Build());
    bool isInRange = true;
    connect(&wav.file, &WavFile::ProgressChanged, &wav.file,
            [&](int progress, int min, int max) { isInRange = isInRange && min <= progress && progress <= max; });
    wav.file.ReadData(start, end, 3);
    QVERIFY(isInRange);
    QCOMPARE(QStringList(wav.log.mid(wav.log.size() - 2)), QStringList({u"NewData"_s, updated}));
    QVERIFY(wav.file.GetSamples().size() <= 3044 / 6);
}

void TestExtraction::endsAfterARefusedHeader_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("8 bits") << WavBytes{.channels = 2, .bits = 8, .data = QByteArray(100, 'x')}.Build();
    QTest::newRow("four bits have no byte") << WavBytes{.bits = 4, .data = QByteArray(100, 'x')}.Build();
    QTest::newRow("65535 bits") << WavBytes{.bits = 0xFFFF, .data = QByteArray(100, 'x')}.Build();
    QTest::newRow("no channels") << WavBytes{.channels = 0, .data = QByteArray(100, 'x')}.Build();
    QTest::newRow("six channels") << WavBytes{.channels = 6, .data = QByteArray(100, 'x')}.Build();
    QTest::newRow("channels that turn negative")
        << WavBytes{.channels = 0x8001, .bits = 32, .data = QByteArray(100, 'x')}.Build();
    QTest::newRow("no data") << WavBytes{}.Build().left(36);
}

void TestExtraction::endsAfterARefusedHeader()
{
    QFETCH(const QByteArray, bytes);
    WavFile file;
    QCOMPARE(file.Open(m_files.Write(u"ramp.wav"_s, Ramp())), WavFile::Success);
    QVERIFY(file.Open(m_files.Write(u"refused.wav"_s, bytes)) != WavFile::Success);
    for (const int step : {1, 100, std::numeric_limits<int>::max()}) {
        SignalLog log(file);
        file.ReadData(0, 10, step);
        QCOMPARE(log.last(), updated);
        QVERIFY(file.GetSamples().size() <= bytes.size());
    }
}

void TestExtraction::endsAfterTwoRefusedHeadersThatMultiplyToTooMuch()
{
    const QByteArray data(100, 'x');
    const QString good = m_files.Write(u"good.wav"_s, WavBytes{.sampleRate = 32768, .data = data}.Build());
    const QString manyBits = m_files.Write(u"bits.wav"_s, WavBytes{.bits = 0xFFFF, .data = data}.Build());
    // As a signed number the latter is negative.
    for (const quint16 channels : {quint16(32767), quint16(0x8000)}) {
        const QString manyChannels =
            m_files.Write(u"channels.wav"_s, WavBytes{.channels = channels, .data = data}.Build());
        WavFile file;
        QCOMPARE(file.Open(good), WavFile::Success);
        QCOMPARE(file.Open(manyChannels), WavFile::ErrorChannelCount);
        QCOMPARE(file.Open(manyBits), WavFile::ErrorInvalidFormat);
        SignalLog log(file);
        for (const double end : {Seconds(1), -Seconds(1), Seconds(100)}) {
            file.ReadData(0, end, std::numeric_limits<int>::max());
            QCOMPARE(log.last(), updated);
        }
    }
}

void TestExtraction::takesNoMemoryForAHugeStep()
{
    OpenedWav wav(Ramp());
    wav.file.ReadData(0, wav.file.GetDuration(), std::numeric_limits<int>::max());
    QCOMPARE(wav.file.GetSamples(), Values({0.0F}));
    QVERIFY(wav.file.GetSamples().capacity() < 1000);
}

void TestExtraction::takesNoMemoryForAudioThatIsNotWanted()
{
    OpenedWav wav(Ramp());
    wav.file.ReadData(0, Seconds(200), 1);
    QVERIFY(wav.file.GetSamples().capacity() < 1000);
}

void TestExtraction::takesNoMemoryForAudioThatIsNotThere()
{
    OpenedWav wav(WavBytes{.sampleRate = 32768, .data = Ramp16(100, 1)}.Build());
    wav.file.ReadData(0, Seconds(500'000'000), 1);
    QCOMPARE(wav.file.GetSamples().size(), 100);
    QVERIFY(wav.file.GetSamples().capacity() < 1000);
}

void TestExtraction::truncatesFramesTowardZero()
{
    OpenedWav wav(Ramp());
    wav.file.ReadData(-0.5 / 32768.0, Seconds(200) + 0.9 / 32768.0, 1);
    QCOMPARE(wav.file.GetSamples(), RampValues(0, 200, 1));
}

// A stereo 16-bit frame has 4 bytes, so frame 2^29 lies at 2 GiB and frame 2^30 at 4 GiB.

void TestExtraction::wrapsOffsetsAtThirtyTwoBits()
{
    WavFile file;
    const QString path = Write({.channels = 2, .sampleRate = 32768, .data = Ramp16(1000, 2)});
    QVERIFY(QFile::resize(path, (qint64(4) << 30) + (1 << 20)));
    QCOMPARE(file.Open(path), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    constexpr qint64 fourGiB = qint64(1) << 30;
    file.ReadData(Seconds(fourGiB + 100), Seconds(fourGiB + 300), 1);
    QCOMPARE(file.GetSamples(), RampValues(100, 300, 1));
    QVERIFY(QFile::remove(path));
}

void TestExtraction::readsNothingWhenTheEndWrapsBelowTheStart()
{
    WavFile file;
    const QString path = Write({.channels = 2, .sampleRate = 32768, .data = Ramp16(1000, 2)});
    QVERIFY(QFile::resize(path, (qint64(2) << 30) + (1 << 20)));
    QCOMPARE(file.Open(path), WavFile::Success);
    SignalLog log(file);
    file.ReadData(0, Seconds(qint64(1) << 29), 1000);
    QCOMPARE(QStringList(log), QStringList({u"NewData"_s, updated}));
    QVERIFY(file.GetSamples().isEmpty());
    QVERIFY(QFile::remove(path));
}

void TestExtraction::readsNothingWhenTheStartWrapsBelowTheFile()
{
    WavFile file;
    const QString path = Write({.channels = 2, .sampleRate = 32768, .data = Ramp16(1000, 2)});
    QVERIFY(QFile::resize(path, (qint64(2) << 30) + (1 << 20)));
    QCOMPARE(file.Open(path), WavFile::Success);
    SignalLog log(file);
    file.ReadData(Seconds(qint64(1) << 29), Seconds((qint64(1) << 30) + 100), 1000);
    QCOMPARE(QStringList(log), QStringList({Updating(0), u"NewData"_s, updated}));
    QVERIFY(file.GetSamples().isEmpty());
    QVERIFY(QFile::remove(path));
}

void TestExtraction::keepsThePreviousSamplesWhenAborted()
{
    OpenedWav wav(Ramp());
    wav.file.ReadData(0, Seconds(200), 1);
    const Values previous = wav.file.GetSamples();
    const auto connection = connect(&wav.file, &WavFile::ProgressChanged, &wav.file, &WavFile::AbortRead);
    wav.log.clear();
    wav.file.ReadData(0, Seconds(1000), 7);
    disconnect(connection);
    QCOMPARE(wav.file.GetSamples(), previous);
    QVERIFY(wav.file.GetSamples().isSharedWith(previous));
    QCOMPARE(QStringList(wav.log), QStringList({Updating(2), updated}));
}

void TestExtraction::showsOldOrNewSamplesWhole()
{
    OpenedWav wav(Ramp());
    const Values shorter = RampValues(0, 1000, 1);
    const Values longer = RampValues(0, 5000, 1);
    std::atomic<bool> isDone = false;
    std::thread worker([&] {
        for (int i = 0; i < 50; ++i) {
            wav.file.ReadData(0, Seconds(1000), 1);
            wav.file.ReadData(0, Seconds(5000), 1);
        }
        isDone = true;
    });
    bool isWhole = true;
    while (!isDone) {
        const Values samples = wav.file.GetSamples();
        isWhole = isWhole && (samples.isEmpty() || samples == shorter || samples == longer);
        wav.file.SetSelectedChannel(wav.file.GetSelectedChannel() == WavFile::ChannelLeft ? WavFile::ChannelRight
                                                                                          : WavFile::ChannelLeft);
    }
    worker.join();
    QVERIFY(isWhole);
    QCOMPARE(wav.file.GetSamples(), longer);
}

void TestExtraction::letsTwoExtractionsShareTheFile()
{
    OpenedWav wav(Ramp());
    const Values low = RampValues(0, 40000, 1);
    const Values high = RampValues(60000, 100000, 1);
    for (int round = 0; round < 10; ++round) {
        // The second waits for the first to be in the middle of its work.
        std::binary_semaphore isUnderWay(0);
        std::atomic<int> progressCount = 0;
        const auto connection = connect(
            &wav.file, &WavFile::ProgressChanged, &wav.file,
            [&] {
                if (++progressCount == 20) {
                    isUnderWay.release();
                }
            },
            Qt::DirectConnection);
        QList<Values> results;
        QMutex resultsLock;
        const auto collect = connect(
            &wav.file, &WavFile::NewData, &wav.file,
            [&] {
                const QMutexLocker lock(&resultsLock);
                results << wav.file.GetSamples();
            },
            Qt::DirectConnection);
        std::thread first([&] { wav.file.ReadData(0, Seconds(40000), 1); });
        std::thread second([&] {
            isUnderWay.acquire();
            wav.file.ReadData(Seconds(60000), Seconds(100000), 1);
        });
        first.join();
        second.join();
        disconnect(connection);
        disconnect(collect);
        QCOMPARE(results.size(), 2);
        for (const Values& result : results) {
            QVERIFY(result == low || result == high);
        }
    }
}

QTEST_GUILESS_MAIN(TestExtraction)
#include "tst_extraction.moc"
