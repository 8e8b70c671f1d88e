#include "tests/support/AudioPrograms.h"
#include "tests/support/DecoderTestAccess.h"
#include "tests/support/ScarceMemory.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QDir>
#include <QtTest/QTest>

#include <cmath>
#include <sys/stat.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

using namespace Qt::Literals::StringLiterals;
using namespace AudioPrograms;

namespace {

qsizetype OpenFileCount()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size();
}

QByteArray Message(const QByteArray& text, const QString& path)
{
    return text + " \"" + path.toUtf8() + '"';
}

/** A WAV file of samples that no decoder knows. */
QByteArray UnknownCodec()
{
    using WavTest::LittleEndian;
    return "RIFF" + LittleEndian(quint32(236)) + "WAVEfmt " + LittleEndian(quint32(16)) +
           LittleEndian(quint16(0x7A7B)) + LittleEndian(quint16(1)) + LittleEndian(quint32(44100)) +
           LittleEndian(quint32(88200)) + LittleEndian(quint16(2)) + LittleEndian(quint16(16)) + "data" +
           LittleEndian(quint32(200)) + QByteArray(200, 'x');
}

} // namespace

class TestDecoderDuration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(MakeTone(m_files.Path(u"tone.wav"_s), 44100, 2, 1.5)); }

    void agreesWithFFprobe_data();
    void agreesWithFFprobe();
    void takesTheStreamsDurationWhereTheContainerStatesNone();
    void isZeroForAnEmptyPath();
    void tellsWhyThereIsNone_data();
    void tellsWhyThereIsNone();
    void tellsThatTheStreamsCouldNotBeLookedAt();
    void tellsThatTheParametersCouldNotBeCopied();
    void isZeroForWhatWouldBlock();
    void leavesNoFileOpen();
    void opensAStreamForDecoding();
    void opensTheFirstAudioStreamOfAFilm();
    void tellsThatTheCodecContextIsMissing();
    void leavesTheStreamIndexOfAFileThatCannotBeOpened();

private:
    QString Encoded(const QString& format);
    QString Film();

    TemporaryFiles m_files;
};

QString TestDecoderDuration::Encoded(const QString& format)
{
    const QString path = m_files.Path(u"tone."_s + format);
    return Encode(format, m_files.Path(u"tone.wav"_s), path) ? path : QString();
}

/** A film with its picture before its sound. */
QString TestDecoderDuration::Film()
{
    const QString path = m_files.Path(u"film.mkv"_s);
    const QStringList arguments{u"-v"_s,
                                u"error"_s,
                                u"-y"_s,
                                u"-f"_s,
                                u"lavfi"_s,
                                u"-i"_s,
                                u"testsrc=duration=1:size=64x64:rate=5"_s,
                                u"-i"_s,
                                m_files.Path(u"tone.wav"_s),
                                u"-c:v"_s,
                                u"mpeg4"_s,
                                u"-c:a"_s,
                                u"flac"_s,
                                u"-map"_s,
                                u"0"_s,
                                u"-map"_s,
                                u"1"_s};
    return Succeeds(u"ffmpeg"_s, arguments + QStringList{path}) ? path : QString();
}

void TestDecoderDuration::agreesWithFFprobe_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("channels");
    QTest::addColumn<QString>("name");
    for (const char* format : {"mp3", "flac", "ogg", "m4a", "wav"}) {
        const QString suffix = QString::fromLatin1(format);
        QTest::addRow("%s, 22050 Hz, mono", format) << suffix << 22050 << 1 << u"file"_s;
        QTest::addRow("%s, 44100 Hz, stereo", format) << suffix << 44100 << 2 << u"file"_s;
        QTest::addRow("%s, 48000 Hz, mono", format) << suffix << 48000 << 1 << u"file"_s;
        QTest::addRow("%s, unusual name", format) << suffix << 44100 << 1 << u"ä #%20%d?音"_s;
    }
}

void TestDecoderDuration::agreesWithFFprobe()
{
    QFETCH(const QString, format);
    QFETCH(const int, rate);
    QFETCH(const int, channels);
    QFETCH(const QString, name);
    const TemporaryFiles files;
    const QString path = files.Path(name + u'.' + format);
    QVERIFY(MakeTone(files.Path(u"base.wav"_s), rate, channels, 1.237));
    QVERIFY(format == u"wav"_s ? QFile::copy(files.Path(u"base.wav"_s), path)
                               : Encode(format, files.Path(u"base.wav"_s), path));
    const int duration = Decoder::GetDuration(path);
    QCOMPARE(duration, int(ProbedSeconds(path) * 1000.0 + 0.0005));
    // MP3 and AAC frames reach a little past the end of the sound.
    QVERIFY(duration >= 1237 && duration < 1237 + 120);
}

void TestDecoderDuration::takesTheStreamsDurationWhereTheContainerStatesNone()
{
    const QString path = Encoded(u"m4a"_s);
    const int duration = Decoder::GetDuration(path);
    QVERIFY(duration >= 1490 && duration < 1600);
    // The duration of the whole lies in the "mvhd" box, behind version, flags, two times and a time scale.
    QByteArray bytes = TemporaryFiles::Read(path);
    const qsizetype box = bytes.indexOf("mvhd");
    QVERIFY(box > 0);
    QVERIFY(bytes.mid(box + 20, 4) != QByteArray(4, '\0'));
    bytes.replace(box + 20, 4, QByteArray(4, '\0'));
    const QString patched = m_files.Write(u"patched.m4a"_s, bytes);
    // FFmpeg 7 makes a duration of the whole of the streams' already, FFmpeg 5 leaves it at 0.
    const int streamDuration = Decoder::GetDuration(patched);
    QVERIFY(std::abs(streamDuration - duration) < 50);
}

void TestDecoderDuration::isZeroForAnEmptyPath()
{
    QCOMPARE(Decoder::GetDuration({}), 0);
    QCOMPARE(Decoder::GetDuration(u""_s), 0);
}

void TestDecoderDuration::tellsWhyThereIsNone_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("message");
    const QByteArray cannotOpen = "Could not open file: ";
    QTest::addRow("missing file") << QByteArray() << u"missing.mp3"_s << cannotOpen;
    QTest::addRow("folder") << QByteArray() << u"."_s << cannotOpen;
    QTest::addRow("empty file") << QByteArray("") << u"empty.mp3"_s << cannotOpen;
    QTest::addRow("text") << QByteArray("some text") << u"text.mp3"_s << cannotOpen;
    QTest::addRow("picture") << Output(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                                     u"testsrc=duration=1:size=64x64:rate=1"_s, u"-f"_s,
                                                     u"image2pipe"_s, u"-c:v"_s, u"png"_s, u"-"_s})
                             << u"picture.mp3"_s << QByteArray("Could not retrieve audio stream from file: ");
    QTest::addRow("unknown codec") << UnknownCodec() << u"unknown.wav"_s
                                   << QByteArray("Failed to open decoder for stream 0 in file ");
}

void TestDecoderDuration::tellsWhyThereIsNone()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, name);
    QFETCH(const QByteArray, message);
    if (!bytes.isNull()) {
        QVERIFY(!m_files.Write(name, bytes).isEmpty());
    }
    const QString path = m_files.Path(name);
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    QTest::ignoreMessage(QtDebugMsg, Message(message, path).constData());
    const qsizetype openFiles = OpenFileCount();
    QCOMPARE(Decoder::GetDuration(path), 0);
    QCOMPARE(OpenFileCount(), openFiles);
}

void TestDecoderDuration::tellsThatTheStreamsCouldNotBeLookedAt()
{
    const QString path = Encoded(u"flac"_s);
    const qsizetype openFiles = OpenFileCount();
    const MemoryThatEndsAt memory("Before avformat_find_stream_info()");
    QTest::ignoreMessage(QtDebugMsg, Message("Could not retrieve stream info from file: ", path).constData());
    QCOMPARE(Decoder::GetDuration(path), 0);
    QCOMPARE(OpenFileCount(), openFiles);
}

void TestDecoderDuration::tellsThatTheParametersCouldNotBeCopied()
{
    const QString path = Encoded(u"flac"_s);
    const qsizetype openFiles = OpenFileCount();
    const MemoryThatEndsAt memory("After avformat_find_stream_info()");
    QTest::ignoreMessage(QtDebugMsg, "Error copying codec parameters to codec context:");
    QCOMPARE(Decoder::GetDuration(path), 0);
    QCOMPARE(OpenFileCount(), openFiles);
}

void TestDecoderDuration::isZeroForWhatWouldBlock()
{
    const QString pipe = m_files.Path(u"pipe.mp3"_s);
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    QTest::ignoreMessage(QtDebugMsg, Message("Could not open file: ", pipe).constData());
    QCOMPARE(Decoder::GetDuration(pipe), 0);
}

void TestDecoderDuration::leavesNoFileOpen()
{
    const QString path = Encoded(u"mp3"_s);
    QVERIFY(Decoder::GetDuration(path) > 0);
    const qsizetype openFiles = OpenFileCount();
    for (int i = 0; i < 20; ++i) {
        QVERIFY(Decoder::GetDuration(path) > 0);
    }
    QCOMPARE(OpenFileCount(), openFiles);
}

void TestDecoderDuration::opensAStreamForDecoding()
{
    AVFormatContext* format = avformat_alloc_context();
    AVCodecContext* codec = avcodec_alloc_context3(nullptr);
    int streamIndex = 7;
    QCOMPARE(DecoderTestAccess::GetAudioCodecContext(format, codec, streamIndex, Encoded(u"flac"_s)), 0);
    QCOMPARE(streamIndex, 0);
    QVERIFY(avcodec_is_open(codec) != 0);
    QCOMPARE(codec->codec_id, AV_CODEC_ID_FLAC);
    QCOMPARE(codec->sample_rate, 44100);
    avcodec_free_context(&codec);
    avformat_close_input(&format);
}

void TestDecoderDuration::opensTheFirstAudioStreamOfAFilm()
{
    AVFormatContext* format = avformat_alloc_context();
    AVCodecContext* codec = avcodec_alloc_context3(nullptr);
    int streamIndex = 7;
    QCOMPARE(DecoderTestAccess::GetAudioCodecContext(format, codec, streamIndex, Film()), 0);
    QCOMPARE(streamIndex, 1);
    avcodec_free_context(&codec);
    avformat_close_input(&format);
}

void TestDecoderDuration::tellsThatTheCodecContextIsMissing()
{
    AVFormatContext* format = avformat_alloc_context();
    int streamIndex = 7;
    QTest::ignoreMessage(QtDebugMsg, "Source codec context in not initialized correctly");
    QCOMPARE(DecoderTestAccess::GetAudioCodecContext(format, nullptr, streamIndex, Encoded(u"flac"_s)), -1);
    QCOMPARE(streamIndex, 0);
    avformat_close_input(&format);
}

void TestDecoderDuration::leavesTheStreamIndexOfAFileThatCannotBeOpened()
{
    AVCodecContext* codec = avcodec_alloc_context3(nullptr);
    int streamIndex = 7;
    const QString missing = m_files.Path(u"missing.flac"_s);
    QTest::ignoreMessage(QtDebugMsg, Message("Could not open file: ", missing).constData());
    // The failing call frees the format context.
    QCOMPARE(DecoderTestAccess::GetAudioCodecContext(avformat_alloc_context(), codec, streamIndex, missing), -1);
    QCOMPARE(streamIndex, 7);
    avcodec_free_context(&codec);
}

QTEST_GUILESS_MAIN(TestDecoderDuration)
#include "tst_decoderduration.moc"
