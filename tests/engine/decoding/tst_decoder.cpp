#include "engine/decoding/DecoderSource.h"
#include "tests/support/AudioPrograms.h"
#include "tests/support/DecoderTestAccess.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFiles.h"

#include <vantorAudioEngine/Decoder.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtCore/QtEndian>
#include <QtMultimedia/QAudioBuffer>
#include <QtMultimedia/QAudioFormat>
#include <QtTest/QTest>

#include <chrono>
#include <initializer_list>
#include <limits>
#include <memory>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::AudioEngine::DecoderSource;
using vantoraudio::AudioEngine::MakeQtDecoderSource;
using vantoraudio::AudioEngine::SilenceLimits;
using namespace std::chrono_literals;

namespace {

QByteArray RandomBytes(int size)
{
    QRandomGenerator generator(7);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes) {
        byte = static_cast<char>(generator.bounded(256));
    }
    return bytes;
}

QStringList AllIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

constexpr int fakeRate = 48000;
constexpr int fakeChannels = 2;

QAudioBuffer Buffer(QAudioFormat::SampleFormat sampleFormat, const QByteArray& bytes)
{
    QAudioFormat format;
    format.setSampleFormat(sampleFormat);
    format.setSampleRate(fakeRate);
    format.setChannelCount(fakeChannels);
    return QAudioBuffer(bytes, format);
}

/** The float sample 0.5 again and again, but for the last one. */
QAudioBuffer FloatBuffer(float last = 0.5F)
{
    QList<float> samples(2048, 0.5F);
    samples.back() = last;
    return Buffer(QAudioFormat::Float,
                  {reinterpret_cast<const char*>(samples.constData()), samples.size() * qsizetype(sizeof(float))});
}

/** What a fake decoder does. */
struct Script
{
    enum Ending
    {
        Finishes,
        Fails,
        FailsAndGoesOn,
        FallsSilent
    };

    int buffers = 0;
    Ending ending = FallsSilent;
    bool mayStandStill = false;
    bool beginsWithinStart = true;
    SilenceLimits limits{.tick = 5ms};
    QAudioBuffer buffer = FloatBuffer();
};

/** Follows its script instead of decoding. */
class FakeSource : public DecoderSource
{
public:
    FakeSource(const Script& script, int& readings) : m_script(script), m_readings(readings) {}

    void Start() override
    {
        if (m_script.beginsWithinStart) {
            Continue();
        } else {
            // Not a queued call: an inner event loop leaves those waiting.
            QTimer::singleShot(10, this, [this] { Continue(); });
        }
    }
    QAudioBuffer Read() override
    {
        ++m_readings;
        ContinueSoon();
        return m_script.buffer;
    }
    bool MayStandStill() const override { return m_script.mayStandStill; }
    SilenceLimits LongestSilence() const override { return m_script.limits; }

private:
    void ContinueSoon()
    {
        QMetaObject::invokeMethod(
            this, [this] { Continue(); }, Qt::QueuedConnection);
    }
    void Continue()
    {
        if (m_told++ < m_script.buffers) {
            Q_EMIT BufferReady();
        } else if (m_script.ending == Script::Finishes) {
            Q_EMIT Finished();
        } else if (m_script.ending != Script::FallsSilent) {
            Q_EMIT Failed();
        }
        if (m_script.ending == Script::FailsAndGoesOn && m_told > m_script.buffers) {
            Q_EMIT BufferReady();
            Q_EMIT Finished();
        }
    }

    const Script m_script;
    int& m_readings;
    int m_told = 0;
};

/** Makes fake decoders, one for each script; then Qt's. */
class Fakes
{
public:
    Fakes(std::initializer_list<Script> scripts) : m_scripts(scripts) {}

    std::unique_ptr<DecoderSource> operator()(const QString& path)
    {
        const int index = m_made++;
        return index < m_scripts.size() ? std::make_unique<FakeSource>(m_scripts.at(index), m_readings)
                                        : MakeQtDecoderSource(path);
    }

    int Made() const { return m_made; }
    int Readings() const { return m_readings; }

private:
    const QList<Script> m_scripts;
    int m_made = 0;
    int m_readings = 0;
};

} // namespace

class TestDecoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void refusesEmptyPathsWithoutCreatingAFile();
    void refusesWhatCannotBeDecoded_data();
    void refusesWhatCannotBeDecoded();
    void refusesAnInputThatWouldBlock();
    void refusesAnOutputThatCannotBeWritten_data();
    void refusesAnOutputThatCannotBeWritten();
    void leavesAnOlderOutputWhenTheInputIsRefused();

    void decodesAFileOntoItself_data();
    void decodesAFileOntoItself();
    void keepsTheInputWhenDecodingOntoItFails();
    void doesNotOverwriteItsInputByteByByte();
    void replacesAnOlderOutput();

    void tellsThatTheDiskIsFull_data();
    void tellsThatTheDiskIsFull();
    void tellsThatTheFileCannotGrow();
    void decodesNoFurtherWhenTheDiskIsFull();

    void writesWhatTheDecoderDelivers();
    void endsWhenTheDecoderNeverStarts_data();
    void endsWhenTheDecoderNeverStarts();
    void startsAnotherDecoderWhenTheFirstSaysNothing();
    void endsWhenTheDecoderFallsSilent_data();
    void endsWhenTheDecoderFallsSilent();
    void startsAnotherDecoderWhenTheFirstFallsSilent();
    void endsWhenTheDecoderReportsAnError_data();
    void endsWhenTheDecoderReportsAnError();
    void refusesABufferThatIsNoSound_data();
    void refusesABufferThatIsNoSound();
    void beginsNothingAgainAfterItsEnd();
    void goesOnWhenTheProgramItselfWasBusy();

    void endsWithTheApplication_data();
    void endsWithTheApplication();
    void decodesSeveralFilesAtOnce();
    void decodesTwiceIntoTheSameFile();
    void worksOnAnyThread();
    void leavesNoFileOpen();

    void writesTheHeader();
    void statesTheByteRateOfEveryRate_data();
    void statesTheByteRateOfEveryRate();
    void refusesRatesThatNoAudioHas_data();
    void refusesRatesThatNoAudioHas();
    void tellsThatTheHeaderWasNotWritten();

private:
    QString Path(const QString& name) const { return m_files.Path(name); }
    WavFile::AudioEngineReturnValue ConvertWith(Fakes& fakes, const QString& outPath) const
    {
        return DecoderTestAccess::Convert(Path(u"short.mp3"_s), outPath, fakeRate, std::ref(fakes));
    }
    QByteArray Expected(const QString& name) const { return TemporaryFiles::Read(Path(name + u".expected")); }
    void MakeFile(const QString& name, int rate, double seconds);

    TemporaryFiles m_files;
};

void TestDecoder::MakeFile(const QString& name, int rate, double seconds)
{
    QVERIFY(AudioPrograms::MakeTone(Path(u"tone.wav"_s), rate, 2, seconds));
    QVERIFY(AudioPrograms::Encode(u"mp3"_s, Path(u"tone.wav"_s), Path(name)));
    QCOMPARE(Decoder::Convert(Path(name), Path(name + u".expected"_s), 48000), WavFile::Success);
    QVERIFY(static_cast<double>(Expected(name).size()) > seconds * 48000 * 7.5);
}

void TestDecoder::initTestCase()
{
    MakeFile(u"short.mp3"_s, 44100, 2.0);
    MakeFile(u"other.mp3"_s, 22050, 3.0);
    MakeFile(u"long.mp3"_s, 44100, 60.0);
    QVERIFY(QFile::copy(Path(u"long.mp3"_s), Path(u"long #1.mp3"_s)));
}

void TestDecoder::refusesEmptyPathsWithoutCreatingAFile()
{
    const TemporaryFiles files;
    QCOMPARE(Decoder::Convert({}, files.Path(u"out.wav"_s), 96000), WavFile::ErrorOpenFile);
    QCOMPARE(Decoder::Convert(Path(u"short.mp3"_s), {}, 96000), WavFile::ErrorOpenFile);
    QCOMPARE(Decoder::Convert({}, {}, 96000), WavFile::ErrorOpenFile);
    QCOMPARE(Decoder::ConvertToFloat({}, files.Path(u"out.wav"_s), 96000), WavFile::ErrorOpenFile);
    QVERIFY(AllIn(files.Path({})).isEmpty());
}

void TestDecoder::refusesWhatCannotBeDecoded_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("result");
    const QByteArray text = "The quick brown fox jumps over the lazy dog.\n";
    QTest::addRow("missing file") << QByteArray() << u"missing.mp3"_s << -2;
    QTest::addRow("folder") << QByteArray() << u"."_s << -2;
    QTest::addRow("file as a folder") << QByteArray("x") << u"file.mp3/x.mp3"_s << -2;
    QTest::addRow("empty file") << QByteArray("") << u"file.mp3"_s << -1;
    QTest::addRow("one byte") << QByteArray("R") << u"file.mp3"_s << -1;
    QTest::addRow("random bytes, mp3") << RandomBytes(100000) << u"file.mp3"_s << -1;
    QTest::addRow("random bytes, m4a") << RandomBytes(100000) << u"file.m4a"_s << -1;
    QTest::addRow("random bytes, ogg") << RandomBytes(1000) << u"file.ogg"_s << -1;
    QTest::addRow("many random bytes") << RandomBytes(20'000'000) << u"file.mp3"_s << -1;
    QTest::addRow("zeros") << QByteArray(100000, '\0') << u"file.mp3"_s << -1;
    QTest::addRow("text, mp3") << text.repeated(1000) << u"file.mp3"_s << -1;
    QTest::addRow("text, flac") << text << u"file.flac"_s << -1;
    QTest::addRow("much text, flac") << text.repeated(1000) << u"file.flac"_s << -1;
    QTest::addRow("text, ogg") << text.repeated(1000) << u"file.ogg"_s << -1;
    QTest::addRow("text, m4a") << text.repeated(1000) << u"file.m4a"_s << -1;
    QTest::addRow("text, aac") << text.repeated(1000) << u"file.aac"_s << -1;
    QTest::addRow("text, wav") << text.repeated(1000) << u"file.b.wav"_s << -1;
    QTest::addRow("a playlist") << QByteArray("#EXTM3U\n#EXTINF:1,\nmissing.mp3\n") << u"file.mp3"_s << -1;
    QTest::addRow("a RIFF header alone") << QByteArray("RIFF\x24\0\0\0WAVE", 12) << u"file.b.wav"_s << -1;
    QTest::addRow("an MP3 tag alone") << QByteArray("ID3\x03\0\0\0\0\0\0", 10) << u"file.mp3"_s << -1;
}

void TestDecoder::refusesWhatCannotBeDecoded()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, name);
    QFETCH(const int, result);
    const TemporaryFiles files;
    if (!bytes.isNull()) {
        QVERIFY(!files.Write(name.section(u'/', 0, 0), bytes).isEmpty());
    }
    const QStringList before = AllIn(files.Path({}));
    QCOMPARE(int(Decoder::Convert(files.Path(name), files.Path(u"out.wav"_s), 96000)), result);
    QCOMPARE(AllIn(files.Path({})), before);
}

void TestDecoder::refusesAnInputThatWouldBlock()
{
    const TemporaryFiles files;
    const QString pipe = files.Path(u"pipe.mp3"_s);
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    QCOMPARE(Decoder::Convert(pipe, files.Path(u"out.wav"_s), 96000), WavFile::ErrorOpenFile);
    QCOMPARE(Decoder::Convert(u"/dev/zero"_s, files.Path(u"out.wav"_s), 96000), WavFile::ErrorOpenFile);
    QCOMPARE(AllIn(files.Path({})), QStringList{u"pipe.mp3"_s});
}

void TestDecoder::refusesAnOutputThatCannotBeWritten_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("a folder") << u"."_s;
    QTest::addRow("no such folder") << u"missing/out.wav"_s;
    QTest::addRow("a name that is too long") << QString(300, u'x');
    QTest::addRow("a pipe that nobody reads") << u"pipe"_s;
}

void TestDecoder::refusesAnOutputThatCannotBeWritten()
{
    QFETCH(const QString, name);
    const TemporaryFiles files;
    QCOMPARE(mkfifo(qPrintable(files.Path(u"pipe"_s)), 0600), 0);
    QCOMPARE(Decoder::Convert(Path(u"short.mp3"_s), files.Path(name), 96000), WavFile::ErrorOpenFile);
    // The output is looked at before the content of the input.
    const QString text = files.Write(u"text.mp3"_s, "no audio");
    QCOMPARE(Decoder::Convert(text, files.Path(name), 96000), WavFile::ErrorOpenFile);
    QCOMPARE(AllIn(files.Path({})), (QStringList{u"pipe"_s, u"text.mp3"_s}));
}

void TestDecoder::leavesAnOlderOutputWhenTheInputIsRefused()
{
    const TemporaryFiles files;
    const QString outPath = files.Write(u"out.wav"_s, "older");
    QCOMPARE(Decoder::Convert(files.Path(u"missing.mp3"_s), outPath, 96000), WavFile::ErrorOpenFile);
    QCOMPARE(Decoder::Convert(outPath, outPath, 96000), WavFile::ErrorInvalidFormat);
    QCOMPARE(Decoder::Convert(files.Write(u"text.mp3"_s, "text"), outPath, 96000), WavFile::ErrorInvalidFormat);
    QCOMPARE(TemporaryFiles::Read(outPath), QByteArray("older"));
}

void TestDecoder::decodesAFileOntoItself_data()
{
    QTest::addColumn<QString>("outName");
    QTest::addRow("same path") << u"song.mp3"_s;
    QTest::addRow("another spelling") << u"./../%1/song.mp3"_s;
    QTest::addRow("through a link") << u"link.mp3"_s;
}

void TestDecoder::decodesAFileOntoItself()
{
    QFETCH(const QString, outName);
    const TemporaryFiles files;
    const QString song = files.Path(u"song.mp3"_s);
    QVERIFY(QFile::copy(Path(u"short.mp3"_s), song));
    QVERIFY(QFile::link(song, files.Path(u"link.mp3"_s)));
    const QString folder = QFileInfo(song).dir().dirName();
    const QString outPath = files.Path(outName.contains(u'%') ? outName.arg(folder) : outName);
    QCOMPARE(Decoder::Convert(song, outPath, 48000), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(song), Expected(u"short.mp3"_s));
    QCOMPARE(AllIn(files.Path({})), (QStringList{u"link.mp3"_s, u"song.mp3"_s}));
}

void TestDecoder::keepsTheInputWhenDecodingOntoItFails()
{
    const TemporaryFiles files;
    const QString song = files.Path(u"song.mp3"_s);
    QVERIFY(QFile::copy(Path(u"short.mp3"_s), song));
    {
        const FileSizeLimit limit(300000);
        QCOMPARE(Decoder::Convert(song, song, 48000), WavFile::ErrorWriteHeader);
    }
    QCOMPARE(TemporaryFiles::Read(song), TemporaryFiles::Read(Path(u"short.mp3"_s)));
    QCOMPARE(AllIn(files.Path({})), QStringList{u"song.mp3"_s});
}

/** Where the folder may not be written, a disk that fills up would leave neither the input nor the result. */
void TestDecoder::doesNotOverwriteItsInputByteByByte()
{
    const TemporaryFiles files;
    const QString song = files.Path(u"song.mp3"_s);
    QVERIFY(QFile::copy(Path(u"short.mp3"_s), song));
    QVERIFY(OrdinaryUser::TakesOver(song) && OrdinaryUser::TakesOver(files.Path({})));
    QVERIFY(QFile::setPermissions(files.Path({}), QFile::ReadOwner | QFile::ExeOwner));
    int result = 1;
    {
        const OrdinaryUser user;
        QVERIFY(user.IsOrdinary());
        result = Decoder::Convert(song, song, 48000);
    }
    QVERIFY(QFile::setPermissions(files.Path({}), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(result, int(WavFile::ErrorOpenFile));
    QCOMPARE(TemporaryFiles::Read(song), TemporaryFiles::Read(Path(u"short.mp3"_s)));
}

void TestDecoder::replacesAnOlderOutput()
{
    const TemporaryFiles files;
    const QString outPath = files.Write(u"out.wav"_s, QByteArray(5'000'000, 'x'));
    QCOMPARE(Decoder::Convert(Path(u"short.mp3"_s), outPath, 48000), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(outPath), Expected(u"short.mp3"_s));
}

void TestDecoder::tellsThatTheDiskIsFull_data()
{
    QTest::addColumn<QString>("outPath");
    QTest::addRow("device") << u"/dev/full"_s;
    QTest::addRow("through a link") << Path(u"full.wav"_s);
}

void TestDecoder::tellsThatTheDiskIsFull()
{
    QFETCH(const QString, outPath);
    QFile::link(u"/dev/full"_s, Path(u"full.wav"_s));
    QCOMPARE(Decoder::Convert(Path(u"short.mp3"_s), outPath, 48000), WavFile::ErrorWriteHeader);
    QVERIFY(QFileInfo::exists(u"/dev/full"_s) && !QFileInfo(u"/dev/full"_s).isFile());
}

void TestDecoder::tellsThatTheFileCannotGrow()
{
    const TemporaryFiles files;
    const QString outPath = files.Write(u"out.wav"_s, Expected(u"other.mp3"_s));
    {
        // All but the last few bytes fit, so that the very last write is the one that fails.
        const FileSizeLimit limit(static_cast<rlim_t>(Expected(u"short.mp3"_s).size()) - 10);
        QCOMPARE(Decoder::Convert(Path(u"short.mp3"_s), outPath, 48000), WavFile::ErrorWriteHeader);
    }
    // The older file would pass for the result.
    QVERIFY(AllIn(files.Path({})).isEmpty());
}

void TestDecoder::decodesNoFurtherWhenTheDiskIsFull()
{
    const TemporaryFiles files;
    Fakes fakes{Script{.buffers = 1000, .ending = Script::Finishes}};
    {
        const FileSizeLimit limit(2'000'000);
        QCOMPARE(ConvertWith(fakes, files.Path(u"out.wav"_s)), WavFile::ErrorWriteHeader);
    }
    // A buffer has 8192 bytes, and some of them are written together.
    QVERIFY(fakes.Readings() > 240 && fakes.Readings() < 260);
    QVERIFY(AllIn(files.Path({})).isEmpty());
}

void TestDecoder::writesWhatTheDecoderDelivers()
{
    const TemporaryFiles files;
    const QString outPath = files.Path(u"out.wav"_s);
    Fakes fakes{Script{.buffers = 20, .ending = Script::Finishes}};
    QCOMPARE(ConvertWith(fakes, outPath), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(outPath).mid(44), QByteArray("\0\0\0\x3f", 4).repeated(20 * 2048));
    QCOMPARE(fakes.Made(), 1);
}

void TestDecoder::endsWhenTheDecoderNeverStarts_data()
{
    QTest::addColumn<bool>("mayStandStill");
    QTest::addColumn<int>("attempts");
    QTest::addRow("one that always says how it ends") << false << 1;
    QTest::addRow("one that stands still now and then") << true << 2;
}

void TestDecoder::endsWhenTheDecoderNeverStarts()
{
    QFETCH(const bool, mayStandStill);
    QFETCH(const int, attempts);
    const TemporaryFiles files;
    const Script script{.mayStandStill = mayStandStill};
    Fakes fakes{script, script, script};
    QCOMPARE(ConvertWith(fakes, files.Path(u"out.wav"_s)), WavFile::ErrorInvalidFormat);
    QCOMPARE(fakes.Made(), attempts);
    QVERIFY(AllIn(files.Path({})).isEmpty());
}

void TestDecoder::startsAnotherDecoderWhenTheFirstSaysNothing()
{
    const TemporaryFiles files;
    Fakes fakes{Script{.mayStandStill = true}};
    const QString outPath = files.Path(u"out.wav"_s);
    QCOMPARE(ConvertWith(fakes, outPath), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(outPath), Expected(u"short.mp3"_s));
}

void TestDecoder::endsWhenTheDecoderFallsSilent_data()
{
    QTest::addColumn<bool>("mayStandStill");
    QTest::addColumn<int>("attempts");
    QTest::addRow("one that always says how it ends") << false << 1;
    QTest::addRow("one that stands still now and then") << true << 2;
}

void TestDecoder::endsWhenTheDecoderFallsSilent()
{
    QFETCH(const bool, mayStandStill);
    QFETCH(const int, attempts);
    const TemporaryFiles files;
    const QString outPath = files.Write(u"out.wav"_s, Expected(u"short.mp3"_s));
    // The limit before the first sound would never end it. A second one says nothing at all.
    const SilenceLimits limits{.tick = 5ms, .beforeFirstSound = std::numeric_limits<int>::max()};
    Fakes fakes{Script{.buffers = 20, .mayStandStill = mayStandStill, .limits = limits}, Script{}};
    QCOMPARE(ConvertWith(fakes, outPath), WavFile::ErrorInvalidFormat);
    QCOMPARE(fakes.Made(), attempts);
    QVERIFY(AllIn(files.Path({})).isEmpty());
}

void TestDecoder::startsAnotherDecoderWhenTheFirstFallsSilent()
{
    const TemporaryFiles files;
    const QString outPath = files.Path(u"out.wav"_s);
    // Late enough for some of the audio to be written already.
    Fakes fakes{Script{.buffers = 60, .mayStandStill = true}};
    QCOMPARE(ConvertWith(fakes, outPath), WavFile::Success);
    QCOMPARE(fakes.Made(), 2);
    QCOMPARE(TemporaryFiles::Read(outPath), Expected(u"short.mp3"_s));
}

void TestDecoder::endsWhenTheDecoderReportsAnError_data()
{
    QTest::addColumn<int>("buffers");
    QTest::addColumn<bool>("goesOn");
    QTest::addRow("while it starts") << 0 << false;
    QTest::addRow("later") << 10 << false;
    // What comes after the end of the call changes nothing.
    QTest::addRow("while it starts, and goes on") << 0 << true;
    QTest::addRow("later, and goes on") << 10 << true;
}

void TestDecoder::endsWhenTheDecoderReportsAnError()
{
    QFETCH(const int, buffers);
    QFETCH(const bool, goesOn);
    const TemporaryFiles files;
    Fakes fakes{Script{.buffers = buffers, .ending = goesOn ? Script::FailsAndGoesOn : Script::Fails}};
    QCOMPARE(ConvertWith(fakes, files.Path(u"out.wav"_s)), WavFile::ErrorInvalidFormat);
    QCOMPARE(fakes.Readings(), buffers);
    QCOMPARE(fakes.Made(), 1);
    QVERIFY(AllIn(files.Path({})).isEmpty());
}

void TestDecoder::refusesABufferThatIsNoSound_data()
{
    QTest::addColumn<QAudioBuffer>("buffer");
    QTest::addRow("unknown sample type") << Buffer(QAudioFormat::Unknown, QByteArray(64, 'x'));
    QTest::addRow("no format") << QAudioBuffer();
    QTest::addRow("not a number") << FloatBuffer(std::numeric_limits<float>::quiet_NaN());
    QTest::addRow("infinite") << FloatBuffer(std::numeric_limits<float>::infinity());
    QTest::addRow("infinite below") << FloatBuffer(-std::numeric_limits<float>::infinity());
}

void TestDecoder::refusesABufferThatIsNoSound()
{
    QFETCH(const QAudioBuffer, buffer);
    const TemporaryFiles files;
    Fakes fakes{Script{.buffers = 10, .ending = Script::Finishes, .buffer = buffer}};
    QCOMPARE(ConvertWith(fakes, files.Path(u"out.wav"_s)), WavFile::ErrorInvalidFormat);
    QCOMPARE(fakes.Readings(), 1);
    QVERIFY(AllIn(files.Path({})).isEmpty());
}

/** A call that has ended comes back only after the calls that its event loop has started. */
void TestDecoder::beginsNothingAgainAfterItsEnd()
{
    const TemporaryFiles files;
    const QString outPath = files.Path(u"outer.wav"_s);
    Fakes outer{Script{.ending = Script::Finishes, .mayStandStill = true, .beginsWithinStart = false}};
    // Silent for longer than the outer one may be.
    Fakes inner{Script{.limits = {.tick = 5ms, .beforeFirstSound = 2 * SilenceLimits().beforeFirstSound}}};
    int innerResult = 1;
    QTimer::singleShot(0, this, [&] { innerResult = ConvertWith(inner, files.Path(u"inner.wav"_s)); });
    QCOMPARE(ConvertWith(outer, outPath), WavFile::Success);
    QCOMPARE(innerResult, int(WavFile::ErrorInvalidFormat));
    QCOMPARE(outer.Made(), 1);
    QCOMPARE(TemporaryFiles::Read(outPath).size(), 44);
}

void TestDecoder::goesOnWhenTheProgramItselfWasBusy()
{
    const TemporaryFiles files;
    Fakes fakes{Script{.buffers = 20, .ending = Script::Finishes, .beginsWithinStart = false}};
    // Sleeps because it is the event loop that stands still, for longer than the decoder may be silent.
    QTimer::singleShot(0, this, [] { QThread::msleep(100); });
    QCOMPARE(ConvertWith(fakes, files.Path(u"out.wav"_s)), WavFile::Success);
    QCOMPARE(fakes.Readings(), 20);
}

void TestDecoder::endsWithTheApplication_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("plain name") << u"long.mp3"_s;
    QTest::addRow("name that must be escaped") << u"long #1.mp3"_s;
}

void TestDecoder::endsWithTheApplication()
{
    QFETCH(const QString, name);
    const TemporaryFiles files;
    int result = 1;
    bool isInside = false;
    QTimer::singleShot(0, this, [&] {
        QTimer::singleShot(0, this, [&] {
            isInside = result == 1;
            QCoreApplication::quit();
        });
        result = Decoder::Convert(Path(name), files.Path(u"out.wav"_s), 48000);
    });
    QCoreApplication::exec();
    QVERIFY(isInside);
    QCOMPARE(result, int(WavFile::ErrorInvalidFormat));
    QVERIFY(AllIn(files.Path({})).isEmpty());
}

void TestDecoder::decodesSeveralFilesAtOnce()
{
    const TemporaryFiles files;
    int innerResult = 1;
    int innermostResult = 1;
    QTimer::singleShot(1, this, [&] {
        QTimer::singleShot(1, this, [&] {
            innermostResult = Decoder::Convert(files.Path(u"missing"_s), files.Path(u"none.wav"_s), 48000);
        });
        innerResult = Decoder::Convert(Path(u"other.mp3"_s), files.Path(u"inner.wav"_s), 48000);
    });
    QCOMPARE(Decoder::Convert(Path(u"long.mp3"_s), files.Path(u"outer.wav"_s), 48000), WavFile::Success);
    QCOMPARE(innerResult, int(WavFile::Success));
    QCOMPARE(innermostResult, int(WavFile::ErrorOpenFile));
    QCOMPARE(TemporaryFiles::Read(files.Path(u"inner.wav"_s)), Expected(u"other.mp3"_s));
    QCOMPARE(TemporaryFiles::Read(files.Path(u"outer.wav"_s)), Expected(u"long.mp3"_s));
}

void TestDecoder::decodesTwiceIntoTheSameFile()
{
    const TemporaryFiles files;
    const QString outPath = files.Path(u"out.wav"_s);
    int innerResult = 1;
    QByteArray inner;
    QTimer::singleShot(1, this, [&] {
        innerResult = Decoder::Convert(Path(u"short.mp3"_s), outPath, 48000);
        inner = TemporaryFiles::Read(outPath);
    });
    QCOMPARE(Decoder::Convert(Path(u"long.mp3"_s), outPath, 48000), WavFile::Success);
    QCOMPARE(innerResult, int(WavFile::Success));
    // Either of them is whole when its call returns; the last one stays.
    QVERIFY(inner == Expected(u"short.mp3"_s) || inner == Expected(u"long.mp3"_s));
    const QByteArray last = TemporaryFiles::Read(outPath);
    QVERIFY(last == Expected(u"short.mp3"_s) || last == Expected(u"long.mp3"_s));
    QCOMPARE(AllIn(files.Path({})), QStringList{u"out.wav"_s});
}

void TestDecoder::worksOnAnyThread()
{
    const TemporaryFiles files;
    int result = 1;
    const auto decode = [&] {
        result = Decoder::Convert(Path(u"short.mp3"_s), files.Path(u"thread.wav"_s), 48000);
    };
    const std::unique_ptr<QThread> thread(QThread::create(decode));
    thread->start();
    QCOMPARE(Decoder::Convert(Path(u"other.mp3"_s), files.Path(u"main.wav"_s), 48000), WavFile::Success);
    QVERIFY(thread->wait(60000));
    QCOMPARE(result, int(WavFile::Success));
    QCOMPARE(TemporaryFiles::Read(files.Path(u"thread.wav"_s)), Expected(u"short.mp3"_s));
    QCOMPARE(TemporaryFiles::Read(files.Path(u"main.wav"_s)), Expected(u"other.mp3"_s));
}

void TestDecoder::leavesNoFileOpen()
{
    const TemporaryFiles files;
    const QString text = files.Write(u"text.mp3"_s, "no audio");
    const auto openFiles = [] {
        QStringList names;
        for (const QFileInfo& link : QDir(u"/proc/self/fd"_s).entryInfoList(QDir::AllEntries | QDir::System)) {
            const QString target = link.symLinkTarget();
            names += target.startsWith(QDir::tempPath()) ? QStringList{target} : QStringList{};
        }
        return names;
    };
    const QStringList before = openFiles();
    Decoder::Convert(Path(u"short.mp3"_s), files.Path(u"out.wav"_s), 48000);
    Decoder::Convert(text, files.Path(u"out.wav"_s), 48000);
    Decoder::Convert(Path(u"short.mp3"_s), files.Path(u"missing/out.wav"_s), 48000);
    QCOMPARE(openFiles(), before);
}

void TestDecoder::writesTheHeader()
{
    const TemporaryFiles files;
    QFile file(files.Write(u"out.wav"_s, QByteArray(50, 'x')));
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(50));
    QCOMPARE(DecoderTestAccess::WriteHeader(file, 0x01020304, 22050, 1), 1);
    QCOMPARE(file.pos(), 44);
    file.close();
    const QByteArray expected = QByteArray("RIFF\x28\x03\x02\x01WAVEfmt \x10\0\0\0", 20) +
                                QByteArray("\x03\0\x01\0\x22\x56\0\0\x88\x58\x01\0\x04\0\x20\0", 16) +
                                QByteArray("data\x04\x03\x02\x01", 8) + "xxxxxx";
    QCOMPARE(TemporaryFiles::Read(file.fileName()), expected);
}

void TestDecoder::statesTheByteRateOfEveryRate_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("channels");
    QTest::addColumn<quint32>("byteRate");
    QTest::addRow("usual") << 96000 << 2 << quint32(768000);
    QTest::addRow("more bits than a field holds") << 100'000'000 << 2 << quint32(800'000'000);
    QTest::addRow("bytes that need the highest bit") << 300'000'000 << 2 << quint32(2'400'000'000);
    QTest::addRow("more bytes than a field holds") << 600'000'000 << 2 << quint32(505'032'704);
    QTest::addRow("the highest rate") << std::numeric_limits<int>::max() << 1 << quint32(0xFFFFFFFC);
}

void TestDecoder::statesTheByteRateOfEveryRate()
{
    QFETCH(const int, rate);
    QFETCH(const int, channels);
    const TemporaryFiles files;
    QFile file(files.Path(u"out.wav"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(DecoderTestAccess::WriteHeader(file, 8, rate, channels), 1);
    const QByteArray header = TemporaryFiles::Read(file.fileName());
    QCOMPARE(qFromLittleEndian<qint32>(header.constData() + 24), rate);
    QTEST(qFromLittleEndian<quint32>(header.constData() + 28), "byteRate");
}

void TestDecoder::refusesRatesThatNoAudioHas_data()
{
    QTest::addColumn<int>("rate");
    QTest::addRow("0") << 0;
    QTest::addRow("-2") << -2;
    QTest::addRow("-96000") << -96000;
    QTest::addRow("the lowest number") << std::numeric_limits<int>::min();
}

/** Also where the file would be decoded onto itself. */
void TestDecoder::refusesRatesThatNoAudioHas()
{
    QFETCH(const int, rate);
    const TemporaryFiles files;
    const QString song = files.Path(u"song.mp3"_s);
    QVERIFY(QFile::copy(Path(u"short.mp3"_s), song));
    QCOMPARE(Decoder::Convert(song, song, rate), WavFile::ErrorInvalidFormat);
    QCOMPARE(Decoder::Convert(song, files.Path(u"out.wav"_s), rate), WavFile::ErrorInvalidFormat);
    QCOMPARE(TemporaryFiles::Read(song), TemporaryFiles::Read(Path(u"short.mp3"_s)));
    QCOMPARE(AllIn(files.Path({})), QStringList{u"song.mp3"_s});
}

void TestDecoder::tellsThatTheHeaderWasNotWritten()
{
    const TemporaryFiles files;
    QFile cut(files.Path(u"cut.wav"_s));
    QVERIFY(cut.open(QIODevice::WriteOnly));
    {
        const FileSizeLimit limit(20);
        QCOMPARE(DecoderTestAccess::WriteHeader(cut, 8, 44100, 2), 0);
    }
    QFile readOnly(files.Write(u"out.wav"_s, {}));
    QVERIFY(readOnly.open(QIODevice::ReadOnly));
    const QByteArray warning =
        "QIODevice::write (QFile, \"" + readOnly.fileName().toUtf8() + "\"): ReadOnly device";
    QTest::ignoreMessage(QtWarningMsg, warning.constData());
    QCOMPARE(DecoderTestAccess::WriteHeader(readOnly, 8, 44100, 2), 0);
}

QTEST_GUILESS_MAIN(TestDecoder)
#include "tst_decoder.moc"
