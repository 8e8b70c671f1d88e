#include "tests/support/FileSizeLimit.h"
#include "tests/support/SignalLog.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/TestAudio.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtCore/QDir>
#include <QtCore/QTranslator>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <semaphore>
#include <sys/stat.h>
#include <thread>
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
    void init()
    {
        m_out = m_files.Path(u"out.wav"_s);
        QFile::remove(m_out);
    }

    void writesTheRange_data();
    void writesTheRange();
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
    void stopsBetweenBlocksWhenAborted_data();
    void stopsBetweenBlocksWhenAborted();
    void resetsTheProgressWhenAbortedAtAnEarlyEnd();
    void finishesWhenAbortedDuringTheLastBlock();
    void stopsWhenAbortedFromAnotherThread();
    void ignoresAnAbortBeforeItStarts();
    void ignoresTheOtherAbortFlags();
    void translatesItsTexts();
    void usesTheChannelSelectedWhenItStarted();

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

private:
    QString Write(const TestAudio& audio) { return m_files.Write(u"source.wav"_s, audio.File()); }
    QByteArray Result() const { return TemporaryFiles::Read(m_out); }

    TemporaryFiles m_files;
    QString m_out;
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
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(channel);
    QCOMPARE(file.CreateSnippet(m_out, start, end), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(firstFrame, endFrame, channel),
                                      statedFrames * audio.ExportedBytes()));
}

void TestCreateSnippet::writesFloatForATwentyFourBitFile()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(300, S24))), WavFile::Success);
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.025), WavFile::Success);
    WavFile written;
    QCOMPARE(written.Open(m_out), WavFile::Success);
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
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    QCOMPARE(file.CreateSnippet(m_out, 0, end), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, frames, WavFile::ChannelNone), statedSize));
}

void TestCreateSnippet::statesTheLowestBitsOfAHugeSize()
{
    const TestAudio audio = Mono(300, F32);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    // 134,217,736 s have 1,073,741,888,000 frames, of which 2,147,483,647 can be counted; times 4 they wrap to -4.
    QCOMPARE(file.CreateSnippet(m_out, 0, 134217736), WavFile::Success);
    QCOMPARE(Result().mid(40, 4), LittleEndian(qint32(-4)));
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
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    SignalLog log(file);
    QCOMPARE(file.CreateSnippet(m_out, start, end), WavFile::Success);
    QCOMPARE(Result(), audio.Exported({}, -1));
    QVERIFY(log.isEmpty());
}

void TestCreateSnippet::endsAtTheEndOfTheFile()
{
    TestAudio audio = Mono(450);
    audio.statedDataSize = 100000;
    audio.trailer = "x";
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    SignalLog log(file);
    QCOMPARE(file.CreateSnippet(m_out, 0, file.GetDuration()), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 450, WavFile::ChannelNone), 100000));
    QCOMPARE(QStringList(log), QStringList({Creating(0), Creating(0), Creating(0)}));
}

void TestCreateSnippet::copiesAWholeLastBlockBehindTheAudio()
{
    TestAudio audio = Mono(250);
    audio.trailer = QByteArray(1000, '\x01');
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    QCOMPARE(file.CreateSnippet(m_out, 0, file.GetDuration()), WavFile::Success);
    QCOMPARE(Result(),
             audio.Exported(audio.ExportedData(0, 250, WavFile::ChannelNone) + QByteArray(300, '\x01'), 31 * 16));
}

/** A time before the audio leads into the header, whose bytes are taken for samples; before the file, to nothing.
 */
void TestCreateSnippet::startsBeforeTheAudioForANegativeTime()
{
    const TestAudio audio = Mono(1600);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    QCOMPARE(file.CreateSnippet(m_out, -0.002, 0.02), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.File().mid(12, 400), 22 * 16));
    QCOMPARE(file.CreateSnippet(m_out, -1, 0.02), WavFile::Success);
    QCOMPARE(Result(), audio.Exported({}, 1020 * 16));
}

void TestCreateSnippet::overwritesAnExistingFile()
{
    const TestAudio audio = Mono(200);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    QCOMPARE(m_files.Write(u"out.wav"_s, QByteArray(5000, 'x')), m_out);
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.025), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 200, WavFile::ChannelNone), 400));
}

void TestCreateSnippet::reportsProgressFromTheStartOfTheFile()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(1600))), WavFile::Success);
    SignalLog log(file);
    QCOMPARE(file.CreateSnippet(m_out, 0.1, 0.2), WavFile::Success);
    // Positions 1644, 2044, 2444 and 2844 of 3244.
    QCOMPARE(QStringList(log), QStringList({Creating(50), Creating(63), Creating(75), Creating(87)}));
}

void TestCreateSnippet::leavesTheSourceOpenBehindTheLastBlock()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(1600))), WavFile::Success);
    QCOMPARE(file.CreateSnippet(m_out, 0.01, 0.03), WavFile::Success);
    QVERIFY(file.isOpen());
    QCOMPARE(file.pos(), 44 + 280 * 2);
}

void TestCreateSnippet::stopsBetweenBlocksWhenAborted_data()
{
    QTest::addColumn<int>("block");
    for (const int block : {1, 2, 326, 327, 328}) {
        QTest::addRow("block %d", block) << block;
    }
}

void TestCreateSnippet::stopsBetweenBlocksWhenAborted()
{
    QFETCH(const int, block);
    const TestAudio audio = Mono(80000);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    SignalLog log(file);
    connect(&file, &WavFile::ProgressChanged, &file, [&] {
        if (log.size() == block) {
            file.AbortWrite();
        }
    });
    QCOMPARE(file.CreateSnippet(m_out, 0, 10), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, block * 200, WavFile::ChannelNone), 160000));
    QCOMPARE(log.size(), block + 1);
    QCOMPARE(log.last(), reset);
    QCOMPARE(file.pos(), 44 + block * 400);
}

void TestCreateSnippet::resetsTheProgressWhenAbortedAtAnEarlyEnd()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(200))), WavFile::Success);
    SignalLog log(file);
    connect(&file, &WavFile::ProgressChanged, &file, &WavFile::AbortWrite);
    QCOMPARE(file.CreateSnippet(m_out, 0, 1), WavFile::Success);
    QCOMPARE(QStringList(log), QStringList({Creating(0), reset}));
}

void TestCreateSnippet::finishesWhenAbortedDuringTheLastBlock()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(200))), WavFile::Success);
    SignalLog log(file);
    connect(&file, &WavFile::ProgressChanged, &file, &WavFile::AbortWrite);
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.025), WavFile::Success);
    QCOMPARE(QStringList(log), QStringList({Creating(9)}));
}

void TestCreateSnippet::stopsWhenAbortedFromAnotherThread()
{
    const TestAudio audio = Mono(80000);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    std::binary_semaphore isRunning(0);
    std::binary_semaphore isAborted(0);
    int count = 0;
    connect(
        &file, &WavFile::ProgressChanged, &file,
        [&] {
            if (++count == 1) {
                isRunning.release();
                isAborted.acquire();
            }
        },
        Qt::DirectConnection);
    WavFile::AudioEngineReturnValue result = WavFile::ErrorCreateSnippet;
    std::thread worker([&] { result = file.CreateSnippet(m_out, 0, 10); });
    isRunning.acquire();
    file.AbortWrite();
    isAborted.release();
    worker.join();
    QCOMPARE(result, WavFile::Success);
    QCOMPARE(count, 2);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 200, WavFile::ChannelNone), 160000));
}

void TestCreateSnippet::ignoresAnAbortBeforeItStarts()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(400))), WavFile::Success);
    file.AbortWrite();
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.05), WavFile::Success);
    QCOMPARE(Result().size(), 44 + 800);
    QVERIFY(!WavFileTestAccess(file).IsWriteAborted());
}

void TestCreateSnippet::ignoresTheOtherAbortFlags()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(400))), WavFile::Success);
    connect(&file, &WavFile::ProgressChanged, &file, &WavFile::AbortRead);
    connect(&file, &WavFile::ProgressChanged, &file, &WavFile::AbortChannelFilter);
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.05), WavFile::Success);
    QCOMPARE(Result().size(), 44 + 800);
    QVERIFY(WavFileTestAccess(file).IsReadAborted());
    QVERIFY(WavFileTestAccess(file).IsChannelFilterAborted());
}

void TestCreateSnippet::translatesItsTexts()
{
    class Translator : public QTranslator
    {
    public:
        QString translate(const char* context, const char* text, const char*, int) const override
        {
            return QLatin1StringView(context) + u'/' + QLatin1StringView(text);
        }
        bool isEmpty() const override { return false; }
    } translator;
    QCoreApplication::installTranslator(&translator);
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(400))), WavFile::Success);
    SignalLog log(file);
    connect(&file, &WavFile::ProgressChanged, &file, &WavFile::AbortWrite);
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.05), WavFile::Success);
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(QStringList(log),
             QStringList({u"5 of 0..100 WavFile/Creating snippet..."_s, u"0 of 0..100 WavFile/"_s}));
}

void TestCreateSnippet::usesTheChannelSelectedWhenItStarted()
{
    TestAudio audio = Mono(80000);
    audio.channels = 2;
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelRight);
    connect(&file, &WavFile::ProgressChanged, &file, [&] { file.SetSelectedChannel(WavFile::ChannelLeft); });
    QCOMPARE(file.CreateSnippet(m_out, 0, 10), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 80000, WavFile::ChannelRight), 160000));
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
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(400))), WavFile::Success);
    QCOMPARE(file.CreateSnippet(m_out, start, end), WavFile::Success);
    QVERIFY(Result().startsWith("RIFF"));
    QCOMPARE_LE(Result().size(), 2 * 44 + 800);
}

void TestCreateSnippet::wrapsPositionsAtThirtyTwoBits()
{
    const TestAudio audio = Mono(1600, F32);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    // 134,217.728 s are 2^30 frames: 2^32 bytes, which wrap to 0.
    constexpr double lap = 134217.728;
    QCOMPARE(file.CreateSnippet(m_out, lap, lap + 0.05), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 400, WavFile::ChannelNone), 1600));
}

void TestCreateSnippet::endsWithSuccessForAClosedFile()
{
    const TestAudio audio = Mono(400);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.close();
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.05), WavFile::Success);
    QCOMPARE(Result(), audio.Exported({}, 800));
}

/** What the two headers left behind makes blocks of 200 frames that are larger than any memory. */
void TestCreateSnippet::copiesNothingAfterARefusedHeader()
{
    WavFile file;
    const QByteArray data(100, 'x');
    const auto open = [&](const WavBytes& wav) { return file.Open(m_files.Write(u"source.wav"_s, wav.Build())); };
    QCOMPARE(open({.data = data}), WavFile::Success);
    QCOMPARE(open({.channels = 32767, .data = data}), WavFile::ErrorChannelCount);
    QCOMPARE(open({.bits = 0xFFFF, .data = data}), WavFile::ErrorInvalidFormat);
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.00003), WavFile::Success);
    QCOMPARE_GE(Result().size(), 44);
    QCOMPARE_LE(Result().size(), 44 + 200);
}

void TestCreateSnippet::refusesItsOwnFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("by its path") << m_files.Path(u"source.wav"_s);
    QTest::addRow("by another spelling") << m_files.Path(u"folder/../source.wav"_s);
    QTest::addRow("by a relative path") << QDir::current().relativeFilePath(m_files.Path(u"source.wav"_s));
    QTest::addRow("through a link") << m_files.Path(u"link.wav"_s);
    QTest::addRow("through a linked folder") << m_files.Path(u"linked folder/source.wav"_s);
    QTest::addRow("by its second name") << m_files.Path(u"second.wav"_s);
}

void TestCreateSnippet::refusesItsOwnFile()
{
    QFETCH(const QString, name);
    const TestAudio audio = Mono(400);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    QDir(m_files.Path({})).mkdir(u"folder"_s);
    QFile::link(file.fileName(), m_files.Path(u"link.wav"_s));
    QFile::link(m_files.Path({}), m_files.Path(u"linked folder"_s));
    ::link(QFile::encodeName(file.fileName()).constData(),
           QFile::encodeName(m_files.Path(u"second.wav"_s)).constData());
    file.AbortWrite();
    SignalLog log(file);
    QCOMPARE(file.CreateSnippet(name, 0, 0.05), WavFile::ErrorCreateSnippet);
    QCOMPARE(TemporaryFiles::Read(file.fileName()), audio.File());
    QVERIFY(log.isEmpty());
    QVERIFY(WavFileTestAccess(file).IsWriteAborted());
}

void TestCreateSnippet::failsWhereTheOutputCannotBeCreated()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(400))), WavFile::Success);
    SignalLog log(file);
    QCOMPARE(file.CreateSnippet(m_files.Path(u"missing/out.wav"_s), 0, 0.05), WavFile::ErrorCreateSnippet);
    QCOMPARE(file.CreateSnippet(m_files.Path({}), 0, 0.05), WavFile::ErrorCreateSnippet);
    QCOMPARE(file.CreateSnippet({}, 0, 0.05), WavFile::ErrorCreateSnippet);
    QVERIFY(log.isEmpty());
}

void TestCreateSnippet::failsForADevice()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(400))), WavFile::Success);
    QCOMPARE(file.CreateSnippet(u"/dev/full"_s, 0, 0.05), WavFile::ErrorCreateSnippet);
}

void TestCreateSnippet::doesNotWaitForTheReaderOfAPipe()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(400))), WavFile::Success);
    const QString pipe = m_files.Path(u"pipe"_s);
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QCOMPARE(file.CreateSnippet(pipe, 0, 0.05), WavFile::ErrorCreateSnippet);
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
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    {
        const FileSizeLimit limit(static_cast<rlim_t>(bytes));
        QCOMPARE(file.CreateSnippet(m_out, 0, 10), WavFile::ErrorCreateSnippet);
    }
    const QByteArray whole = audio.Exported(audio.ExportedData(0, 80000, WavFile::ChannelNone), 160000);
    QCOMPARE(Result(), whole.left(Result().size()));
    QCOMPARE_LE(Result().size(), bytes);
}

void TestCreateSnippet::failsForAnUnknownSampleFormat()
{
    WavFile fresh;
    QCOMPARE(fresh.CreateSnippet(m_out, 0, 1), WavFile::ErrorCreateSnippet);
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(400))), WavFile::Success);
    WavFileTestAccess(file).FileFormat().setSampleFormat(QAudioFormat::UInt8);
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.05), WavFile::ErrorCreateSnippet);
}

/** With 24 bits the output is Float whatever the source, so that only the missing writer stops it. */
void TestCreateSnippet::resetsTheProgressForASampleFormatWithoutWriter()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Mono(400, S24))), WavFile::Success);
    WavFileTestAccess(file).FileFormat().setSampleFormat(QAudioFormat::UInt8);
    SignalLog log(file);
    QCOMPARE(file.CreateSnippet(m_out, 0, 0.05), WavFile::ErrorCreateSnippet);
    QCOMPARE(QStringList(log), QStringList({reset}));
}

QTEST_GUILESS_MAIN(TestCreateSnippet)
#include "tst_createsnippet.moc"
