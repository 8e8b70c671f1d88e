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
#include <thread>

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
    void init()
    {
        m_out = m_files.Path(u"out.wav"_s);
        QFile::remove(m_out);
    }

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
    void stopsAfterTheBlockDuringWhichItWasAborted_data();
    void stopsAfterTheBlockDuringWhichItWasAborted();
    void stopsWhenAbortedFromAnotherThread();
    void ignoresAnAbortBeforeItStarts();
    void ignoresTheOtherAbortFlags();
    void runsAgainAfterAnAbort();
    void translatesItsTexts();
    void holdsNoLockWhileItEmits();
    void usesTheChannelSelectedWhenItStarted();

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

private:
    QString Write(const TestAudio& audio) { return m_files.Write(u"source.wav"_s, audio.File()); }
    QByteArray Result() const { return TemporaryFiles::Read(m_out); }

    TemporaryFiles m_files;
    QString m_out;
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
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(channel);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, frames, channel), frames * audio.ExportedBytes()));
}

void TestFilterChannel::writesFloatForATwentyFourBitFile()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(300, S24))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelRight);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    WavFile written;
    QCOMPARE(written.Open(m_out), WavFile::Success);
    QCOMPARE(written.GetFileFormat().sampleFormat(), QAudioFormat::Float);
    QCOMPARE(written.GetFileFormat().channelCount(), 1);
    QCOMPARE(written.GetSampleSize(), 32);
    QCOMPARE(written.GetDataLength(), 1200);
}

/** 1001 / 44100 * 44100 is slightly less than 1001 in double precision, which leaves 1000 frames: five whole
 * blocks, so that nothing brings the last frame along. The size is truncated from the bytes and loses one of them
 * only. */
void TestFilterChannel::losesTheLastFrameWhereTheDurationComesOutShort()
{
    const TestAudio audio{.channels = 2, .rate = 44100, .frames = 1001};
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 1000, WavFile::ChannelLeft), 2001));
}

void TestFilterChannel::keepsTheFrameThatOnlyTheHeaderLoses()
{
    // Here, too, the duration comes out short, but the only block is not full and brings the frame along.
    const TestAudio audio{.channels = 2, .rate = 44100, .frames = 15};
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 15, WavFile::ChannelLeft), 29));
}

/** Blocks are whole, so chunks behind the audio are taken for more of it; the header does not count them. */
void TestFilterChannel::copiesAWholeLastBlockBehindTheAudio()
{
    TestAudio audio = Stereo(250);
    audio.trailer = Chunk{"LIST", QByteArray(1000, '\x01')}.Build();
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    // 148 frames of the chunk's body follow "LIST" and its size of 1000 bytes.
    const QByteArray behind = QByteArray("LI") + LittleEndian(quint16(1000)) + QByteArray(148 * 2, '\x01');
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 250, WavFile::ChannelLeft) + behind, 500));
}

void TestFilterChannel::takesWideSamplesOfAnyStatedWidth_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("statedSize");
    // The header takes the frames for as many as the stated width gives.
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
    WavFile file;
    QCOMPARE(file.Open(m_files.Write(u"source.wav"_s, bytes)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelRight);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 400, WavFile::ChannelRight), statedSize));
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
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(300))), WavFile::Success);
    file.SetSelectedChannel(channel);
    SignalLog log(file);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QVERIFY(!QFile::exists(m_out));
    QVERIFY(log.isEmpty());
}

void TestFilterChannel::doesNothingForAMonoFile()
{
    WavFile file;
    QCOMPARE(file.Open(Write({.frames = 300})), WavFile::Success);
    for (const auto channel : {WavFile::ChannelLeft, WavFile::ChannelRight, WavFile::ChannelMono}) {
        file.SetSelectedChannel(channel);
        QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
        QVERIFY(!QFile::exists(m_out));
    }
}

void TestFilterChannel::leavesAnExistingFileUntouched()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(300))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    QCOMPARE(m_files.Write(u"out.wav"_s, "kept"), m_out);
    SignalLog log(file);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), QByteArray("kept"));
    QVERIFY(log.isEmpty());
}

void TestFilterChannel::leavesItsOwnFileUntouched()
{
    const TestAudio audio = Stereo(300);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    QCOMPARE(file.FilterChannel(file.fileName()), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(file.fileName()), audio.File());
}

void TestFilterChannel::reportsProgressFromTheStartOfTheFile()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(1000))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    SignalLog log(file);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    // Positions 44, 844, 1644, 2444 and 3244 of 4044.
    QCOMPARE(QStringList(log), QStringList({Updating(1), Updating(20), Updating(40), Updating(60), Updating(80)}));
}

void TestFilterChannel::leavesTheSourceOpenBehindTheLastBlock()
{
    TestAudio audio = Stereo(250);
    audio.trailer = QByteArray(10000, 'x');
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QVERIFY(file.isOpen());
    QCOMPARE(file.pos(), 44 + 400 * 4);
}

void TestFilterChannel::stopsAfterTheBlockDuringWhichItWasAborted_data()
{
    QTest::addColumn<int>("block");
    for (const int block : {1, 2, 163, 164, 165}) {
        QTest::addRow("block %d", block) << block;
    }
}

void TestFilterChannel::stopsAfterTheBlockDuringWhichItWasAborted()
{
    QFETCH(const int, block);
    const TestAudio audio = Stereo(70000);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    SignalLog log(file);
    connect(&file, &WavFile::ProgressChanged, &file, [&] {
        if (log.size() == block) {
            file.AbortChannelFilter();
        }
    });
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, block * 200, WavFile::ChannelLeft), 140000));
    QCOMPARE(log.size(), block + 1);
    QCOMPARE(log.last(), reset);
    QCOMPARE(file.pos(), 44 + block * 800);
}

void TestFilterChannel::stopsWhenAbortedFromAnotherThread()
{
    const TestAudio audio = Stereo(70000);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelRight);
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
    WavFile::AudioEngineReturnValue result = WavFile::ErrorFilterChannel;
    std::thread worker([&] { result = file.FilterChannel(m_out); });
    isRunning.acquire();
    file.AbortChannelFilter();
    isAborted.release();
    worker.join();
    QCOMPARE(result, WavFile::Success);
    QCOMPARE(count, 2);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 200, WavFile::ChannelRight), 140000));
}

void TestFilterChannel::ignoresAnAbortBeforeItStarts()
{
    const TestAudio audio = Stereo(300);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    file.AbortChannelFilter();
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result().size(), 44 + 600);
    QVERIFY(!WavFileTestAccess(file).IsChannelFilterAborted());
}

void TestFilterChannel::ignoresTheOtherAbortFlags()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(1000))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    connect(&file, &WavFile::ProgressChanged, &file, &WavFile::AbortRead);
    connect(&file, &WavFile::ProgressChanged, &file, &WavFile::AbortWrite);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result().size(), 44 + 2000);
    QVERIFY(WavFileTestAccess(file).IsReadAborted());
    QVERIFY(WavFileTestAccess(file).IsWriteAborted());
}

void TestFilterChannel::runsAgainAfterAnAbort()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(1000))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    const auto connection = connect(&file, &WavFile::ProgressChanged, &file, &WavFile::AbortChannelFilter);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result().size(), 44 + 400);
    disconnect(connection);
    QVERIFY(QFile::remove(m_out));
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result().size(), 44 + 2000);
}

void TestFilterChannel::translatesItsTexts()
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
    QCOMPARE(file.Open(Write(Stereo(1000))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    SignalLog log(file);
    connect(&file, &WavFile::ProgressChanged, &file, &WavFile::AbortChannelFilter);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(QStringList(log), QStringList({u"1 of 0..100 WavFile/Updating..."_s, u"0 of 0..100 WavFile/"_s}));
}

void TestFilterChannel::holdsNoLockWhileItEmits()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(1000))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    WavFileTestAccess access(file);
    int count = 0;
    connect(&file, &WavFile::ProgressChanged, &file, [&] {
        QVERIFY(access.Mutex().tryLock());
        access.Mutex().unlock();
        QVERIFY(access.DeviceMutex().tryLock());
        access.DeviceMutex().unlock();
        ++count;
    });
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(count, 5);
}

void TestFilterChannel::usesTheChannelSelectedWhenItStarted()
{
    const TestAudio audio = Stereo(70000);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelRight);
    connect(&file, &WavFile::ProgressChanged, &file, [&] { file.SetSelectedChannel(WavFile::ChannelNone); });
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 70000, WavFile::ChannelRight), 140000));
}

void TestFilterChannel::endsWithSuccessWhereTheFileEndsEarly()
{
    TestAudio audio = Stereo(1050);
    audio.statedDataSize = 40000;
    audio.trailer = "abc";
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    SignalLog log(file);
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), audio.Exported(audio.ExportedData(0, 1050, WavFile::ChannelLeft), 20000));
    QCOMPARE(log.size(), 6);
}

void TestFilterChannel::endsWithSuccessForAClosedFile()
{
    const TestAudio audio = Stereo(300);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    file.close();
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), audio.Exported({}, 600));
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
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(300))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    WavFileTestAccess(file).Duration() = duration;
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QVERIFY(Result().startsWith("RIFF"));
}

void TestFilterChannel::writesOnlyAHeaderWhenTheEndWraps()
{
    const TestAudio audio = Stereo(300);
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    // 20000 s of 131072 bytes are more than 2 GiB, and become negative.
    WavFileTestAccess(file).Duration() = 20000;
    QCOMPARE(file.FilterChannel(m_out), WavFile::Success);
    QCOMPARE(Result(), audio.Exported({}, 1310720000));
}

void TestFilterChannel::failsWhereTheOutputCannotBeCreated()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(300))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    SignalLog log(file);
    QCOMPARE(file.FilterChannel(m_files.Path(u"missing/out.wav"_s)), WavFile::ErrorFilterChannel);
    QCOMPARE(file.FilterChannel({}), WavFile::ErrorFilterChannel);
    QVERIFY(log.isEmpty());
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
    WavFile file;
    QCOMPARE(file.Open(Write(audio)), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    {
        const FileSizeLimit limit(static_cast<rlim_t>(bytes));
        QCOMPARE(file.FilterChannel(m_out), WavFile::ErrorFilterChannel);
    }
    // What was written stays.
    const QByteArray whole = audio.Exported(audio.ExportedData(0, 70000, WavFile::ChannelLeft), 140000);
    QCOMPARE(Result(), whole.left(Result().size()));
    QCOMPARE_LE(Result().size(), bytes);
}

void TestFilterChannel::failsForAnUnknownSampleFormat()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(300))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    WavFileTestAccess(file).FileFormat().setSampleFormat(QAudioFormat::UInt8);
    QCOMPARE(file.FilterChannel(m_out), WavFile::ErrorFilterChannel);
}

/** With 24 bits the output is Float whatever the source, so that only the missing writer stops it. */
void TestFilterChannel::resetsTheProgressForASampleFormatWithoutWriter()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Stereo(300, S24))), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    WavFileTestAccess(file).FileFormat().setSampleFormat(QAudioFormat::UInt8);
    SignalLog log(file);
    QCOMPARE(file.FilterChannel(m_out), WavFile::ErrorFilterChannel);
    QCOMPARE(QStringList(log), QStringList({reset}));
}

QTEST_GUILESS_MAIN(TestFilterChannel)
#include "tst_filterchannel.moc"
