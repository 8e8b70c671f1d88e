#include "tests/support/AudioPrograms.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/Decoder.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtTest/QTest>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;
using namespace AudioPrograms;

namespace {

constexpr int headerSize = 44;

QByteArray FloatHeader(int dataSize, int rate, int channels)
{
    using WavTest::LittleEndian;
    return "RIFF" + LittleEndian(quint32(dataSize + 36)) + "WAVEfmt " + LittleEndian(quint32(16)) +
           LittleEndian(quint16(3)) + LittleEndian(quint16(channels)) + LittleEndian(quint32(rate)) +
           LittleEndian(quint32(rate * channels * 4)) + LittleEndian(quint16(channels * 4)) +
           LittleEndian(quint16(32)) + "data" + LittleEndian(quint32(dataSize));
}

using Conversion = WavFile::AudioEngineReturnValue (*)(const QString&, const QString&, int);

QByteArray Converted(Conversion convert, const QString& inPath, const QString& outPath, int rate)
{
    QElapsedTimer time;
    time.start();
    const auto result = convert(inPath, outPath, rate);
    if (result != WavFile::Success) {
        qWarning("%s: result %d after %lld ms", qPrintable(inPath), int(result), time.elapsed());
        return {};
    }
    return TemporaryFiles::Read(outPath);
}

/** A file with sound in it, decoded by the library. */
QByteArray Decoded(const QString& inPath, const QString& outPath, int rate)
{
    return Converted(&Decoder::Convert, inPath, outPath, rate);
}

QByteArray DecodedToFloat(const QString& inPath, const QString& outPath, int rate)
{
    return Converted(&Decoder::ConvertToFloat, inPath, outPath, rate);
}

bool Near(double value, double expected, double tolerance)
{
    return std::abs(value - expected) <= tolerance;
}

} // namespace

/** Real files, held against what the ffmpeg program makes of them. */
class TestDecoderFormats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void soundsLikeTheSameFileDecodedByFFmpeg_data();
    void soundsLikeTheSameFileDecodedByFFmpeg();
    void decodesFloatFormatsSoundlyWithoutConversion_data();
    void decodesFloatFormatsSoundlyWithoutConversion();
    void copiesTheSamplesWhenTheRatesAreEqual();
    void keepsIntegerSamplesUnderAFloatHeader();
    void turnsIntegerSamplesIntoFloats_data();
    void turnsIntegerSamplesIntoFloats();
    void takesMinusOneFor96000Hz();
    void decodesFilesOfAnyName_data();
    void decodesFilesOfAnyName();
    void decodesARelativePathWithAColon();
    void decodesSoundBesidePictures_data();
    void decodesSoundBesidePictures();
    void decodesWhatIsLeftOfATruncatedMp3();
    void makesAnEmptyFileOfAFileWithoutSamples();
    void convertsToFloatAtSensibleRatesOnly_data();
    void convertsToFloatAtSensibleRatesOnly();
    void refusesAChannelCountThatChanges_data();
    void refusesAChannelCountThatChanges();
};

void TestDecoderFormats::soundsLikeTheSameFileDecodedByFFmpeg_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("channels");
    for (const char* format : {"mp3", "flac", "ogg", "m4a"}) {
        QTest::addRow("%s, 22050 Hz, mono", format) << QString::fromLatin1(format) << 22050 << 1;
        QTest::addRow("%s, 44100 Hz, mono", format) << QString::fromLatin1(format) << 44100 << 1;
        QTest::addRow("%s, 44100 Hz, stereo", format) << QString::fromLatin1(format) << 44100 << 2;
        QTest::addRow("%s, 48000 Hz, stereo", format) << QString::fromLatin1(format) << 48000 << 2;
    }
}

void TestDecoderFormats::soundsLikeTheSameFileDecodedByFFmpeg()
{
    QFETCH(const QString, format);
    QFETCH(const int, rate);
    QFETCH(const int, channels);
    constexpr int targetRate = 96000;
    const TemporaryFiles files;
    const QString source = files.Path(u"tone."_s + format);
    QVERIFY(MakeTone(files.Path(u"tone.wav"_s), rate, channels));
    QVERIFY(Encode(format, files.Path(u"tone.wav"_s), source));

    const QString outPath = files.Path(u"out.wav"_s);
    const QByteArray whole = DecodedToFloat(source, outPath, targetRate);
    QCOMPARE(whole.first(headerSize), FloatHeader(int(whole.size()) - headerSize, targetRate, channels));
    WavFile opened;
    QCOMPARE(opened.Open(outPath), WavFile::Success);

    const QList<float> ours = Floats(whole.mid(headerSize));
    const QList<float> theirs = Floats(DecodedByFFmpeg(source, u"f32le"_s, targetRate));
    // A codec's start and end padding is kept by some and dropped by others.
    const double padding = 2.0 * 1152 / rate;
    QVERIFY(
        Near(double(ours.size()) / channels / targetRate, double(theirs.size()) / channels / targetRate, padding));
    for (int channel = 0; channel < channels; ++channel) {
        const QList<float> our = Channel(ours, channel, channels);
        const QList<float> their = Channel(theirs, channel, channels);
        QVERIFY(Near(MiddleRms(our), MiddleRms(their), 0.01 * MiddleRms(their)));
        // Some encoders turn the level down a little.
        QVERIFY(Near(MiddleRms(our), 0.4 / std::sqrt(2.0), 0.02));
        QVERIFY(Near(MiddleFrequency(our, targetRate), channel == 0 ? 440.0 : 880.0, 1.5));
        QVERIFY(Near(MiddleFrequency(their, targetRate), channel == 0 ? 440.0 : 880.0, 1.5));
    }
}

void TestDecoderFormats::decodesFloatFormatsSoundlyWithoutConversion_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("unsettledFrames");
    QTest::addRow("mp3") << u"mp3"_s << 0;
    QTest::addRow("ogg") << u"ogg"_s << 0;
    // With Qt 6.8 the beginning of AAC differs from what FFmpeg makes of it, and with it the noise that AAC fills
    // up with.
    QTest::addRow("m4a") << u"m4a"_s << 4096;
}

void TestDecoderFormats::decodesFloatFormatsSoundlyWithoutConversion()
{
    QFETCH(const QString, format);
    QFETCH(const int, unsettledFrames);
    const TemporaryFiles files;
    const QString source = files.Path(u"tone."_s + format);
    QVERIFY(MakeTone(files.Path(u"tone.wav"_s), 44100, 2));
    QVERIFY(Encode(format, files.Path(u"tone.wav"_s), source));
    const QByteArray plain = Decoded(source, files.Path(u"plain.wav"_s), 44100);
    QVERIFY(plain.size() > headerSize + 2 * 43000 * 8);
    const QByteArray converted = DecodedToFloat(source, files.Path(u"float.wav"_s), 44100);
    QCOMPARE(plain.first(headerSize), converted.first(headerSize));
    const qsizetype settled = headerSize + unsettledFrames * 8;
    const double tolerance = unsettledFrames == 0 ? 0.0 : 0.01;
    const QList<float> ours = Floats(plain.mid(settled));
    const QList<float> theirs = Floats(converted.mid(settled));
    QVERIFY(std::ranges::equal(ours, theirs, [tolerance](float a, float b) { return Near(a, b, tolerance); }));
}

void TestDecoderFormats::copiesTheSamplesWhenTheRatesAreEqual()
{
    const TemporaryFiles files;
    const QString source = files.Path(u"tone.mp3"_s);
    QVERIFY(MakeTone(files.Path(u"tone.wav"_s), 44100, 2));
    QVERIFY(Encode(u"mp3"_s, files.Path(u"tone.wav"_s), source));
    const QByteArray samples = DecodedByFFmpeg(source, u"f32le"_s);
    QVERIFY(!samples.isEmpty());
    QCOMPARE(Decoded(source, files.Path(u"out.wav"_s), 44100),
             FloatHeader(int(samples.size()), 44100, 2) + samples);
}

void TestDecoderFormats::keepsIntegerSamplesUnderAFloatHeader()
{
    const TemporaryFiles files;
    const QString source = files.Path(u"tone.flac"_s);
    QVERIFY(MakeTone(files.Path(u"tone.wav"_s), 44100, 2));
    QVERIFY(Encode(u"flac"_s, files.Path(u"tone.wav"_s), source));
    const QByteArray samples = TemporaryFiles::Read(files.Path(u"tone.wav"_s)).mid(headerSize);
    QCOMPARE(samples.size(), 2 * 44100 * 4);
    QCOMPARE(Decoded(source, files.Path(u"out.wav"_s), 44100),
             FloatHeader(int(samples.size()), 44100, 2) + samples);
}

void TestDecoderFormats::turnsIntegerSamplesIntoFloats_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("options");
    QTest::addRow("8-bit WAV") << u"tone.b.wav"_s << QStringList{u"-b"_s, u"8"_s};
    QTest::addRow("16-bit WAV") << u"tone.WAV"_s << QStringList{u"-b"_s, u"16"_s};
    QTest::addRow("24-bit WAV") << u"tone.b.wav"_s << QStringList{u"-b"_s, u"24"_s};
    QTest::addRow("32-bit WAV") << u"tone.b.wav"_s << QStringList{u"-b"_s, u"32"_s};
    QTest::addRow("16-bit FLAC") << u"tone.flac"_s << QStringList{u"-b"_s, u"16"_s};
    QTest::addRow("24-bit FLAC") << u"tone.flac"_s << QStringList{u"-b"_s, u"24"_s};
}

void TestDecoderFormats::turnsIntegerSamplesIntoFloats()
{
    QFETCH(const QString, name);
    QFETCH(const QStringList, options);
    const TemporaryFiles files;
    const QString source = files.Path(name);
    QVERIFY(MakeTone(files.Path(u"base.wav"_s), 44100, 2));
    QVERIFY(Succeeds(u"sox"_s, QStringList{u"-R"_s, files.Path(u"base.wav"_s)} + options + QStringList{source}));
    const QByteArray samples = DecodedByFFmpeg(source, u"f32le"_s);
    QCOMPARE(samples.size(), 2 * 44100 * 8);
    QCOMPARE(DecodedToFloat(source, files.Path(u"out.wav"_s), 44100),
             FloatHeader(int(samples.size()), 44100, 2) + samples);
}

void TestDecoderFormats::takesMinusOneFor96000Hz()
{
    const TemporaryFiles files;
    const QString source = files.Path(u"tone.mp3"_s);
    QVERIFY(MakeTone(files.Path(u"tone.wav"_s), 44100, 1));
    QVERIFY(Encode(u"mp3"_s, files.Path(u"tone.wav"_s), source));
    const QByteArray byDefault = Decoded(source, files.Path(u"out.wav"_s), -1);
    QCOMPARE(byDefault.first(headerSize), FloatHeader(int(byDefault.size()) - headerSize, 96000, 1));
    QCOMPARE(byDefault, Decoded(source, files.Path(u"out.wav"_s), 96000));
    QCOMPARE(DecodedToFloat(source, files.Path(u"out.wav"_s), -1),
             DecodedToFloat(source, files.Path(u"out.wav"_s), 96000));
}

void TestDecoderFormats::decodesFilesOfAnyName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("spaces") << u"a long name .mp3"_s;
    QTest::addRow("umlauts") << u"Äußerst schön.mp3"_s;
    QTest::addRow("Japanese") << u"音楽.mp3"_s;
    QTest::addRow("beyond 16 bits") << u"\U0001F3B5.mp3"_s;
    QTest::addRow("hash") << u"track #1.mp3"_s;
    QTest::addRow("percent") << u"100%.mp3"_s;
    QTest::addRow("percent that looks escaped") << u"a%20b%2Fc%d.mp3"_s;
    QTest::addRow("question mark") << u"who?what=1.mp3"_s;
    QTest::addRow("colon") << u"12:30.mp3"_s;
    QTest::addRow("plus, ampersand, quotes") << u"a+b&\"c'd\".mp3"_s;
    QTest::addRow("all at once") << u"ä #%?音.mp3"_s;
    QTest::addRow("no suffix") << u"track"_s;
}

void TestDecoderFormats::decodesFilesOfAnyName()
{
    QFETCH(const QString, name);
    const TemporaryFiles files;
    QVERIFY(MakeTone(files.Path(u"tone.wav"_s), 44100, 1, 0.5));
    QVERIFY(Encode(u"mp3"_s, files.Path(u"tone.wav"_s), files.Path(u"plain.mp3"_s)));
    QVERIFY(QFile::copy(files.Path(u"plain.mp3"_s), files.Path(name)));
    const QByteArray expected = Decoded(files.Path(u"plain.mp3"_s), files.Path(u"plain.wav"_s), 48000);
    QVERIFY(expected.size() > headerSize + 23000 * 4);
    QCOMPARE(Decoded(files.Path(name), files.Path(u"out "_s + name), 48000), expected);
}

void TestDecoderFormats::decodesARelativePathWithAColon()
{
    const TemporaryFiles files;
    const QString former = QDir::currentPath();
    QVERIFY(MakeTone(files.Path(u"tone.wav"_s), 44100, 1, 0.5));
    QVERIFY(Encode(u"mp3"_s, files.Path(u"tone.wav"_s), files.Path(u"12:30.mp3"_s)));
    QVERIFY(QDir::setCurrent(files.Path({})));
    const QByteArray decoded = Decoded(u"12:30.mp3"_s, u"12:30.wav"_s, 44100);
    QVERIFY(QDir::setCurrent(former));
    QVERIFY(decoded.size() > headerSize + 22000 * 4);
}

void TestDecoderFormats::decodesSoundBesidePictures_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("picture");
    QTest::addRow("MP3 with a cover") << u"song.mp3"_s << u"color=red:size=64x64:rate=1:duration=1"_s;
    QTest::addRow("film") << u"film.mkv"_s << u"testsrc=duration=1:size=64x64:rate=10"_s;
}

void TestDecoderFormats::decodesSoundBesidePictures()
{
    QFETCH(const QString, name);
    QFETCH(const QString, picture);
    const TemporaryFiles files;
    const QString source = files.Path(name);
    QVERIFY(MakeTone(files.Path(u"tone.wav"_s), 44100, 1, 0.5));
    QVERIFY(Succeeds(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, picture, u"-i"_s,
                                   files.Path(u"tone.wav"_s), u"-map"_s, u"1"_s, u"-map"_s, u"0"_s, source}));
    const QByteArray decoded = Decoded(source, files.Path(u"out.wav"_s), 44100);
    const QList<float> samples = Floats(decoded.mid(headerSize));
    QVERIFY(samples.size() > 22000 && samples.size() < 25000);
    QVERIFY(Near(MiddleFrequency(samples, 44100), 440.0, 5.0));
}

void TestDecoderFormats::decodesWhatIsLeftOfATruncatedMp3()
{
    const TemporaryFiles files;
    QVERIFY(MakeTone(files.Path(u"tone.wav"_s), 44100, 1));
    QVERIFY(Encode(u"mp3"_s, files.Path(u"tone.wav"_s), files.Path(u"tone.mp3"_s)));
    const QByteArray mp3 = TemporaryFiles::Read(files.Path(u"tone.mp3"_s));
    const QString half = files.Write(u"half.mp3"_s, mp3.first(mp3.size() / 2));
    const QByteArray decoded = Decoded(half, files.Path(u"out.wav"_s), 44100);
    const auto frames = (decoded.size() - headerSize) / 4;
    QVERIFY(frames > 40000 && frames < 48000);
    QCOMPARE(decoded.first(headerSize), FloatHeader(int(decoded.size()) - headerSize, 44100, 1));
}

void TestDecoderFormats::makesAnEmptyFileOfAFileWithoutSamples()
{
    const TemporaryFiles files;
    const QString source = files.Write(u"empty.b.wav"_s, FloatHeader(0, 44100, 1));
    // Without a buffer nothing has told the channel count: two are assumed.
    QCOMPARE(Decoded(source, files.Path(u"out.wav"_s), 48000), FloatHeader(0, 48000, 2));
}

void TestDecoderFormats::convertsToFloatAtSensibleRatesOnly_data()
{
    QTest::addColumn<int>("rate");
    QTest::addRow("0") << 0;
    QTest::addRow("-2") << -2;
    QTest::addRow("the lowest number") << std::numeric_limits<int>::min();
    QTest::addRow("a little too high") << 768001;
    QTest::addRow("the highest number") << std::numeric_limits<int>::max();
}

void TestDecoderFormats::convertsToFloatAtSensibleRatesOnly()
{
    QFETCH(const int, rate);
    const TemporaryFiles files;
    const QString source = files.Path(u"tone.wav"_s);
    QVERIFY(MakeTone(source, 44100, 1, 0.5));
    const QByteArray former = TemporaryFiles::Read(source);
    QCOMPARE(Decoder::ConvertToFloat(source, source, rate), WavFile::ErrorInvalidFormat);
    QCOMPARE(TemporaryFiles::Read(source), former);
}

void TestDecoderFormats::refusesAChannelCountThatChanges_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QStringList>("encoder");
    QTest::addRow("MP3") << u"mp3"_s << QStringList{};
    QTest::addRow("AAC") << u"aac"_s << QStringList{};
    QTest::addRow("AC-3") << u"ac3"_s << QStringList{};
    QTest::addRow("Ogg Vorbis") << u"ogg"_s << QStringList{u"-c:a"_s, u"libvorbis"_s};
}

/** Qt's decoder would crash because of it. The importer reads such files. */
void TestDecoderFormats::refusesAChannelCountThatChanges()
{
    QFETCH(const QString, suffix);
    QFETCH(const QStringList, encoder);
    const TemporaryFiles files;
    QByteArray joined;
    for (const int channels : {2, 1}) {
        const QString tone = files.Path(u"tone.wav"_s);
        const QString part = files.Path(u"part."_s + suffix);
        QVERIFY(MakeTone(tone, 44100, channels));
        QVERIFY(
            Succeeds(u"ffmpeg"_s, QStringList{u"-y"_s, u"-v"_s, u"error"_s, u"-i"_s, tone} + encoder +
                                      QStringList{u"-id3v2_version"_s, u"0"_s}.mid(suffix == u"mp3"_s ? 0 : 2) +
                                      QStringList{part}));
        joined += TemporaryFiles::Read(part);
    }
    const QString source = files.Write(u"joined."_s + suffix, joined);
    const QString out = files.Path(u"out.wav"_s);
    QCOMPARE(Decoder::Convert(source, out, 44100), WavFile::ErrorInvalidFormat);
    QVERIFY(!QFile::exists(out));
    QCOMPARE(Decoder::ConvertToFloat(source, out, 44100), WavFile::Success);
    const double frames = double(TemporaryFiles::Read(out).size() - headerSize) / 8.0;
    QVERIFY(Near(frames, 2 * 88200.0, 5000.0));
}

QTEST_GUILESS_MAIN(TestDecoderFormats)
#include "tst_decoderformats.moc"
