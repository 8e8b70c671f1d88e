#include "tests/support/AudioFormat.h"
#include "tests/support/ContextTranslator.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtCore/QMetaEnum>
#include <QtTest/QtTest>

#include <chrono>
#include <cmath>
#include <csignal>
#include <future>
#include <thread>

#ifdef Q_OS_UNIX
#    include <sys/resource.h>
#    include <sys/stat.h>
#endif

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

static_assert(WavFile::Success == 0);
static_assert(WavFile::ErrorInvalidFormat == -1);
static_assert(WavFile::ErrorOpenFile == -2);
static_assert(WavFile::ErrorReadFile == -3);
static_assert(WavFile::ErrorWriteHeader == -4);
static_assert(WavFile::ErrorCreateSnippet == -5);
static_assert(WavFile::ErrorFilterChannel == -6);
static_assert(WavFile::ErrorChannelCount == -7);
static_assert(WavFile::ChannelNone == 0);
static_assert(WavFile::ChannelMono == 1);
static_assert(WavFile::ChannelLeft == 2);
static_assert(WavFile::ChannelRight == 3);
static_assert(WavFile::ChannelLeftRight == 4);
static_assert(std::is_convertible_v<WavFile::AudioEngineReturnValue, int>);
static_assert(std::is_base_of_v<QFile, WavFile>);
static_assert(std::has_virtual_destructor_v<WavFile>);

// The exact signatures that programs and derived classes are compiled against.
namespace {

using Result = WavFile::AudioEngineReturnValue;

template<auto member, typename Type>
constexpr bool Is = std::is_same_v<decltype(member), Type>;

static_assert(std::is_constructible_v<WavFile, QObject*>);
static_assert(!std::is_copy_constructible_v<WavFile>);
static_assert(Is<&WavFile::operator=, WavFile& (WavFile::*)(const WavFile&)>);
static_assert(Is<&WavFile::Open, Result (WavFile::*)(const QString&)>);
static_assert(Is<&WavFile::GetDataLength, qint64 (WavFile::*)() const>);
static_assert(Is<&WavFile::GetDataOffset, qint64 (WavFile::*)() const>);
static_assert(Is<&WavFile::GetDuration, double (WavFile::*)() const>);
static_assert(Is<&WavFile::GetFileFormat, const QAudioFormat& (WavFile::*)() const>);
static_assert(Is<&WavFile::GetSampleSize, int (WavFile::*)() const>);
static_assert(Is<&WavFile::GetSelectedChannel, WavFile::ChannelFormat (WavFile::*)() const>);
static_assert(Is<&WavFile::SetSelectedChannel, void (WavFile::*)(WavFile::ChannelFormat)>);
static_assert(Is<&WavFile::GetSamples, QList<float> (WavFile::*)() const>);
static_assert(Is<&WavFile::ReadData, void (WavFile::*)(double, double, int)>);
static_assert(Is<&WavFile::AbortRead, void (WavFile::*)()>);
static_assert(Is<&WavFile::AbortWrite, void (WavFile::*)()>);
static_assert(Is<&WavFile::AbortChannelFilter, void (WavFile::*)()>);
static_assert(Is<&WavFile::Convert, bool (WavFile::*)(const QAudioFormat&, const QString&)>);
static_assert(Is<&WavFile::CreateSnippet, Result (WavFile::*)(const QString&, double, double)>);
static_assert(Is<&WavFile::FilterChannel, Result (WavFile::*)(const QString&)>);
static_assert(Is<&WavFile::NewData, void (WavFile::*)()>);
static_assert(Is<&WavFile::ProgressChanged, void (WavFile::*)(int, int, int, QString)>);
static_assert(Is<&WavFile::tr, QString (*)(const char*, const char*, int)>);

/** Compiles only where Open() is virtual. */
struct Overridden : WavFile
{
    Result Open(const QString& fileName) override { return WavFile::Open(fileName); }
};

} // namespace

namespace {

/** One second of 16-bit stereo at 48 kHz. */
QByteArray OneSecond()
{
    return WavBytes{.channels = 2, .sampleRate = 48000, .data = QByteArray(192000, '\0')}.Build();
}

} // namespace

class TestWavFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsClosedWithEverythingZero();
    void belongsToItsParent();
    void isNamedWavFileForTheMetaObject();
    void declaresItsSignalsInOrder();
    void translatesInItsOwnContext();
    void storesChannelFormatsInVariants();

    void opensAFile();
    void keepsTheDurationForAFileWithoutAudioOfItsOwn();
    void lastsOneSecondForOneSecondOfBytes();
    void computesDurations_data();
    void computesDurations();
    void leavesADamagedRateToTheDuration_data();
    void leavesADamagedRateToTheDuration();
    void opensAFileThatEndsBehindWaveWithEverythingZero();
    void keepsTheFormerFormatForAFileWithoutFormat();
    void takesTheValuesOfTheSecondFile();
    void keepsSamplesChannelAndFlagsWhenOpening();
    void staysOpenWithTheReadFieldsWhenTheHeaderIsRefused_data();
    void staysOpenWithTheReadFieldsWhenTheHeaderIsRefused();
    void saysWhatQFileSaysOfAFileThatCannotBeOpened_data();
    void saysWhatQFileSaysOfAFileThatCannotBeOpened();
    void refusesWhatIsNoRegularFile_data();
    void refusesWhatIsNoRegularFile();
    void closesTheFormerFileWhenTheNextCannotBeOpened();
    void opensAFileOfTheResourceSystem();
    void opensThroughASymbolicLink();
    void walksOverAChunkOfAlmostFourGiB();
    void readsTheHeaderFromTheStart();

    void copiesTheAudioButNotTheFile();
    void leavesSampleSizeAndChannelFilterFlagWhenCopying();
    void survivesCopyingToItself();
    void copiesInBothDirectionsAtOnce();

    void setsOnlyTheMatchingAbortFlag();
    void waitsForTheLockToAbort();
    void keepsTheSelectedChannel();
    void sharesItsSamplesUnderTheLock();

    void writesTheHeaderAndGoesBehindIt();
    void writesThirtyTwoBitsForATwentyFourBitFile();
    void doesNotRevisitTheHeader();
    void writesNothingForAFormatWithoutEncoding();
    void reportsAHeaderThatCannotBeWritten();
    void reportsAHeaderThatDoesNotFit();

private:
    QString Write(const QByteArray& bytes, const QString& name = u"file.wav"_s)
    {
        return m_files.Write(name, bytes);
    }

    TemporaryFiles m_files;
};

void TestWavFile::startsClosedWithEverythingZero()
{
    WavFile file(nullptr);
    QVERIFY(!file.isOpen());
    QVERIFY(file.fileName().isEmpty());
    QCOMPARE(file.GetFileFormat().sampleFormat(), QAudioFormat::Unknown);
    QCOMPARE(file.GetFileFormat().channelCount(), 0);
    QCOMPARE(file.GetFileFormat().sampleRate(), 0);
    QCOMPARE(file.GetFileFormat().channelConfig(), QAudioFormat::ChannelConfigUnknown);
    QCOMPARE(file.GetDataOffset(), 0);
    QCOMPARE(file.GetDataLength(), 0);
    QCOMPARE(file.GetDuration(), 0.0);
    QCOMPARE(file.GetSampleSize(), 0);
    QCOMPARE(file.GetSelectedChannel(), WavFile::ChannelNone);
    QVERIFY(file.GetSamples().isEmpty());
    WavFileTestAccess access(file);
    QVERIFY(!access.IsReadAborted());
    QVERIFY(!access.IsWriteAborted());
    QVERIFY(!access.IsChannelFilterAborted());
}

void TestWavFile::belongsToItsParent()
{
    QObject parent;
    const auto* file = new WavFile(&parent);
    QCOMPARE(file->parent(), &parent);
}

void TestWavFile::isNamedWavFileForTheMetaObject()
{
    const WavFile file;
    QCOMPARE(file.metaObject()->className(), "WavFile");
    QVERIFY(file.inherits("QFile"));
}

void TestWavFile::declaresItsSignalsInOrder()
{
    const QMetaObject& meta = WavFile::staticMetaObject;
    const int first = meta.methodOffset();
    QCOMPARE(meta.method(first).methodSignature(), "NewData()"_ba);
    QCOMPARE(meta.method(first + 1).methodSignature(), "ProgressChanged(int,int,int,QString)"_ba);
    QCOMPARE(meta.method(first + 1).parameterNames(), QByteArrayList({"progress", "min", "max", "text"}));
    QCOMPARE(meta.method(first + 1).methodType(), QMetaMethod::Signal);
}

void TestWavFile::translatesInItsOwnContext()
{
    const ContextTranslator translator;
    QCOMPARE(WavFile::tr("Updating...", nullptr, -1), u"WavFile/Updating..."_s);
}

void TestWavFile::storesChannelFormatsInVariants()
{
    const QVariant variant = QVariant::fromValue(WavFile::ChannelRight);
    QCOMPARE(variant.typeName(), "WavFile::ChannelFormat");
    QCOMPARE(variant.value<WavFile::ChannelFormat>(), WavFile::ChannelRight);
    QCOMPARE(variant.toInt(), 3);
}

void TestWavFile::opensAFile()
{
    WavFile file;
    const QString path = Write(
        WavBytes{.formatTag = 0xFFFE, .channels = 2, .bits = 24, .extension = Extension(PcmGuid()), .data = "x"}
            .Build());
    QCOMPARE(file.Open(path), WavFile::Success);
    QVERIFY(file.isOpen());
    QCOMPARE(file.openMode(), QIODevice::ReadOnly);
    QCOMPARE(file.fileName(), path);
    QCOMPARE(file.GetFileFormat(), Format(QAudioFormat::Int32, 2, 44100));
    QCOMPARE(file.GetSampleSize(), 24);
    QCOMPARE(file.GetDataOffset(), 68);
    QCOMPARE(file.GetDataLength(), 1);
    QCOMPARE(file.pos(), 68);
}

void TestWavFile::keepsTheDurationForAFileWithoutAudioOfItsOwn()
{
    WavFile file;
    QCOMPARE(file.Open(Write(OneSecond())), WavFile::Success);
    QCOMPARE(file.Open(Write(WavBytes{.bits = 4}.Build())), WavFile::ErrorInvalidFormat);
    QCOMPARE(file.Open(m_files.Write(u"bare.wav"_s, "RIFF1234WAVE")), WavFile::Success);
    QVERIFY(file.GetDuration() == 1.0);
}

void TestWavFile::lastsOneSecondForOneSecondOfBytes()
{
    WavFile file;
    QCOMPARE(file.Open(Write(OneSecond())), WavFile::Success);
    QVERIFY(file.GetDuration() == 1.0);
}

void TestWavFile::computesDurations_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<double>("duration");
    const auto add = [](const char* name, WavBytes file, double duration) {
        if (file.statedDataSize == realSize) {
            file.statedDataSize = 192000;
        }
        QTest::newRow(name) << file.Build() << duration;
    };
    add("16-bit mono", {.sampleRate = 48000}, 2.0);
    add("24-bit stereo counts three bytes", {.channels = 2, .sampleRate = 32000, .bits = 24}, 1.0);
    add("32-bit stereo", {.channels = 2, .sampleRate = 48000, .bits = 32}, 0.5);
    add("float that says 16 bits counts two bytes", {.formatTag = 3, .sampleRate = 48000, .bits = 16}, 2.0);
    add("no data", {.statedDataSize = 0}, 0.0);
    add("all ones at one sample a second", {.sampleRate = 1, .bits = 32, .statedDataSize = 0xFFFFFFFF},
        1073741823.75);
}

void TestWavFile::computesDurations()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const double, duration);
    WavFile file;
    QCOMPARE(file.Open(Write(bytes)), WavFile::Success);
    QVERIFY2(file.GetDuration() == duration, qPrintable(QString::number(file.GetDuration(), 'g', 17)));
}

void TestWavFile::leavesADamagedRateToTheDuration_data()
{
    QTest::addColumn<quint32>("rate");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<double>("duration");
    QTest::newRow("rate 0 with data") << 0U << QByteArray("xx") << double(INFINITY);
    QTest::newRow("rate 0 without data") << 0U << QByteArray() << double(NAN);
    QTest::newRow("rate that reads as -1") << 0xFFFFFFFFU << QByteArray("xxxx") << -2.0;
    QTest::newRow("rate that reads as the smallest int") << 0x80000000U << QByteArray("xx") << -1.0 / 2147483648.0;
}

void TestWavFile::leavesADamagedRateToTheDuration()
{
    QFETCH(const quint32, rate);
    QFETCH(const QByteArray, data);
    QFETCH(const double, duration);
    WavFile file;
    QCOMPARE(file.Open(Write(WavBytes{.sampleRate = rate, .data = data}.Build())), WavFile::Success);
    QCOMPARE(std::isnan(file.GetDuration()), std::isnan(duration));
    QVERIFY(std::isnan(duration) || file.GetDuration() == duration);
}

void TestWavFile::opensAFileThatEndsBehindWaveWithEverythingZero()
{
    WavFile file;
    QCOMPARE(file.Open(Write("RIFF1234WAVE")), WavFile::Success);
    QVERIFY(file.isOpen());
    QCOMPARE(file.GetDataOffset(), 12);
    QCOMPARE(file.GetDataLength(), 0);
    QCOMPARE(file.GetDuration(), 0.0);
    QCOMPARE(file.GetSampleSize(), 0);
    QCOMPARE(file.GetFileFormat().channelCount(), 0);
    QCOMPARE(file.GetFileFormat().sampleFormat(), QAudioFormat::Unknown);
}

void TestWavFile::keepsTheFormerFormatForAFileWithoutFormat()
{
    WavFile file;
    QCOMPARE(file.Open(Write(OneSecond())), WavFile::Success);
    QCOMPARE(file.Open(Write("RIFF1234WAVE", u"bare.wav"_s)), WavFile::Success);
    QCOMPARE(file.GetFileFormat(), Format(QAudioFormat::Int16, 2, 48000));
    QCOMPARE(file.GetSampleSize(), 16);
    QCOMPARE(file.GetDataLength(), 192000);
    QCOMPARE(file.GetDataOffset(), 12);
    QVERIFY(file.GetDuration() == 1.0);
}

void TestWavFile::takesTheValuesOfTheSecondFile()
{
    WavFile file;
    QCOMPARE(file.Open(Write(OneSecond())), WavFile::Success);
    const QString second =
        Write(WavBytes{.sampleRate = 8000, .bits = 24, .data = QByteArray(12000, 'x')}.Build(), u"second.wav"_s);
    QCOMPARE(file.Open(second), WavFile::Success);
    QCOMPARE(file.fileName(), second);
    QCOMPARE(file.GetFileFormat(), Format(QAudioFormat::Int32, 1, 8000));
    QCOMPARE(file.GetSampleSize(), 24);
    QCOMPARE(file.GetDataLength(), 12000);
    QVERIFY(file.GetDuration() == 0.5);
}

void TestWavFile::keepsSamplesChannelAndFlagsWhenOpening()
{
    WavFile file;
    const QString path = Write(OneSecond());
    QCOMPARE(file.Open(path), WavFile::Success);
    file.ReadData(0.0, 0.1, 100);
    const QList<float> samples = file.GetSamples();
    QVERIFY(!samples.isEmpty());
    file.SetSelectedChannel(WavFile::ChannelRight);
    file.AbortRead();
    file.AbortWrite();
    file.AbortChannelFilter();

    QCOMPARE(file.Open(path), WavFile::Success);
    QCOMPARE(file.GetSamples(), samples);
    QCOMPARE(file.GetSelectedChannel(), WavFile::ChannelRight);
    WavFileTestAccess access(file);
    QVERIFY(access.IsReadAborted());
    QVERIFY(access.IsWriteAborted());
    QVERIFY(access.IsChannelFilterAborted());
}

void TestWavFile::staysOpenWithTheReadFieldsWhenTheHeaderIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("sampleSize");
    QTest::addColumn<int>("channelCount");
    QTest::newRow("no WAV file") << QByteArray("just some text") << -1 << 0 << 0;
    QTest::newRow("empty") << QByteArray() << -3 << 0 << 0;
    QTest::newRow("8 bits") << WavBytes{.bits = 8}.Build() << -1 << 8 << 0;
    QTest::newRow("six channels") << WavBytes{.channels = 6}.Build() << -7 << 16 << 6;
    QTest::newRow("no data chunk") << WavBytes{}.Build().left(36) << -3 << 16 << 1;
}

void TestWavFile::staysOpenWithTheReadFieldsWhenTheHeaderIsRefused()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const int, result);
    WavFile file;
    QCOMPARE(int(file.Open(Write(bytes))), result);
    QVERIFY(file.isOpen());
    QTEST(file.GetSampleSize(), "sampleSize");
    QTEST(file.GetFileFormat().channelCount(), "channelCount");
    QCOMPARE(file.GetDuration(), 0.0);
}

void TestWavFile::saysWhatQFileSaysOfAFileThatCannotBeOpened_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing file") << m_files.Path(u"missing.wav"_s);
    QTest::newRow("missing folder") << m_files.Path(u"missing/file.wav"_s);
    QTest::newRow("name that is too long") << m_files.Path(QString(1000, u'a'));
    QTest::newRow("missing resource") << u":/no/such.wav"_s;
    QTest::newRow("folder") << m_files.Path(u"."_s);
    QTest::newRow("empty name") << QString();
}

void TestWavFile::saysWhatQFileSaysOfAFileThatCannotBeOpened()
{
    QFETCH(const QString, path);
    WavFile file;
    QCOMPARE(file.Open(Write(OneSecond())), WavFile::Success);
    QCOMPARE(file.Open(path), WavFile::ErrorOpenFile);
    QVERIFY(!file.isOpen());
    QCOMPARE(file.fileName(), path);
    QFile plain(path);
    QVERIFY(!plain.open(QIODevice::ReadOnly));
    QCOMPARE(file.errorString(), plain.errorString());
    QCOMPARE(file.error(), plain.error());
}

void TestWavFile::refusesWhatIsNoRegularFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("resource folder") << u":/"_s;
#ifdef Q_OS_UNIX
    QTest::newRow("device without end") << u"/dev/zero"_s;
    // Opening a pipe waits for somebody who writes.
    const QString pipe = m_files.Path(u"pipe.wav"_s);
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QTest::newRow("pipe") << pipe;
#endif
}

void TestWavFile::refusesWhatIsNoRegularFile()
{
    QFETCH(const QString, path);
    WavFile file;
    QCOMPARE(file.Open(path), WavFile::ErrorOpenFile);
    QVERIFY(!file.isOpen());
    QCOMPARE(file.fileName(), path);
    QCOMPARE(file.errorString(), u"Not a regular file"_s);
}

void TestWavFile::closesTheFormerFileWhenTheNextCannotBeOpened()
{
    WavFile file;
    QCOMPARE(file.Open(Write(OneSecond())), WavFile::Success);
    QCOMPARE(file.Open(m_files.Path(u"missing.wav"_s)), WavFile::ErrorOpenFile);
    QVERIFY(!file.isOpen());
    QCOMPARE(file.GetFileFormat(), Format(QAudioFormat::Int16, 2, 48000));
    QVERIFY(file.GetDuration() == 1.0);
}

void TestWavFile::opensAFileOfTheResourceSystem()
{
    WavFile file;
    QCOMPARE(file.Open(u":/two-samples.wav"_s), WavFile::Success);
    QCOMPARE(file.GetDataLength(), 4);
    file.ReadData(0.0, file.GetDuration(), 1);
    QCOMPARE(file.GetSamples(), QList<float>({1.0F, -1.0F}));
}

void TestWavFile::opensThroughASymbolicLink()
{
    const QString link = m_files.Path(u"link.wav"_s);
    QVERIFY(QFile::link(Write(OneSecond()), link));
    WavFile file;
    QCOMPARE(file.Open(link), WavFile::Success);
    QVERIFY(file.GetDuration() == 1.0);
}

void TestWavFile::walksOverAChunkOfAlmostFourGiB()
{
    constexpr quint32 hugeSize = 0xFFFFFFF0;
    const QString path = Write("RIFF1234WAVE" + Chunk{"JUNK", "", hugeSize}.Build());
    QFile file(path);
    QVERIFY(file.resize(qint64(20) + hugeSize));
    QVERIFY(file.open(QIODevice::Append));
    const QByteArray rest = WavBytes{.data = "12"}.Build().mid(12);
    QCOMPARE(file.write(rest), rest.size());
    file.close();

    WavFile wav;
    QCOMPARE(wav.Open(path), WavFile::Success);
    QCOMPARE(wav.GetDataOffset(), qint64(52) + hugeSize);
    QCOMPARE(wav.GetDataLength(), 2);
    QVERIFY(QFile::remove(path));
}

void TestWavFile::readsTheHeaderFromTheStart()
{
    WavFile file;
    QCOMPARE(file.Open(Write(OneSecond())), WavFile::Success);
    QVERIFY(file.seek(1000));
    QCOMPARE(WavFileTestAccess(file).ReadHeader(), WavFile::Success);
    QCOMPARE(file.pos(), 44);
}

void TestWavFile::copiesTheAudioButNotTheFile()
{
    WavFile source;
    QCOMPARE(source.Open(Write(OneSecond())), WavFile::Success);
    source.ReadData(0.0, 0.1, 10);
    source.SetSelectedChannel(WavFile::ChannelLeft);
    source.AbortRead();
    source.AbortWrite();

    WavFile target;
    WavFile& result = target = source;
    QCOMPARE(&result, &target);
    QCOMPARE(target.GetFileFormat(), source.GetFileFormat());
    QCOMPARE(target.GetDataOffset(), 44);
    QCOMPARE(target.GetDataLength(), 192000);
    QVERIFY(target.GetDuration() == 1.0);
    QCOMPARE(target.GetSelectedChannel(), WavFile::ChannelLeft);
    QVERIFY(!target.GetSamples().isEmpty());
    QVERIFY(target.GetSamples().isSharedWith(source.GetSamples()));
    QVERIFY(WavFileTestAccess(target).IsReadAborted());
    QVERIFY(WavFileTestAccess(target).IsWriteAborted());
    QVERIFY(!target.isOpen());
    QVERIFY(target.fileName().isEmpty());

    target = WavFile();
    QVERIFY(!WavFileTestAccess(target).IsReadAborted());
    QVERIFY(!WavFileTestAccess(target).IsWriteAborted());
}

void TestWavFile::leavesSampleSizeAndChannelFilterFlagWhenCopying()
{
    WavFile source;
    QCOMPARE(source.Open(Write(OneSecond())), WavFile::Success);
    source.AbortChannelFilter();
    WavFile target;
    WavFileTestAccess(target).SampleSize() = 24;
    target = source;
    QCOMPARE(target.GetSampleSize(), 24);
    QVERIFY(!WavFileTestAccess(target).IsChannelFilterAborted());

    const WavFile untouched;
    target.AbortChannelFilter();
    target = untouched;
    QVERIFY(WavFileTestAccess(target).IsChannelFilterAborted());
    QCOMPARE(target.GetSampleSize(), 24);
}

void TestWavFile::survivesCopyingToItself()
{
    WavFile file;
    QCOMPARE(file.Open(Write(OneSecond())), WavFile::Success);
    const WavFile& same = file;
    file = same;
    QVERIFY(file.isOpen());
    QVERIFY(file.GetDuration() == 1.0);
}

void TestWavFile::copiesInBothDirectionsAtOnce()
{
    WavFile one;
    WavFile other;
    const auto copy = [](WavFile& target, const WavFile& source) {
        for (int i = 0; i < 2000; ++i) {
            target = source;
        }
    };
    std::thread there(copy, std::ref(one), std::cref(other));
    std::thread back(copy, std::ref(other), std::cref(one));
    there.join();
    back.join();
    QCOMPARE(one.GetDuration(), 0.0);
}

void TestWavFile::setsOnlyTheMatchingAbortFlag()
{
    WavFile file;
    WavFileTestAccess access(file);
    file.AbortWrite();
    QVERIFY(access.IsWriteAborted() && !access.IsReadAborted() && !access.IsChannelFilterAborted());
    file.AbortChannelFilter();
    QVERIFY(access.IsChannelFilterAborted() && !access.IsReadAborted());
    file.AbortRead();
    QVERIFY(access.IsReadAborted());
}

/** Whether `action`, started on another thread, is not done after a time that is long enough for it. */
template<typename Action>
bool WaitsWhileLocked(QMutex& mutex, Action action)
{
    std::promise<void> done;
    mutex.lock();
    std::thread thread([&] {
        action();
        done.set_value();
    });
    const bool waits = done.get_future().wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout;
    mutex.unlock();
    thread.join();
    return waits;
}

void TestWavFile::waitsForTheLockToAbort()
{
    using Abort = void (WavFile::*)();
    for (const Abort abort : {&WavFile::AbortRead, &WavFile::AbortWrite, &WavFile::AbortChannelFilter}) {
        WavFile file;
        WavFileTestAccess access(file);
        QVERIFY(WaitsWhileLocked(access.Mutex(), [&] { (file.*abort)(); }));
        QVERIFY(access.IsReadAborted() || access.IsWriteAborted() || access.IsChannelFilterAborted());
    }
}

void TestWavFile::keepsTheSelectedChannel()
{
    WavFile file;
    for (const auto channel : {WavFile::ChannelMono, WavFile::ChannelLeft, WavFile::ChannelRight,
                               WavFile::ChannelLeftRight, WavFile::ChannelNone}) {
        file.SetSelectedChannel(channel);
        QCOMPARE(file.GetSelectedChannel(), channel);
        file.SetSelectedChannel(channel);
        QCOMPARE(file.GetSelectedChannel(), channel);
    }
    // Without the lock, so that a GUI never waits for a task.
    const QMutexLocker lock(&WavFileTestAccess(file).Mutex());
    file.SetSelectedChannel(WavFile::ChannelRight);
    QCOMPARE(file.GetSelectedChannel(), WavFile::ChannelRight);
}

void TestWavFile::sharesItsSamplesUnderTheLock()
{
    WavFile file;
    WavFileTestAccess access(file);
    access.Samples() = {1.0F, 2.0F};
    QVERIFY(file.GetSamples().isSharedWith(file.GetSamples()));
    QList<float> samples;
    QVERIFY(WaitsWhileLocked(access.Mutex(), [&] { samples = file.GetSamples(); }));
    QCOMPARE(samples, QList<float>({1.0F, 2.0F}));
}

void TestWavFile::writesTheHeaderAndGoesBehindIt()
{
    WavFile file;
    file.setFileName(Write("something longer than a header, which is written over from its very first byte on"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(60));
    WavFileTestAccess access(file);
    access.FileFormat() = Format(QAudioFormat::Int16, 2, 44100);
    QCOMPARE(access.WriteHeader(1000), WavFile::Success);
    QCOMPARE(file.pos(), 44);
    QCOMPARE(file.GetDataOffset(), 44);
    QCOMPARE(TemporaryFiles::Read(file.fileName()).left(44).toHex(),
             "524946460c04000057415645666d7420100000000100020044ac000010b102000400100064617461e8030000"_ba);
}

void TestWavFile::writesThirtyTwoBitsForATwentyFourBitFile()
{
    WavFile source;
    QCOMPARE(source.Open(Write(WavBytes{.bits = 24, .data = "abc"}.Build())), WavFile::Success);
    WavFile file;
    file.setFileName(m_files.Path(u"out.wav"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    WavFileTestAccess access(file);
    access.FileFormat() = source.GetFileFormat();
    access.SampleSize() = 24;
    QCOMPARE(access.WriteHeader(0), WavFile::Success);
    const QByteArray header = TemporaryFiles::Read(file.fileName());
    QCOMPARE(header.mid(20, 2).toHex(), "0100"_ba);
    QCOMPARE(header.mid(32, 4).toHex(), "04002000"_ba);
}

void TestWavFile::doesNotRevisitTheHeader()
{
    WavFile file;
    file.setFileName(m_files.Path(u"out.wav"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    WavFileTestAccess access(file);
    access.FileFormat() = Format(QAudioFormat::Int16, 1, 44100);
    QCOMPARE(access.WriteHeader(2), WavFile::Success);
    file.write("abcdef");
    file.close();
    QCOMPARE(TemporaryFiles::Read(file.fileName()).mid(36).toHex(), "6461746102000000616263646566"_ba);
}

void TestWavFile::writesNothingForAFormatWithoutEncoding()
{
    WavFile file;
    file.setFileName(m_files.Path(u"out.wav"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    WavFileTestAccess access(file);
    access.DataOffset() = 7;
    for (const auto sampleFormat : {QAudioFormat::UInt8, QAudioFormat::Unknown}) {
        access.FileFormat() = Format(sampleFormat, 2, 44100);
        QCOMPARE(access.WriteHeader(1000), WavFile::ErrorInvalidFormat);
        QCOMPARE(file.GetDataOffset(), 7);
    }
    file.close();
    QVERIFY(QFile::exists(file.fileName()));
    QVERIFY(TemporaryFiles::Read(file.fileName()).isEmpty());
}

void TestWavFile::reportsAHeaderThatCannotBeWritten()
{
    const QByteArray bytes = OneSecond();
    WavFile file;
    QCOMPARE(file.Open(Write(bytes)), WavFile::Success);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"ReadOnly device"_s));
    QCOMPARE(WavFileTestAccess(file).WriteHeader(0), WavFile::ErrorWriteHeader);
    QCOMPARE(TemporaryFiles::Read(file.fileName()), bytes);
}

void TestWavFile::reportsAHeaderThatDoesNotFit()
{
#ifdef Q_OS_LINUX
    WavFile file;
    file.setFileName(m_files.Path(u"out.wav"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    WavFileTestAccess access(file);
    access.FileFormat() = Format(QAudioFormat::Int16, 2, 44100);

    // As on a full disk: no file may grow beyond 20 bytes for a moment.
    const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit former{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &former), 0);
    const rlimit small{20, former.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto result = access.WriteHeader(1000);
    setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, formerHandler);
    QCOMPARE(result, WavFile::ErrorWriteHeader);
    QCOMPARE(file.GetDataOffset(), 44);
#else
    QSKIP("Needs a limit of the file size.");
#endif
}

QTEST_GUILESS_MAIN(TestWavFile)
#include "tst_wavfile.moc"
