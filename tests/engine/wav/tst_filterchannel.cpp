#include "tests/support/FileSizeLimit.h"
#include "tests/support/OpenedWav.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

namespace {

const QString reset = u"0 of 0..100 "_s;

QString Updating(int progress)
{
    return u"%1 of 0..100 Updating..."_s.arg(progress);
}

/** Rate 32768, where frame counts and seconds convert exactly. */
TestAudio Stereo(int frames, Coding coding = S16)
{
    return {.coding = coding, .channels = 2, .rate = 32768, .frames = frames};
}

} // namespace

class TestFilterChannel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheSelectedChannel_data();
    void writesTheSelectedChannel();
    void writesFloatForATwentyFourBitFile();
    void losesTheLastFrameWhereTheDurationComesOutShort();
    void keepsTheFrameThatOnlyTheHeaderLoses();
    void copiesAWholeLastBlockBehindTheAudio();
    void takesWideSamplesOfAnyStatedWidth_data();
    void takesWideSamplesOfAnyStatedWidth();

    void doesNothingForOtherChannels_data();
    void doesNothingForOtherChannels();
    void doesNothingForAMonoFile();
    void leavesAnExistingFileUntouched();
    void leavesItsOwnFileUntouched();

    void reportsProgressFromTheStartOfTheFile();
    void leavesTheSourceOpenBehindTheLastBlock();

    void endsWithSuccessWhereTheFileEndsEarly();
    void endsWithSuccessForAClosedFile();
    void endsForEveryDuration_data();
    void endsForEveryDuration();
    void writesOnlyAHeaderWhenTheEndWraps();
    void failsWhereTheOutputCannotBeCreated();
    void failsWhenTheOutputCannotBeFilled_data();
    void failsWhenTheOutputCannotBeFilled();
    void failsForAnUnknownSampleFormat();
    void resetsTheProgressForASampleFormatWithoutWriter();
};

void TestFilterChannel::writesTheSelectedChannel_data()
{
    QTest::addColumn<Coding>("coding");
    QTest::addColumn<WavFile::ChannelFormat>("channel");
    QTest::addColumn<int>("frames");
    const QMap<Coding, const char*> codings{{S16, "16 bits"}, {S24, "24 bits"}, {S32, "32 bits"}, {F32, "float"}};
    for (const int frames : {0, 1, 199, 200, 201, 1234, 70000}) {
        for (auto coding = codings.begin(); coding != codings.end(); ++coding) {
            QTest::addRow("%s, left of %d", *coding, frames) << coding.key() << WavFile::ChannelLeft << frames;
            QTest::addRow("%s, right of %d", *coding, frames) << coding.key() << WavFile::ChannelRight << frames;
        }
    }
}

void TestFilterChannel::writesTheSelectedChannel()
{
    QFETCH(const Coding, coding);
    QFETCH(const WavFile::ChannelFormat, channel);
    QFETCH(const int, frames);
    const TestAudio audio = Stereo(frames, coding);
    ExportSetup setup(audio, channel);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QCOMPARE(setup.Result(),
             audio.Exported(audio.ExportedData(0, frames, channel), frames * audio.ExportedBytes()));
}

void TestFilterChannel::writesFloatForATwentyFourBitFile()
{
    ExportSetup setup(Stereo(300, S24), WavFile::ChannelRight);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    WavFile written;
    QCOMPARE(written.Open(setup.out), WavFile::Success);
    QCOMPARE(written.GetFileFormat().sampleFormat(), QAudioFormat::Float);
    QCOMPARE(written.GetFileFormat().channelCount(), 1);
    QCOMPARE(written.GetSampleSize(), 32);
    QCOMPARE(written.GetDataLength(), 1200);
}

/** 1001 / 44100 * 44100 is slightly less than 1001 in double precision, which leaves 1000 frames. These are five
 * whole blocks, so the last frame is not copied. The size in the header is truncated from the bytes and loses only
 * one of them. */
void TestFilterChannel::losesTheLastFrameWhereTheDurationComesOutShort()
{
    const TestAudio audio{.channels = 2, .rate = 44100, .frames = 1001};
    ExportSetup setup(audio, WavFile::ChannelLeft);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(0, 1000, WavFile::ChannelLeft), 2001));
}

void TestFilterChannel::keepsTheFrameThatOnlyTheHeaderLoses()
{
    // Here, too, the duration comes out short, but the only block is not full, so the last frame is copied with
    // it.
    const TestAudio audio{.channels = 2, .rate = 44100, .frames = 15};
    ExportSetup setup(audio, WavFile::ChannelLeft);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(0, 15, WavFile::ChannelLeft), 29));
}

/** Blocks are whole, so chunks behind the audio are taken for more of it; the header does not count them. */
void TestFilterChannel::copiesAWholeLastBlockBehindTheAudio()
{
    TestAudio audio = Stereo(250);
    audio.trailer = Chunk{"LIST", QByteArray(1000, '\x01')}.Build();
    ExportSetup setup(audio, WavFile::ChannelLeft);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    // 148 frames of the chunk's body follow "LIST" and its size of 1000 bytes.
    const QByteArray behind = QByteArray("LI") + LittleEndian(quint16(1000)) + QByteArray(148 * 2, '\x01');
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(0, 250, WavFile::ChannelLeft) + behind, 500));
}

void TestFilterChannel::takesWideSamplesOfAnyStatedWidth_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("statedSize");
    // The size in the header counts as many frames as follow from the stated width.
    QTest::addRow("16 bits") << 16 << 3200;
    QTest::addRow("32 bits") << 32 << 1600;
    QTest::addRow("24 bits") << 24 << 2133;
}

void TestFilterChannel::takesWideSamplesOfAnyStatedWidth()
{
    QFETCH(const int, bits);
    QFETCH(const int, statedSize);
    TestAudio audio = Stereo(400, F32);
    const QByteArray bytes = WavBytes{.formatTag = 3,
                                      .channels = 2,
                                      .sampleRate = 32768,
                                      .bits = static_cast<quint16>(bits),
                                      .data = audio.Data()}
                                 .Build();
    ExportSetup setup(bytes, WavFile::ChannelRight);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(0, 400, WavFile::ChannelRight), statedSize));
}

void TestFilterChannel::doesNothingForOtherChannels_data()
{
    QTest::addColumn<WavFile::ChannelFormat>("channel");
    QTest::addRow("none") << WavFile::ChannelNone;
    QTest::addRow("mono") << WavFile::ChannelMono;
    QTest::addRow("left and right") << WavFile::ChannelLeftRight;
}

void TestFilterChannel::doesNothingForOtherChannels()
{
    QFETCH(const WavFile::ChannelFormat, channel);
    ExportSetup setup(Stereo(300), channel);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QVERIFY(!QFile::exists(setup.out));
    QVERIFY(setup.log.isEmpty());
}

void TestFilterChannel::doesNothingForAMonoFile()
{
    ExportSetup setup({.frames = 300});
    for (const auto channel : {WavFile::ChannelLeft, WavFile::ChannelRight, WavFile::ChannelMono}) {
        setup.file.SetSelectedChannel(channel);
        QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
        QVERIFY(!QFile::exists(setup.out));
    }
}

void TestFilterChannel::leavesAnExistingFileUntouched()
{
    ExportSetup setup(Stereo(300), WavFile::ChannelLeft);
    QCOMPARE(setup.files.Write(u"out.wav"_s, "kept"), setup.out);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QCOMPARE(setup.Result(), QByteArray("kept"));
    QVERIFY(setup.log.isEmpty());
}

void TestFilterChannel::leavesItsOwnFileUntouched()
{
    const TestAudio audio = Stereo(300);
    ExportSetup setup(audio, WavFile::ChannelLeft);
    QCOMPARE(setup.file.FilterChannel(setup.file.fileName()), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(setup.file.fileName()), audio.File());
}

void TestFilterChannel::reportsProgressFromTheStartOfTheFile()
{
    ExportSetup setup(Stereo(1000), WavFile::ChannelLeft);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    // Positions 44, 844, 1644, 2444 and 3244 of 4044.
    QCOMPARE(QStringList(setup.log),
             QStringList({Updating(1), Updating(20), Updating(40), Updating(60), Updating(80)}));
}

void TestFilterChannel::leavesTheSourceOpenBehindTheLastBlock()
{
    TestAudio audio = Stereo(250);
    audio.trailer = QByteArray(10000, 'x');
    ExportSetup setup(audio, WavFile::ChannelLeft);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QVERIFY(setup.file.isOpen());
    QCOMPARE(setup.file.pos(), 44 + 400 * 4);
}

void TestFilterChannel::endsWithSuccessWhereTheFileEndsEarly()
{
    TestAudio audio = Stereo(1050);
    audio.statedDataSize = 40000;
    audio.trailer = "abc";
    ExportSetup setup(audio, WavFile::ChannelLeft);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(0, 1050, WavFile::ChannelLeft), 20000));
    QCOMPARE(setup.log.size(), 6);
}

void TestFilterChannel::endsWithSuccessForAClosedFile()
{
    const TestAudio audio = Stereo(300);
    ExportSetup setup(audio, WavFile::ChannelLeft);
    setup.file.close();
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported({}, 600));
}

void TestFilterChannel::endsForEveryDuration_data()
{
    QTest::addColumn<double>("duration");
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::addRow("not a number") << std::nan("");
    QTest::addRow("infinite") << infinity;
    QTest::addRow("negative infinite") << -infinity;
    QTest::addRow("huge") << 1e300;
    QTest::addRow("negative") << -5.0;
    QTest::addRow("beyond 32 bits") << 140000.0;
}

void TestFilterChannel::endsForEveryDuration()
{
    QFETCH(const double, duration);
    ExportSetup setup(Stereo(300), WavFile::ChannelLeft);
    WavFileTestAccess(setup.file).Duration() = duration;
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QVERIFY(setup.Result().startsWith("RIFF"));
}

void TestFilterChannel::writesOnlyAHeaderWhenTheEndWraps()
{
    const TestAudio audio = Stereo(300);
    ExportSetup setup(audio, WavFile::ChannelLeft);
    // 20000 s of 131072 bytes are more than 2 GiB, and become negative.
    WavFileTestAccess(setup.file).Duration() = 20000;
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported({}, 1310720000));
}

void TestFilterChannel::failsWhereTheOutputCannotBeCreated()
{
    ExportSetup setup(Stereo(300), WavFile::ChannelLeft);
    QCOMPARE(setup.file.FilterChannel(setup.files.Path(u"missing/out.wav"_s)), WavFile::ErrorFilterChannel);
    QCOMPARE(setup.file.FilterChannel({}), WavFile::ErrorFilterChannel);
    QVERIFY(setup.log.isEmpty());
}

void TestFilterChannel::failsWhenTheOutputCannotBeFilled_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addRow("no header") << 0;
    QTest::addRow("a part of the header") << 20;
    QTest::addRow("the header alone") << 44;
    QTest::addRow("a part of the samples") << 100000;
    QTest::addRow("all but one byte") << 44 + 140000 - 1;
}

void TestFilterChannel::failsWhenTheOutputCannotBeFilled()
{
    QFETCH(const int, bytes);
    const TestAudio audio = Stereo(70000);
    ExportSetup setup(audio, WavFile::ChannelLeft);
    {
        const FileSizeLimit limit(static_cast<rlim_t>(bytes));
        QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::ErrorFilterChannel);
    }
    // What was written stays.
    const QByteArray whole = audio.Exported(audio.ExportedData(0, 70000, WavFile::ChannelLeft), 140000);
    QCOMPARE(setup.Result(), whole.left(setup.Result().size()));
    QCOMPARE_LE(setup.Result().size(), bytes);
}

void TestFilterChannel::failsForAnUnknownSampleFormat()
{
    ExportSetup setup(Stereo(300), WavFile::ChannelLeft);
    WavFileTestAccess(setup.file).FileFormat().setSampleFormat(QAudioFormat::UInt8);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::ErrorFilterChannel);
}

/** With 24 bits the output is Float whatever the source, so that only the missing writer stops it. */
void TestFilterChannel::resetsTheProgressForASampleFormatWithoutWriter()
{
    ExportSetup setup(Stereo(300, S24), WavFile::ChannelLeft);
    WavFileTestAccess(setup.file).FileFormat().setSampleFormat(QAudioFormat::UInt8);
    QCOMPARE(setup.file.FilterChannel(setup.out), WavFile::ErrorFilterChannel);
    QCOMPARE(QStringList(setup.log), QStringList({reset}));
}

QTEST_GUILESS_MAIN(TestFilterChannel)
#include "tst_filterchannel.moc"
