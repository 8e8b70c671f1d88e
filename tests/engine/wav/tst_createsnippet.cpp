#include "tests/support/FileSizeLimit.h"
#include "tests/support/OpenedWav.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtCore/QDir>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

namespace {

const QString reset = u"0 of 0..100 "_s;

QString Creating(int progress)
{
    return u"%1 of 0..100 Creating snippet..."_s.arg(progress);
}

/** At 8000 Hz a millisecond has 8 frames. */
TestAudio Mono(int frames, Coding coding = S16)
{
    return {.coding = coding, .channels = 1, .rate = 8000, .frames = frames};
}

} // namespace

class TestCreateSnippet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheRange_data();
    void writesTheRange();
    void writesBothChannelsWhereTheyAreToBeKept_data();
    void writesBothChannelsWhereTheyAreToBeKept();
    void writesFloatForATwentyFourBitFile();
    void statesTheSizeInWholeMilliseconds_data();
    void statesTheSizeInWholeMilliseconds();
    void statesTheLowestBitsOfAHugeSize();
    void writesOnlyAHeaderForAnEmptyRange_data();
    void writesOnlyAHeaderForAnEmptyRange();
    void endsAtTheEndOfTheFile();
    void copiesAWholeLastBlockBehindTheAudio();
    void startsBeforeTheAudioForANegativeTime();
    void overwritesAnExistingFile();

    void reportsProgressFromTheStartOfTheFile();
    void leavesTheSourceOpenBehindTheLastBlock();

    void endsForEveryTime_data();
    void endsForEveryTime();
    void wrapsPositionsAtThirtyTwoBits();
    void endsWithSuccessForAClosedFile();
    void copiesNothingAfterARefusedHeader();
    void refusesItsOwnFile_data();
    void refusesItsOwnFile();
    void failsWhereTheOutputCannotBeCreated();
    void failsForADevice();
    void doesNotWaitForTheReaderOfAPipe();
    void failsWhenTheOutputCannotBeFilled_data();
    void failsWhenTheOutputCannotBeFilled();
    void failsForAnUnknownSampleFormat();
    void resetsTheProgressForASampleFormatWithoutWriter();
};

void TestCreateSnippet::writesTheRange_data()
{
    QTest::addColumn<Coding>("coding");
    QTest::addColumn<int>("channels");
    QTest::addColumn<WavFile::ChannelFormat>("channel");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::addColumn<int>("firstFrame");
    QTest::addColumn<int>("endFrame");
    QTest::addColumn<int>("statedFrames");

    const QMap<Coding, const char*> codings{{S16, "16 bits"}, {S24, "24 bits"}, {S32, "32 bits"}, {F32, "float"}};
    const auto add = [&](const char* range, double start, double end, int firstFrame, int endFrame,
                         int statedFrames) {
        for (auto coding = codings.begin(); coding != codings.end(); ++coding) {
            for (const int channels : {1, 2}) {
                for (int channel = WavFile::ChannelNone; channel <= WavFile::ChannelLeftRight; ++channel) {
                    QTest::addRow("%s, %s, %d channels, channel %d", range, *coding, channels, channel)
                        << coding.key() << channels << WavFile::ChannelFormat(channel) << start << end
                        << firstFrame << endFrame << statedFrames;
                }
            }
        }
    };
    add("all of it", 0, 0.2, 0, 1600, 1600);
    add("both ends inside blocks", 0.030, 0.095, 240, 840, 520);
    add("both ends at blocks", 0.025, 0.1, 200, 800, 600);
    add("less than a block", 0.1, 0.101, 800, 1000, 8);
    add("into the last block", 0.16, 0.19, 1280, 1600, 240);
    add("to a time behind the end", 0.19, 0.25, 1520, 1600, 480);
    add("from a time behind the end", 0.3, 0.4, 1600, 1600, 800);
}

void TestCreateSnippet::writesTheRange()
{
    QFETCH(const Coding, coding);
    QFETCH(const int, channels);
    QFETCH(const WavFile::ChannelFormat, channel);
    QFETCH(const double, start);
    QFETCH(const double, end);
    QFETCH(const int, firstFrame);
    QFETCH(const int, endFrame);
    QFETCH(const int, statedFrames);
    TestAudio audio = Mono(1600, coding);
    audio.channels = static_cast<quint16>(channels);
    ExportSetup setup(audio, channel);
    QCOMPARE(setup.file.CreateSnippet(setup.out, start, end), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(firstFrame, endFrame, channel),
                                            statedFrames * audio.ExportedBytes()));
}

void TestCreateSnippet::writesBothChannelsWhereTheyAreToBeKept_data()
{
    QTest::addColumn<Coding>("coding");
    QTest::addColumn<int>("channels");
    QTest::addColumn<WavFile::ChannelFormat>("channel");
    const QMap<Coding, const char*> codings{{S16, "16 bits"}, {S24, "24 bits"}, {S32, "32 bits"}, {F32, "float"}};
    for (auto coding = codings.begin(); coding != codings.end(); ++coding) {
        QTest::addRow("%s, both", *coding) << coding.key() << 2 << WavFile::ChannelLeftRight;
        QTest::addRow("%s, right", *coding) << coding.key() << 2 << WavFile::ChannelRight;
        QTest::addRow("%s, mono", *coding) << coding.key() << 1 << WavFile::ChannelLeftRight;
    }
}

void TestCreateSnippet::writesBothChannelsWhereTheyAreToBeKept()
{
    QFETCH(const Coding, coding);
    QFETCH(const int, channels);
    QFETCH(const WavFile::ChannelFormat, channel);
    TestAudio audio = Mono(1600, coding);
    audio.channels = static_cast<quint16>(channels);
    ExportSetup setup(audio, channel);
    setup.file.SetKeepBothChannels(true);
    QVERIFY(setup.file.GetKeepBothChannels());
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0.030, 0.095), WavFile::Success);
    const bool isStereo = channels == 2 && channel == WavFile::ChannelLeftRight;
    if (!isStereo) {
        QCOMPARE(setup.Result(),
                 audio.Exported(audio.ExportedData(240, 840, channel), 520 * audio.ExportedBytes()));
        return;
    }
    QByteArray data;
    for (int frame = 240; frame < 840; ++frame) {
        data += audio.ExportedData(frame, frame + 1, WavFile::ChannelLeft);
        data += audio.ExportedData(frame, frame + 1, WavFile::ChannelRight);
    }
    const int statedSize = 520 * 2 * audio.ExportedBytes();
    const WavBytes expected{.statedRiffSize = statedSize + 36,
                            .formatTag = quint16(coding == F32 || coding == S24 ? 3 : 1),
                            .channels = 2,
                            .sampleRate = audio.rate,
                            .bits = quint16(audio.ExportedBytes() * 8),
                            .data = data,
                            .statedDataSize = statedSize};
    QCOMPARE(setup.Result(), expected.Build());
}

void TestCreateSnippet::writesFloatForATwentyFourBitFile()
{
    ExportSetup setup(Mono(300, S24));
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, 0.025), WavFile::Success);
    WavFile written;
    QCOMPARE(written.Open(setup.out), WavFile::Success);
    QCOMPARE(written.GetFileFormat().sampleFormat(), QAudioFormat::Float);
    QCOMPARE(written.GetFileFormat().channelCount(), 1);
    QCOMPARE(written.GetDataLength(), 800);
}

void TestCreateSnippet::statesTheSizeInWholeMilliseconds_data()
{
    QTest::addColumn<double>("end");
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("statedSize");
    QTest::addColumn<int>("frames");
    QTest::addRow("0.0004 s round to none") << 0.0004 << 8000 << -1 << 200;
    QTest::addRow("half a millisecond rounds up") << 0.0005 << 8000 << 16 << 200;
    QTest::addRow("1.4 ms round down") << 0.0014 << 8000 << 16 << 200;
    QTest::addRow("25.6 ms round up") << 0.0256 << 8000 << 26 * 16 << 400;
    QTest::addRow("frames are truncated") << 0.001 << 44100 << 88 << 200;
}

void TestCreateSnippet::statesTheSizeInWholeMilliseconds()
{
    QFETCH(const double, end);
    QFETCH(const int, rate);
    QFETCH(const int, statedSize);
    QFETCH(const int, frames);
    TestAudio audio = Mono(1000);
    audio.rate = static_cast<quint32>(rate);
    ExportSetup setup(audio);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, end), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(0, frames, WavFile::ChannelNone), statedSize));
}

void TestCreateSnippet::statesTheLowestBitsOfAHugeSize()
{
    const TestAudio audio = Mono(300, F32);
    ExportSetup setup(audio);
    // 134,217,736 s have 1,073,741,888,000 frames, of which 2,147,483,647 can be counted; times 4 they wrap to -4.
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, 134217736), WavFile::Success);
    QCOMPARE(setup.Result().mid(40, 4), LittleEndian(qint32(-4)));
}

void TestCreateSnippet::writesOnlyAHeaderForAnEmptyRange_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::addRow("end at the start") << 0.05 << 0.05;
    QTest::addRow("end before the start") << 0.1 << 0.05;
    QTest::addRow("nothing at 0") << 0.0 << 0.0;
    QTest::addRow("less than a frame") << 0.05 << 0.0501;
}

void TestCreateSnippet::writesOnlyAHeaderForAnEmptyRange()
{
    QFETCH(const double, start);
    QFETCH(const double, end);
    const TestAudio audio = Mono(1600);
    ExportSetup setup(audio);
    QCOMPARE(setup.file.CreateSnippet(setup.out, start, end), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported({}, -1));
    QVERIFY(setup.log.isEmpty());
}

void TestCreateSnippet::endsAtTheEndOfTheFile()
{
    TestAudio audio = Mono(450);
    audio.statedDataSize = 100000;
    audio.trailer = "x";
    ExportSetup setup(audio);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, setup.file.GetDuration()), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(0, 450, WavFile::ChannelNone), 100000));
    QCOMPARE(QStringList(setup.log), QStringList({Creating(0), Creating(0), Creating(0)}));
}

void TestCreateSnippet::copiesAWholeLastBlockBehindTheAudio()
{
    TestAudio audio = Mono(250);
    audio.trailer = QByteArray(1000, '\x01');
    ExportSetup setup(audio);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, setup.file.GetDuration()), WavFile::Success);
    QCOMPARE(setup.Result(),
             audio.Exported(audio.ExportedData(0, 250, WavFile::ChannelNone) + QByteArray(300, '\x01'), 31 * 16));
}

/** A time before the audio leads into the header, whose bytes are taken for samples. A time before the file leads
 *  nowhere. */
void TestCreateSnippet::startsBeforeTheAudioForANegativeTime()
{
    const TestAudio audio = Mono(1600);
    ExportSetup setup(audio);
    QCOMPARE(setup.file.CreateSnippet(setup.out, -0.002, 0.02), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.File().mid(12, 400), 22 * 16));
    QCOMPARE(setup.file.CreateSnippet(setup.out, -1, 0.02), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported({}, 1020 * 16));
}

void TestCreateSnippet::overwritesAnExistingFile()
{
    const TestAudio audio = Mono(200);
    ExportSetup setup(audio);
    QCOMPARE(setup.files.Write(u"out.wav"_s, QByteArray(5000, 'x')), setup.out);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, 0.025), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(0, 200, WavFile::ChannelNone), 400));
}

void TestCreateSnippet::reportsProgressFromTheStartOfTheFile()
{
    ExportSetup setup(Mono(1600));
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0.1, 0.2), WavFile::Success);
    // Positions 1644, 2044, 2444 and 2844 of 3244.
    QCOMPARE(QStringList(setup.log), QStringList({Creating(50), Creating(63), Creating(75), Creating(87)}));
}

void TestCreateSnippet::leavesTheSourceOpenBehindTheLastBlock()
{
    ExportSetup setup(Mono(1600));
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0.01, 0.03), WavFile::Success);
    QVERIFY(setup.file.isOpen());
    QCOMPARE(setup.file.pos(), 44 + 280 * 2);
}

void TestCreateSnippet::endsForEveryTime_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    const double infinity = std::numeric_limits<double>::infinity();
    const double times[] = {0.0, 0.05, -1.0, 1e6, -1e6, 1e300, -1e300, infinity, -infinity, std::nan("")};
    for (const double start : times) {
        for (const double end : times) {
            QTest::addRow("%g to %g", start, end) << start << end;
        }
    }
}

void TestCreateSnippet::endsForEveryTime()
{
    QFETCH(const double, start);
    QFETCH(const double, end);
    ExportSetup setup(Mono(400));
    QCOMPARE(setup.file.CreateSnippet(setup.out, start, end), WavFile::Success);
    QVERIFY(setup.Result().startsWith("RIFF"));
    QCOMPARE_LE(setup.Result().size(), 2 * 44 + 800);
}

void TestCreateSnippet::wrapsPositionsAtThirtyTwoBits()
{
    const TestAudio audio = Mono(1600, F32);
    ExportSetup setup(audio);
    // 134,217.728 s are 2^30 frames: 2^32 bytes, which wrap to 0.
    constexpr double lap = 134217.728;
    QCOMPARE(setup.file.CreateSnippet(setup.out, lap, lap + 0.05), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(audio.ExportedData(0, 400, WavFile::ChannelNone), 1600));
}

void TestCreateSnippet::endsWithSuccessForAClosedFile()
{
    const TestAudio audio = Mono(400);
    ExportSetup setup(audio);
    setup.file.close();
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, 0.05), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported({}, 800));
}

/** By what the two headers left behind, a block of 200 frames is larger than any memory. */
void TestCreateSnippet::copiesNothingAfterARefusedHeader()
{
    const TemporaryFiles files;
    const QString out = files.Path(u"out.wav"_s);
    WavFile file;
    const QByteArray data(100, 'x');
    const auto open = [&](const WavBytes& wav) { return file.Open(files.Write(u"source.wav"_s, wav.Build())); };
    QCOMPARE(open({.data = data}), WavFile::Success);
    QCOMPARE(open({.channels = 32767, .data = data}), WavFile::ErrorChannelCount);
    QCOMPARE(open({.bits = 0xFFFF, .data = data}), WavFile::ErrorInvalidFormat);
    QCOMPARE(file.CreateSnippet(out, 0, 0.00003), WavFile::Success);
    QCOMPARE_GE(QFileInfo(out).size(), 44);
    QCOMPARE_LE(QFileInfo(out).size(), 44 + 200);
}

void TestCreateSnippet::refusesItsOwnFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isRelative");
    QTest::addRow("by its path") << u"source.wav"_s << false;
    QTest::addRow("by another spelling") << u"folder/../source.wav"_s << false;
    QTest::addRow("by a relative path") << u"source.wav"_s << true;
    QTest::addRow("through a link") << u"link.wav"_s << false;
    QTest::addRow("through a linked folder") << u"linked folder/source.wav"_s << false;
    QTest::addRow("by its second name") << u"second.wav"_s << false;
}

void TestCreateSnippet::refusesItsOwnFile()
{
    QFETCH(const QString, name);
    QFETCH(const bool, isRelative);
    const TestAudio audio = Mono(400);
    ExportSetup setup(audio);
    QDir(setup.files.Path({})).mkdir(u"folder"_s);
    QFile::link(setup.file.fileName(), setup.files.Path(u"link.wav"_s));
    QFile::link(setup.files.Path({}), setup.files.Path(u"linked folder"_s));
    ::link(QFile::encodeName(setup.file.fileName()).constData(),
           QFile::encodeName(setup.files.Path(u"second.wav"_s)).constData());
    setup.file.AbortWrite();
    const QString path = setup.files.Path(name);
    const QString outPath = isRelative ? QDir::current().relativeFilePath(path) : path;
    QCOMPARE(setup.file.CreateSnippet(outPath, 0, 0.05), WavFile::ErrorCreateSnippet);
    QCOMPARE(TemporaryFiles::Read(setup.file.fileName()), audio.File());
    QVERIFY(setup.log.isEmpty());
    QVERIFY(WavFileTestAccess(setup.file).IsWriteAborted());
}

void TestCreateSnippet::failsWhereTheOutputCannotBeCreated()
{
    ExportSetup setup(Mono(400));
    QCOMPARE(setup.file.CreateSnippet(setup.files.Path(u"missing/out.wav"_s), 0, 0.05),
             WavFile::ErrorCreateSnippet);
    QCOMPARE(setup.file.CreateSnippet(setup.files.Path({}), 0, 0.05), WavFile::ErrorCreateSnippet);
    QCOMPARE(setup.file.CreateSnippet({}, 0, 0.05), WavFile::ErrorCreateSnippet);
    QVERIFY(setup.log.isEmpty());
}

void TestCreateSnippet::failsForADevice()
{
    ExportSetup setup(Mono(400));
    QCOMPARE(setup.file.CreateSnippet(u"/dev/full"_s, 0, 0.05), WavFile::ErrorCreateSnippet);
}

void TestCreateSnippet::doesNotWaitForTheReaderOfAPipe()
{
    ExportSetup setup(Mono(400));
    const QString pipe = setup.files.Path(u"pipe"_s);
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QCOMPARE(setup.file.CreateSnippet(pipe, 0, 0.05), WavFile::ErrorCreateSnippet);
}

void TestCreateSnippet::failsWhenTheOutputCannotBeFilled_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addRow("no header") << 0;
    QTest::addRow("a part of the header") << 43;
    QTest::addRow("the header alone") << 44;
    QTest::addRow("a part of the samples") << 100000;
    QTest::addRow("all but one byte") << 44 + 160000 - 1;
}

void TestCreateSnippet::failsWhenTheOutputCannotBeFilled()
{
    QFETCH(const int, bytes);
    const TestAudio audio = Mono(80000);
    ExportSetup setup(audio);
    {
        const FileSizeLimit limit(static_cast<rlim_t>(bytes));
        QCOMPARE(setup.file.CreateSnippet(setup.out, 0, 10), WavFile::ErrorCreateSnippet);
    }
    const QByteArray whole = audio.Exported(audio.ExportedData(0, 80000, WavFile::ChannelNone), 160000);
    QCOMPARE(setup.Result(), whole.left(setup.Result().size()));
    QCOMPARE_LE(setup.Result().size(), bytes);
}

void TestCreateSnippet::failsForAnUnknownSampleFormat()
{
    ExportSetup setup(Mono(400));
    WavFile fresh;
    QCOMPARE(fresh.CreateSnippet(setup.out, 0, 1), WavFile::ErrorCreateSnippet);
    WavFileTestAccess(setup.file).FileFormat().setSampleFormat(QAudioFormat::UInt8);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, 0.05), WavFile::ErrorCreateSnippet);
}

/** With 24 bits the output is Float whatever the source, so that only the missing writer stops it. */
void TestCreateSnippet::resetsTheProgressForASampleFormatWithoutWriter()
{
    ExportSetup setup(Mono(400, S24));
    WavFileTestAccess(setup.file).FileFormat().setSampleFormat(QAudioFormat::UInt8);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, 0.05), WavFile::ErrorCreateSnippet);
    QCOMPARE(QStringList(setup.log), QStringList({reset}));
}

QTEST_GUILESS_MAIN(TestCreateSnippet)
#include "tst_createsnippet.moc"
