#include "tests/support/AudioPrograms.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/Decoder.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QDir>
#include <QtCore/QFutureWatcher>
#include <QtCore/QProcess>
#include <QtCore/QThreadPool>
#include <QtCore/QtEndian>
#include <QtTest/QSignalSpy>
#include <QtTest/QtTest>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdio>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::AudioEngine;
using namespace AudioPrograms;
using namespace WavTest;

using Problem = AudioFileInfo::Problem;

Q_DECLARE_METATYPE(ImportOptions::SampleFormat)

namespace {

/** Hidden ones too. */
QStringList FilesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

/** Silence of that many seconds, 48 kHz stereo, without taking room on the disk. */
QString MakeLongWav(const TemporaryFiles& files, qint64 seconds)
{
    const qint64 size = seconds * 192000;
    const WavBytes head{.statedRiffSize = size + 36, .channels = 2, .sampleRate = 48000, .statedDataSize = size};
    const QString path = files.Write(u"long.wav"_s, head.Build());
    return QFile::resize(path, 44 + size) ? path : QString();
}

/** Two tones of two seconds, encoded by lame and put behind each other. Empty when that failed. */
QString JoinedSongs(const TemporaryFiles& files, const QStringList& first, const QStringList& second)
{
    QByteArray joined;
    const QString tone = files.Path(u"part.wav"_s);
    const QString song = files.Path(u"part.mp3"_s);
    const double seconds[] = {first.contains(u"320"_s) ? 20.0 : 2.0, 2.0};
    for (int part = 0; part < 2; ++part) {
        const QStringList arguments = QStringList{u"--quiet"_s} + (part == 0 ? first : second);
        if (!MakeTone(tone, 44100, 2, seconds[part]) ||
            !Succeeds(u"lame"_s, arguments + QStringList{tone, song})) {
            return {};
        }
        joined += TemporaryFiles::Read(song);
    }
    return files.Write(u"joined.mp3"_s, joined);
}

/** What makes one file of another; nothing where that cannot be done. */
using Change = std::function<QByteArray(QByteArray)>;

Change Replacing(const QByteArray& former, const QByteArray& latter)
{
    return [=](QByteArray file) { return file.contains(former) ? file.replace(former, latter) : QByteArray(); };
}

/** Puts an object before the others of an ASF file's header. */
Change WithAsfObject(const QByteArray& hexName, const QByteArray& content)
{
    const QByteArray object = QByteArray::fromHex(hexName) + LittleEndian(quint64(24 + content.size())) + content;
    return [=](QByteArray file) {
        const auto size = qFromLittleEndian<quint64>(file.constData() + 16);
        const auto count = qFromLittleEndian<quint32>(file.constData() + 24);
        const QByteArray sizes = LittleEndian(size + quint64(object.size())) + LittleEndian(count + 1);
        file.replace(16, 12, sizes);
        return file.insert(30, object);
    };
}

/** The most memory that this program has had at once, in KiB. */
qint64 MostMemory()
{
    for (const QByteArray& line : TemporaryFiles::Read(u"/proc/self/status"_s).split('\n')) {
        if (line.startsWith("VmHWM:")) {
            return line.mid(6).simplified().split(' ').constFirst().toLongLong();
        }
    }
    return 0;
}

/** Prints how much memory a program takes that sets a limit and looks at a file that cannot be loaded. */
int Probe(const QString& path)
{
    AudioImporter::LimitAllocations(qint64(256) << 20);
    AudioImporter::LimitAllocations(0);
    const bool canBeLoaded = AudioFileInfo::Probe(path).CanBeLoaded();
    std::printf("%lld", MostMemory());
    return canBeLoaded ? 1 : 0;
}

/** While it lives, no user but the superuser can begin another thread. */
class NoMoreThreads
{
public:
    NoMoreThreads()
    {
        ::getrlimit(RLIMIT_NPROC, &m_former);
        const rlimit none{0, m_former.rlim_max};
        ::setrlimit(RLIMIT_NPROC, &none);
    }
    ~NoMoreThreads() { ::setrlimit(RLIMIT_NPROC, &m_former); }
    Q_DISABLE_COPY_MOVE(NoMoreThreads)

private:
    rlimit m_former{};
};

} // namespace

/** The importer as a program uses it; what it makes of each kind of file is tested elsewhere. */
class TestAudioImporter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void writesWhatItTells_data();
    void writesWhatItTells();
    void tellsProgressAndTheResult();
    void runsOnThePoolThatIsHandedOver();
    void leavesNothingWhenItIsCancelled();
    void keepsAnOlderFileWhenItIsCancelled();
    void endsWithoutResultWhenItIsCancelledBeforeItBegan();
    void refusesWhatIsNoAudio_data();
    void refusesWhatIsNoAudio();
    void refusesAFileThatMayNotBeRead();
    void refusesAFolderThatMayNotBeWritten();
    void keepsAnOlderFileWhenTheDiskIsFull();
    void replacesItsOwnSource();
    void fillsTheFileThatALinkPromises();
    void keepsALinkThatLeadsNowhereWhenItFails();
    void canBeCancelledHoweverFarTheRatesAreApart();
    void refusesAtOnceWhatTheResamplerCannotBear();
    void staysCancelledWhateverIsAnsweredLater();
    void tellsOfAMissingEnd();
    void importsAFileWithoutSamples();
    void readsBigEndianSamplesAsSuch_data();
    void readsBigEndianSamplesAsSuch();
    void refusesWhatExceedsFourGibibytesWhereItMay();
    void asksForRoomBeforeTheWorkBegins();
    void takesIntegersForWhatWouldExceedTwoGibibytes();
    void countsDamagedPackets();
    void findsNoDamageWhereSongsWereJoined_data();
    void findsNoDamageWhereSongsWereJoined();
    void findsTheDamageInJoinedSongs();
    void recognisesEncryptedFiles_data();
    void recognisesEncryptedFiles();
    void tellsThatTheLastCopyingWasCancelled();
    void failsWithoutAThread();

    void probesWhatIsInAFile();
    void probesTitleAndArtist_data();
    void probesTitleAndArtist();
    void knowsNothingOfNothing();
    void tellsHowLargeAnImportBecomes();
    void aLimitHoldsAgainstWhatHeadersState();
    void hasASentenceForEveryProblem();
    void hasASentenceForEveryResult();

private:
    TemporaryFiles m_files;
    QString m_mp3;
};

void TestAudioImporter::initTestCase()
{
    m_mp3 = m_files.Path(u"tone.mp3"_s);
    QVERIFY(MakeTone(m_files.Path(u"tone.wav"_s), 44100, 2));
    QVERIFY(Encode(u"mp3"_s, m_files.Path(u"tone.wav"_s), m_mp3));
}

void TestAudioImporter::writesWhatItTells_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<ImportOptions::SampleFormat>("format");
    QTest::addColumn<int>("writtenRate");
    QTest::addColumn<QAudioFormat::SampleFormat>("writtenFormat");
    QTest::addRow("its own rate") << 0 << ImportOptions::Float << 44100 << QAudioFormat::Float;
    QTest::addRow("8 kHz") << 8000 << ImportOptions::Float << 8000 << QAudioFormat::Float;
    QTest::addRow("192 kHz, integers") << 192000 << ImportOptions::Int16 << 192000 << QAudioFormat::Int16;
    QTest::addRow("integers") << 0 << ImportOptions::Int16 << 44100 << QAudioFormat::Int16;
    QTest::addRow("automatic") << 0 << ImportOptions::Automatic << 44100 << QAudioFormat::Float;
}

void TestAudioImporter::writesWhatItTells()
{
    QFETCH(const int, rate);
    QFETCH(const ImportOptions::SampleFormat, format);
    QFETCH(const int, writtenRate);
    QFETCH(const QAudioFormat::SampleFormat, writtenFormat);
    const TemporaryFiles files;
    const QString out = files.Path(u"out.wav"_s);
    const ImportResult result = AudioImporter::ImportNow(m_mp3, out, {.sampleRate = rate, .sampleFormat = format});
    QVERIFY(result.IsSuccess());
    QCOMPARE(result.Code(), WavFile::Success);
    QCOMPARE(result.sampleRate, writtenRate);
    QCOMPARE(result.channelCount, 2);
    QCOMPARE(result.sampleFormat, writtenFormat);
    QCOMPARE(result.frameCount, 2 * writtenRate);
    QCOMPARE(result.damagedPackets, 0);

    WavFile opened;
    QCOMPARE(opened.Open(out), WavFile::Success);
    QCOMPARE(opened.GetDataOffset(), 44);
    QCOMPARE(opened.GetFileFormat().sampleRate(), writtenRate);
    QCOMPARE(opened.GetFileFormat().sampleFormat(), writtenFormat);
    QCOMPARE(opened.GetDataLength(), result.frameCount * opened.GetFileFormat().bytesPerFrame());
    QCOMPARE(opened.size(), 44 + opened.GetDataLength());
    QCOMPARE(FilesIn(files.Path({})), QStringList{u"out.wav"_s});
}

void TestAudioImporter::tellsProgressAndTheResult()
{
    const TemporaryFiles files;
    QFutureWatcher<ImportResult> watcher;
    QSignalSpy values(&watcher, &QFutureWatcherBase::progressValueChanged);
    QSignalSpy finished(&watcher, &QFutureWatcherBase::finished);
    watcher.setFuture(AudioImporter::Import(m_mp3, files.Path(u"out.wav"_s)));
    QVERIFY(finished.wait());
    QCOMPARE(watcher.progressMinimum(), 0);
    QCOMPARE(watcher.progressMaximum(), 1000);
    QCOMPARE(watcher.progressValue(), 1000);
    QVERIFY(!values.isEmpty());
    for (qsizetype i = 1; i < values.size(); ++i) {
        QVERIFY(values[i].first().toInt() >= values[i - 1].first().toInt());
    }
    QCOMPARE(watcher.future().resultCount(), 1);
    QCOMPARE(watcher.result().frameCount, 88200);
}

void TestAudioImporter::runsOnThePoolThatIsHandedOver()
{
    const TemporaryFiles files;
    QThreadPool pool;
    pool.setMaxThreadCount(1);
    QSemaphore gate;
    pool.start([&gate] { gate.acquire(); });
    QFuture<ImportResult> future = AudioImporter::Import(m_mp3, files.Path(u"out.wav"_s), {}, &pool);
    // The pool's only thread is taken; elsewhere it would have begun and ended by now.
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QVERIFY(!future.isFinished());
    QCOMPARE(future.progressMaximum(), 0);
    QVERIFY(FilesIn(files.Path({})).isEmpty());
    gate.release();
    pool.waitForDone();
    QVERIFY(future.isFinished());
    QVERIFY(future.result().IsSuccess());
}

void TestAudioImporter::leavesNothingWhenItIsCancelled()
{
    const TemporaryFiles files;
    const QString source = MakeLongWav(m_files, 20000);
    QVERIFY(!source.isEmpty());
    QFutureWatcher<ImportResult> watcher;
    QSignalSpy values(&watcher, &QFutureWatcherBase::progressValueChanged);
    QSignalSpy finished(&watcher, &QFutureWatcherBase::finished);
    watcher.setFuture(
        AudioImporter::Import(source, files.Path(u"out.wav"_s), {.sampleFormat = ImportOptions::Int16}));
    QVERIFY(values.wait());
    watcher.cancel();
    QVERIFY(finished.count() > 0 || finished.wait());
    QCOMPARE(watcher.future().resultCount(), 0);
    QCOMPARE(FilesIn(files.Path({})), QStringList());
}

void TestAudioImporter::keepsAnOlderFileWhenItIsCancelled()
{
    const TemporaryFiles files;
    const QString source = MakeLongWav(m_files, 20000);
    const QString out = files.Write(u"out.wav"_s, "older");
    QFuture<ImportResult> future = AudioImporter::Import(source, out, {.sampleFormat = ImportOptions::Int16});
    future.cancel();
    future.waitForFinished();
    QCOMPARE(TemporaryFiles::Read(out), "older");
    QCOMPARE(FilesIn(files.Path({})), QStringList{u"out.wav"_s});
}

void TestAudioImporter::endsWithoutResultWhenItIsCancelledBeforeItBegan()
{
    const TemporaryFiles files;
    QThreadPool pool;
    pool.setMaxThreadCount(1);
    QSemaphore gate;
    pool.start([&gate] { gate.acquire(); });
    QFuture<ImportResult> future = AudioImporter::Import(m_mp3, files.Path(u"out.wav"_s), {}, &pool);
    future.cancel();
    gate.release();
    future.waitForFinished();
    QCOMPARE(future.resultCount(), 0);
    QVERIFY(FilesIn(files.Path({})).isEmpty());
}

void TestAudioImporter::refusesWhatIsNoAudio_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Problem>("problem");
    QTest::addColumn<WavFile::AudioEngineReturnValue>("code");
    QTest::addRow("no name") << QString() << Problem::NotFound << WavFile::ErrorOpenFile;
    QTest::addRow("no file") << m_files.Path(u"missing.mp3"_s) << Problem::NotFound << WavFile::ErrorOpenFile;
    QTest::addRow("folder") << m_files.Path({}) << Problem::NotAFile << WavFile::ErrorOpenFile;
    QTest::addRow("device") << u"/dev/zero"_s << Problem::NotAFile << WavFile::ErrorOpenFile;
    QTest::addRow("empty") << m_files.Write(u"empty.mp3"_s, {}) << Problem::NoAudio << WavFile::ErrorInvalidFormat;
    QTest::addRow("text") << m_files.Write(u"text.mp3"_s, QByteArray("It is no song. ").repeated(500))
                          << Problem::NoAudio << WavFile::ErrorInvalidFormat;
    // What they name must not be opened: the pipe would be waited at.
    QVERIFY(::mkfifo(qPrintable(m_files.Path(u"pipe.wav"_s)), 0600) == 0);
    QTest::addRow("script that names a pipe")
        << m_files.Write(u"script.wav"_s, "ffconcat version 1.0\nfile pipe.wav\n") << Problem::NoAudio
        << WavFile::ErrorInvalidFormat;
    QTest::addRow("play list that names a pipe")
        << m_files.Write(u"list.m3u8"_s,
                         "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\npipe.wav\n#EXT-X-ENDLIST\n")
        << Problem::NoAudio << WavFile::ErrorInvalidFormat;
    QTest::addRow("script that names a song")
        << m_files.Write(u"song.wav"_s, "ffconcat version 1.0\nfile tone.mp3\n") << Problem::NoAudio
        << WavFile::ErrorInvalidFormat;
    QTest::addRow("head of a WAV file") << m_files.Write(u"head.wav"_s, WavBytes{.data = {}}.Build().first(30))
                                        << Problem::NoAudio << WavFile::ErrorInvalidFormat;
}

void TestAudioImporter::refusesWhatIsNoAudio()
{
    QFETCH(const QString, path);
    QFETCH(const Problem, problem);
    QFETCH(const WavFile::AudioEngineReturnValue, code);
    const TemporaryFiles files;
    const QString out = files.Write(u"out.wav"_s, "older");
    const ImportResult result = AudioImporter::ImportNow(path, out);
    QCOMPARE(result.problem, problem);
    QCOMPARE(result.Code(), code);
    QCOMPARE(result.frameCount, 0);
    QCOMPARE(TemporaryFiles::Read(out), "older");
    QCOMPARE(FilesIn(files.Path({})), QStringList{u"out.wav"_s});
    QCOMPARE(AudioFileInfo::Probe(path).GetProblem(), problem);
}

void TestAudioImporter::refusesAFileThatMayNotBeRead()
{
    const TemporaryFiles files;
    const QString source = files.Path(u"secret.mp3"_s);
    QVERIFY(QFile::copy(m_mp3, source));
    QVERIFY(QFile::setPermissions(source, {}));
    QVERIFY(OrdinaryUser::TakesOver(files.Path({})));
    const OrdinaryUser user;
    QCOMPARE(AudioFileInfo::Probe(source).GetProblem(), Problem::NoPermission);
}

void TestAudioImporter::refusesAFolderThatMayNotBeWritten()
{
    const ImportResult result = AudioImporter::ImportNow(m_mp3, m_files.Path(u"missing/out.wav"_s));
    QCOMPARE(result.problem, Problem::CannotBeCreated);
    QCOMPARE(result.Code(), WavFile::ErrorOpenFile);
}

void TestAudioImporter::keepsAnOlderFileWhenTheDiskIsFull()
{
    const TemporaryFiles files;
    const QString out = files.Write(u"out.wav"_s, "older");
    ImportResult result;
    {
        const FileSizeLimit limit(20000);
        result = AudioImporter::ImportNow(m_mp3, out);
    }
    QVERIFY(result.problem == Problem::CannotBeWritten || result.problem == Problem::NoSpace);
    QCOMPARE(result.Code(), WavFile::ErrorWriteHeader);
    QCOMPARE(TemporaryFiles::Read(out), "older");
    QCOMPARE(FilesIn(files.Path({})), QStringList{u"out.wav"_s});
}

void TestAudioImporter::replacesItsOwnSource()
{
    const TemporaryFiles files;
    const QString file = files.Path(u"song.mp3"_s);
    QVERIFY(QFile::copy(m_mp3, file));
    const QString link = files.Path(u"link.mp3"_s);
    QVERIFY(QFile::link(file, link));
    const ImportResult result = AudioImporter::ImportNow(file, link);
    QVERIFY(result.IsSuccess());
    WavFile opened;
    QCOMPARE(opened.Open(file), WavFile::Success);
    QCOMPARE(opened.GetDuration(), 2.0);
    QVERIFY(QFileInfo(link).isSymLink());
}

void TestAudioImporter::fillsTheFileThatALinkPromises()
{
    const TemporaryFiles files;
    const QString link = files.Path(u"link.wav"_s);
    QVERIFY(QFile::link(files.Path(u"target.wav"_s), link));
    QVERIFY(AudioImporter::ImportNow(m_mp3, link).IsSuccess());
    QVERIFY(QFileInfo(link).isSymLink());
    QVERIFY(QFileInfo(files.Path(u"target.wav"_s)).isFile());
}

void TestAudioImporter::keepsALinkThatLeadsNowhereWhenItFails()
{
    const TemporaryFiles files;
    const QString link = files.Path(u"link.wav"_s);
    QVERIFY(QFile::link(files.Path(u"target.wav"_s), link));
    QVERIFY(!AudioImporter::ImportNow(files.Write(u"text.mp3"_s, "no song"), link).IsSuccess());
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(FilesIn(files.Path({})), (QStringList{u"link.wav"_s, u"text.mp3"_s}));
}

/** One frame of such a file becomes seconds of audio: it takes gigabytes if it comes at once. */
void TestAudioImporter::canBeCancelledHoweverFarTheRatesAreApart()
{
    const TemporaryFiles files;
    const WavBytes slow{.sampleRate = 1, .data = QByteArray(200000, '\x11')};
    const QString source = files.Write(u"slow.wav"_s, slow.Build());
    int calls = 0;
    const ImportResult result = AudioImporter::ImportNow(source, files.Path(u"out.wav"_s), {.sampleRate = 96000},
                                                         [&calls](int) { return ++calls < 2000; });
    QCOMPARE(result.problem, Problem::Cancelled);
    QCOMPARE(FilesIn(files.Path({})), QStringList{u"slow.wav"_s});
}

void TestAudioImporter::refusesAtOnceWhatTheResamplerCannotBear()
{
    const TemporaryFiles files;
    const WavBytes fast{.sampleRate = 1'860'000'011, .data = QByteArray(200000, '\x11')};
    const QString source = files.Write(u"fast.wav"_s, fast.Build());
    const QString out = files.Path(u"out.wav"_s);
    QCOMPARE(AudioImporter::ImportNow(source, out, {.sampleRate = 192000}).problem, Problem::UnsupportedRate);
    QCOMPARE(Decoder::ConvertToFloat(source, out, 96000), WavFile::ErrorInvalidFormat);
    QCOMPARE(FilesIn(files.Path({})), QStringList{u"fast.wav"_s});
    // As it is, it needs no resampler.
    QVERIFY(AudioImporter::ImportNow(source, out).IsSuccess());

    const WavBytes slow{.sampleRate = 1, .data = QByteArray(200, '\x11')};
    const QString slowSource = files.Write(u"slow.wav"_s, slow.Build());
    QCOMPARE(AudioImporter::ImportNow(slowSource, out, {.sampleRate = 200001}).problem, Problem::UnsupportedRate);
    QVERIFY(AudioImporter::ImportNow(slowSource, out, {.sampleRate = 192000}).IsSuccess());
}

void TestAudioImporter::staysCancelledWhateverIsAnsweredLater()
{
    const TemporaryFiles files;
    for (int refused = 1; refused < 60; ++refused) {
        std::atomic<int> calls = 0;
        const ImportResult result =
            AudioImporter::ImportNow(m_mp3, files.Path(u"out.wav"_s), {}, [&](int) { return ++calls != refused; });
        QCOMPARE(result.problem, Problem::Cancelled);
        QVERIFY(FilesIn(files.Path({})).isEmpty());
    }
}

void TestAudioImporter::tellsOfAMissingEnd()
{
    const TemporaryFiles files;
    QVERIFY(Encode(u"flac"_s, m_files.Path(u"tone.wav"_s), files.Path(u"tone.flac"_s)));
    const QByteArray flac = TemporaryFiles::Read(files.Path(u"tone.flac"_s));
    const QString source = files.Write(u"half.flac"_s, flac.first(flac.size() / 3));
    const ImportResult result = AudioImporter::ImportNow(source, files.Path(u"out.wav"_s));
    QVERIFY(result.IsSuccess());
    QVERIFY(result.frameCount < 44100);
    QVERIFY(result.damagedPackets > 0);
}

void TestAudioImporter::importsAFileWithoutSamples()
{
    const TemporaryFiles files;
    const QString source = files.Write(u"empty.wav"_s, WavBytes{.data = {}}.Build());
    const ImportResult result = AudioImporter::ImportNow(source, files.Path(u"out.wav"_s));
    QVERIFY(result.IsSuccess());
    QCOMPARE(result.frameCount, 0);
    QCOMPARE(TemporaryFiles::Read(files.Path(u"out.wav"_s)).size(), 44);
}

void TestAudioImporter::readsBigEndianSamplesAsSuch_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isFloat");
    QTest::addRow("16 bit") << 16 << false;
    QTest::addRow("24 bit") << 24 << false;
    QTest::addRow("32 bit") << 32 << false;
    QTest::addRow("float of 32 bit") << 32 << true;
    QTest::addRow("float of 64 bit") << 64 << true;
}

/** FFmpeg by itself makes noise of them. */
void TestAudioImporter::readsBigEndianSamplesAsSuch()
{
    QFETCH(const int, bits);
    QFETCH(const bool, isFloat);
    const TemporaryFiles files;
    const qsizetype size = bits / 8;
    QByteArray header("RIFX\0\0\0\0WAVEfmt \0\0\0\x10\0\1\0\1\0\0\xAC\x44", 28);
    QByteArray samples;
    const auto append = [](QByteArray& bytes, qint64 number, qsizetype width) {
        for (qsizetype i = width - 1; i >= 0; --i) {
            bytes += char((number >> (8 * i)) & 0xFF);
        }
    };
    header[21] = isFloat ? 3 : 1;
    append(header, 44100 * size, 4);
    append(header, size, 2);
    append(header, bits, 2);
    for (int i = -1000; i < 1000; ++i) {
        const double value = double(i) / 32768.0;
        const qint64 asFloat = bits == 64 ? std::bit_cast<qint64>(value) : std::bit_cast<qint32>(float(value));
        append(samples, isFloat ? asFloat : qint64(i) * (qint64(1) << (bits - 16)), size);
    }
    header += "data";
    append(header, samples.size(), 4);
    const QString source = files.Write(u"big.wav"_s, header + samples);
    QVERIFY(AudioImporter::ImportNow(source, files.Path(u"out.wav"_s)).IsSuccess());
    QByteArray expected;
    for (int i = -1000; i < 1000; ++i) {
        expected += LittleEndian(float(i) / 32768.0F);
    }
    QCOMPARE(TemporaryFiles::Read(files.Path(u"out.wav"_s)).mid(44), expected);
}

void TestAudioImporter::refusesWhatExceedsFourGibibytesWhereItMay()
{
    const TemporaryFiles files;
    const QString source = MakeLongWav(m_files, 18000);
    const ImportOptions options{.sampleFormat = ImportOptions::Float, .mayBeLarge = false};
    QCOMPARE(AudioFileInfo::Probe(source).CheckImport(options, files.Path(u"out.wav"_s)), Problem::TooLong);
    const ImportResult result = AudioImporter::ImportNow(source, files.Path(u"out.wav"_s), options);
    QCOMPARE(result.problem, Problem::TooLong);
    QCOMPARE(result.Code(), WavFile::ErrorInvalidFormat);
    QVERIFY(FilesIn(files.Path({})).isEmpty());
}

void TestAudioImporter::asksForRoomBeforeTheWorkBegins()
{
    // More than any disk holds, in a sparse file with 64-bit sizes.
    const TemporaryFiles files;
    const qint64 size = qint64(1) << 43;
    QByteArray head("RF64\xFF\xFF\xFF\xFFWAVEds64\x1C\0\0\0", 20);
    head += LittleEndian(size + 72) + LittleEndian(size) + LittleEndian(size / 4) + LittleEndian(quint32(0));
    head += WavBytes{.channels = 2, .sampleRate = 48000}.Build().mid(12, 28) + LittleEndian(quint32(0xFFFFFFFF));
    const QString source = files.Write(u"endless.wav"_s, head);
    if (!QFile::resize(source, head.size() + size)) {
        QSKIP("The file system takes no file of 8 TiB.");
    }
    const QString out = files.Path(u"out.wav"_s);
    const ImportOptions options{.sampleRate = 768000};
    QCOMPARE(AudioFileInfo::Probe(source).CheckImport(options, out), Problem::NoSpace);
    QCOMPARE(AudioImporter::ImportNow(source, out, options).problem, Problem::NoSpace);
    QCOMPARE(FilesIn(files.Path({})), QStringList{u"endless.wav"_s});
}

void TestAudioImporter::takesIntegersForWhatWouldExceedTwoGibibytes()
{
    const AudioFileInfo shorter = AudioFileInfo::Probe(MakeLongWav(m_files, 5500));
    const AudioFileInfo longer = AudioFileInfo::Probe(MakeLongWav(m_files, 5600));
    QCOMPARE(shorter.GetImportedSize({}), qint64(5500) * 48000 * 8 + 80);
    QCOMPARE(longer.GetImportedSize({}), qint64(5600) * 48000 * 4 + 80);
}

void TestAudioImporter::countsDamagedPackets()
{
    const TemporaryFiles files;
    const QString flac = files.Path(u"tone.flac"_s);
    QVERIFY(Encode(u"flac"_s, m_files.Path(u"tone.wav"_s), flac));
    QByteArray bytes = TemporaryFiles::Read(flac);
    bytes.replace(bytes.size() / 2, 3000, QByteArray(3000, '\x55'));
    const ImportResult result =
        AudioImporter::ImportNow(files.Write(u"damaged.flac"_s, bytes), files.Path(u"out.wav"_s));
    QVERIFY(result.IsSuccess());
    QVERIFY(result.damagedPackets > 0);
    QVERIFY(result.frameCount > 20000);
}

void TestAudioImporter::findsNoDamageWhereSongsWereJoined_data()
{
    QTest::addColumn<QStringList>("first");
    QTest::addColumn<QStringList>("second");
    QTest::addRow("alike") << QStringList() << QStringList();
    QTest::addRow("of variable bit rate") << QStringList{u"-V2"_s} << QStringList{u"-V5"_s};
    QTest::addRow("a tag at the end of the first")
        << QStringList{u"--tt"_s, u"Title"_s, u"--id3v1-only"_s} << QStringList();
    QTest::addRow("a tag at the start of the second")
        << QStringList() << QStringList{u"--tt"_s, u"Title"_s, u"--add-id3v2"_s, u"--pad-id3v2-size"_s, u"5000"_s};
    // Its length is stated then, and its padding cut off in the middle.
    QTest::addRow("a first one that is far longer")
        << QStringList{u"-b"_s, u"320"_s, u"--tt"_s, u"Title"_s} << QStringList{u"-b"_s, u"32"_s};
}

void TestAudioImporter::findsNoDamageWhereSongsWereJoined()
{
    QFETCH(const QStringList, first);
    QFETCH(const QStringList, second);
    const TemporaryFiles files;
    const QString joined = JoinedSongs(files, first, second);
    QVERIFY(!joined.isEmpty());
    const ImportResult result =
        AudioImporter::ImportNow(joined, files.Path(u"out.wav"_s), {.sampleFormat = ImportOptions::Float});
    QVERIFY(result.IsSuccess());
    QCOMPARE(result.damagedPackets, 0);
    WavFile opened;
    QCOMPARE(opened.Open(files.Path(u"out.wav"_s)), WavFile::Success);
    const QList<float> samples = Floats(TemporaryFiles::Read(opened.fileName()).mid(opened.GetDataOffset()));
    const QList<float> expected = Floats(DecodedByFFmpeg(joined, u"f32le"_s));
    QCOMPARE(samples.size(), expected.size());
    QVERIFY(std::ranges::equal(samples, expected, [](float a, float b) { return std::abs(a - b) < 1e-4F; }));
}

void TestAudioImporter::findsTheDamageInJoinedSongs()
{
    const TemporaryFiles files;
    QByteArray bytes = TemporaryFiles::Read(JoinedSongs(files, {}, {u"--tt"_s, u"Title"_s, u"--id3v2-only"_s}));
    bytes.replace(bytes.size() * 3 / 4, 3000, QByteArray(3000, '\x55'));
    const ImportResult result =
        AudioImporter::ImportNow(files.Write(u"damaged.mp3"_s, bytes), files.Path(u"out.wav"_s));
    QVERIFY(result.IsSuccess());
    QVERIFY(result.damagedPackets > 0);
}

void TestAudioImporter::recognisesEncryptedFiles_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Change>("encrypt");

    const QStringList aac{u"-c:a"_s, u"aac"_s};
    QTest::addRow("MP4, sold") << u"song.m4a"_s << aac << Replacing("mp4a", "drms");
    QTest::addRow("MP4 of an unknown kind") << u"song.m4a"_s << aac << Replacing("mp4a", "enca");
    QTest::addRow("audio book") << u"song.m4a"_s << aac << Replacing("mp4a", "aavd");
    const QStringList keys{u"-encryption_scheme"_s, u"cenc-aes-ctr"_s,
                           u"-encryption_key"_s,    u"76a6c65c5ea762046bd749a2e632ccbb"_s,
                           u"-encryption_kid"_s,    u"a7e61c373e219033c21091fa607bf3b8"_s};
    QTest::addRow("MP4, common encryption") << u"song.mp4"_s << aac + keys << Replacing("enca", "enca");
    // The track's title makes way for a description of its encryption.
    QTest::addRow("Matroska") << u"song.mka"_s << QStringList{u"-metadata:s:a"_s, u"title=ABCDEFGHIJKLMN"_s}
                              << Replacing(QByteArray::fromHex("536e8e") + "ABCDEFGHIJKLMN",
                                           QByteArray::fromHex("6d808e62408b5033810150358447e28142"));
    const QStringList wma{u"-c:a"_s, u"wmav2"_s};
    const QByteArray field = LittleEndian(quint32(4)) + QByteArray("DRM", 4);
    QTest::addRow("ASF") << u"song.wma"_s << wma
                         << WithAsfObject("FBB3112223BDD211B4B700A0C955FC6E", field.repeated(4));
    QTest::addRow("ASF, extended") << u"song.wma"_s << wma
                                   << WithAsfObject("14E68A292226174CB935DAE07EE9289C", field);
}

void TestAudioImporter::recognisesEncryptedFiles()
{
    QFETCH(const QString, name);
    QFETCH(const QStringList, arguments);
    QFETCH(const Change, encrypt);
    const TemporaryFiles files;
    const QString made = files.Path(name);
    QVERIFY(Succeeds(u"ffmpeg"_s, QStringList{u"-v"_s, u"error"_s, u"-i"_s, m_files.Path(u"tone.wav"_s)} +
                                      arguments + QStringList{made}));
    const QByteArray encrypted = encrypt(TemporaryFiles::Read(made));
    QVERIFY(!encrypted.isEmpty());
    const QString path = files.Write(name, encrypted);
    QCOMPARE(AudioFileInfo::Probe(path).GetProblem(), Problem::Protected);
    const ImportResult result = AudioImporter::ImportNow(path, files.Path(u"out.wav"_s));
    QCOMPARE(result.problem, Problem::Protected);
    QCOMPARE(result.damagedPackets, 0);
    QCOMPARE(FilesIn(files.Path({})), QStringList{name});
}

/** Where only the file but not its folder may be written. */
void TestAudioImporter::tellsThatTheLastCopyingWasCancelled()
{
    const TemporaryFiles files;
    const TemporaryFiles folder;
    const QString source = MakeLongWav(files, 20);
    const QString out = folder.Write(u"out.wav"_s, "older");
    QVERIFY(OrdinaryUser::TakesOver(out) && OrdinaryUser::TakesOver(folder.Path({})));
    QVERIFY(OrdinaryUser::TakesOver(source) && OrdinaryUser::TakesOver(files.Path({})));
    QVERIFY(QFile::setPermissions(folder.Path({}), QFile::ReadOwner | QFile::ExeOwner));
    ImportResult result;
    {
        const OrdinaryUser user;
        const auto goesOn = [&out](int) { return QFileInfo(out).size() < 3'000'000; };
        result = AudioImporter::ImportNow(source, out, {.sampleFormat = ImportOptions::Float}, goesOn);
    }
    QVERIFY(QFile::setPermissions(folder.Path({}), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(result.problem, Problem::Cancelled);
    QCOMPARE(TemporaryFiles::Read(out), QByteArray());
}

void TestAudioImporter::failsWithoutAThread()
{
    const TemporaryFiles files;
    const QString out = files.Write(u"out.wav"_s, "older");
    QVERIFY(OrdinaryUser::TakesOver(out) && OrdinaryUser::TakesOver(files.Path({})));
    QVERIFY(OrdinaryUser::TakesOver(m_mp3) && OrdinaryUser::TakesOver(m_files.Path({})));
    ImportResult result;
    {
        const OrdinaryUser user;
        const NoMoreThreads limit;
        result = AudioImporter::ImportNow(m_mp3, out);
    }
    QCOMPARE(result.problem, Problem::CannotBeWritten);
    QCOMPARE(TemporaryFiles::Read(out), "older");
    QCOMPARE(FilesIn(files.Path({})), QStringList{u"out.wav"_s});
}

void TestAudioImporter::probesWhatIsInAFile()
{
    const AudioFileInfo info = AudioFileInfo::Probe(m_mp3);
    QVERIFY(info.CanBeLoaded());
    QCOMPARE(info.GetProblemText(), QString());
    QCOMPARE(info.GetPath(), m_mp3);
    QVERIFY(info.GetContainer().contains(u"MP2/3"_s));
    QVERIFY(info.GetCodec().contains(u"MP3"_s));
    QCOMPARE(info.GetSampleRate(), 44100);
    QCOMPARE(info.GetChannelCount(), 2);
    QCOMPARE(info.GetBitsPerSample(), 0);
    QVERIFY(qAbs(info.GetDuration() - 2.0) < 0.1);

    const AudioFileInfo wav = AudioFileInfo::Probe(m_files.Path(u"tone.wav"_s));
    QCOMPARE(wav.GetBitsPerSample(), 16);
    QCOMPARE(wav.GetDuration(), 2.0);
}

void TestAudioImporter::probesTitleAndArtist_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addRow("of the file") << u"mp3"_s;
    QTest::addRow("of the stream") << u"ogg"_s;
}

void TestAudioImporter::probesTitleAndArtist()
{
    QFETCH(const QString, suffix);
    const TemporaryFiles files;
    const QString path = files.Path(u"song."_s + suffix);
    QVERIFY(Succeeds(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, m_files.Path(u"tone.wav"_s), u"-metadata"_s,
                                   u"title=Überall Töne"_s, u"-metadata"_s, u"artist=Somebody"_s, path}));
    const AudioFileInfo info = AudioFileInfo::Probe(path);
    QCOMPARE(info.GetTitle(), u"Überall Töne"_s);
    QCOMPARE(info.GetArtist(), u"Somebody"_s);
}

void TestAudioImporter::knowsNothingOfNothing()
{
    const AudioFileInfo info;
    QCOMPARE(info.GetProblem(), Problem::NotFound);
    QCOMPARE(info.GetSampleRate(), 0);
    QCOMPARE(info.GetChannelCount(), 0);
    QCOMPARE(info.GetBitsPerSample(), 0);
    QCOMPARE(info.GetDuration(), 0.0);
    QCOMPARE(info.GetImportedSize({}), 0);
    QVERIFY(info.GetTitle().isEmpty() && info.GetArtist().isEmpty() && info.GetContainer().isEmpty() &&
            info.GetCodec().isEmpty() && info.GetPath().isEmpty());
}

void TestAudioImporter::tellsHowLargeAnImportBecomes()
{
    const AudioFileInfo info = AudioFileInfo::Probe(m_files.Path(u"tone.wav"_s));
    QCOMPARE(info.GetImportedSize({}), 2 * 44100 * 8 + 80);
    QCOMPARE(info.GetImportedSize({.sampleRate = 96000, .sampleFormat = ImportOptions::Int16}),
             2 * 96000 * 4 + 80);
}

/** A tag that states a length of 1.2 GB, in a list that states even more. */
void TestAudioImporter::aLimitHoldsAgainstWhatHeadersState()
{
    const TemporaryFiles files;
    const QByteArray tag = "INAM" + LittleEndian(quint32(1'200'000'000));
    const QString path =
        files.Write(u"tag.wav"_s, WavBytes{.beforeData = {{"LIST", "INFO" + tag, 1'300'000'000}}}.Build());
    // A program of its own: what this one has taken by now would hide it.
    QProcess program;
    program.start(QCoreApplication::applicationFilePath(), {u"probe"_s, path});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    const qint64 most = program.readAllStandardOutput().toLongLong();
    QVERIFY2(most > 1000 && most < 500'000, qPrintable(QString::number(most)));
}

void TestAudioImporter::hasASentenceForEveryProblem()
{
    QStringList sentences;
    for (int i = int(Problem::NotFound); i <= int(Problem::Cancelled); ++i) {
        const QString sentence = AudioFileInfo::TextOf(Problem(i), u"song.mp3"_s);
        QVERIFY(sentence.contains(u"song.mp3"_s));
        QVERIFY(!sentences.contains(sentence));
        sentences << sentence;
    }
    QCOMPARE(AudioFileInfo::TextOf(Problem::None, u"song.mp3"_s), QString());
    QCOMPARE(AudioFileInfo::Probe(u"song.mp3"_s).GetProblemText(),
             AudioFileInfo::TextOf(Problem::NotFound, QFileInfo(u"song.mp3"_s).absoluteFilePath()));
}

void TestAudioImporter::hasASentenceForEveryResult()
{
    QStringList sentences;
    for (int code = WavFile::ErrorChannelCount; code < WavFile::Success; ++code) {
        const QString sentence = TextOf(WavFile::AudioEngineReturnValue(code));
        QVERIFY(!sentence.isEmpty());
        QVERIFY(!sentences.contains(sentence));
        sentences << sentence;
    }
    QCOMPARE(TextOf(WavFile::Success), QString());
}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "probe") == 0) {
        return Probe(QString::fromLocal8Bit(argv[2]));
    }
    TestAudioImporter test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_audioimporter.moc"
