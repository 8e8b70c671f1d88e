#include "engine/wav/WavHeader.h"
#include "tests/support/AudioFormat.h"
#include "tests/support/WavBytes.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtCore/QBuffer>
#include <QtTest/QtTest>

#include <limits>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using namespace vantoraudio::AudioEngine;

namespace {

/** Values that no header of these tests holds, so that every stored field shows. */
WavHeader FormerHeader()
{
    WavHeader header;
    header.format.setSampleFormat(QAudioFormat::UInt8);
    header.format.setChannelCount(7);
    header.format.setSampleRate(123);
    header.sampleSize = 99;
    header.dataOffset = 98;
    header.dataLength = 97;
    return header;
}

QString Describe(const WavHeader& header)
{
    static const QStringList names{u"Unknown"_s, u"UInt8"_s, u"Int16"_s, u"Int32"_s, u"Float"_s};
    return u"%1 %2 ch %3 Hz %4 bit, %5 bytes at %6"_s.arg(names.value(header.format.sampleFormat()))
        .arg(header.format.channelCount())
        .arg(header.format.sampleRate())
        .arg(header.sampleSize)
        .arg(header.dataLength)
        .arg(header.dataOffset);
}

QByteArray Flipped(QByteArray bytes, qsizetype index)
{
    bytes[index] = static_cast<char>(bytes[index] ^ 0x40);
    return bytes;
}

QByteArray Named(const char* name, qsizetype index)
{
    return QByteArray(name) + QByteArray::number(index);
}

WavBytes Extensible(quint16 bits, const QByteArray& guid)
{
    return {.formatTag = 0xFFFE, .bits = bits, .extension = Extension(guid), .data = QByteArray(24, 'x')};
}

const QByteArray eightBytes = QByteArray(8, 'x');

} // namespace

class TestWavHeader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsSoundFiles_data();
    void readsSoundFiles();
    void stopsAtBrokenFiles_data();
    void stopsAtBrokenFiles();
    void refusesEverySubFormatThatDiffersInOneByte_data();
    void refusesEverySubFormatThatDiffersInOneByte();
    void endsTheWalkAtAnUnfinishedChunkHeader_data();
    void endsTheWalkAtAnUnfinishedChunkHeader();
    void walksOverAHundredThousandEmptyChunks();
    void walksOverZerosEightByEight();
    void leavesTheChannelConfigurationUnknown();
    void readsAFileCutAtAnyPlaceWithoutHarm();

    void composesFortyFourBytes_data();
    void composesFortyFourBytes();
    void composesNothingForFormatsWithoutEncoding_data();
    void composesNothingForFormatsWithoutEncoding();

    void calculatesDataSizes_data();
    void calculatesDataSizes();
    void countsSamplesOfBytes_data();
    void countsSamplesOfBytes();
    void countsBytesOfSamples_data();
    void countsBytesOfSamples();
    void namesFFmpegSampleFormats_data();
    void namesFFmpegSampleFormats();

private:
    static void CheckReading(int expectedResult);
};

void TestWavHeader::CheckReading(int expectedResult)
{
    QFETCH(QByteArray, bytes);
    QFETCH(const qint64, position);
    QBuffer device(&bytes);
    QVERIFY(device.open(QIODevice::ReadOnly));
    device.seek(bytes.size() / 2);

    WavHeader header = FormerHeader();
    QCOMPARE(int(ReadWavHeader(device, header)), expectedResult);
    QTEST(Describe(header), "fields");
    QCOMPARE(device.pos(), position);
}

void TestWavHeader::readsSoundFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<qint64>("position");
    QTest::addColumn<QString>("fields");
    const auto add = [](const QByteArray& name, const QByteArray& bytes, qint64 position, const QString& fields) {
        QTest::newRow(name.constData()) << bytes << position << fields;
    };
    const QByteArray d = eightBytes;

    add("PCM 16", WavBytes{.data = d}.Build(), 44, u"Int16 1 ch 44100 Hz 16 bit, 8 bytes at 44"_s);
    add("PCM 24 is Int32 with a sample size of 24", WavBytes{.bits = 24, .data = d}.Build(), 44,
        u"Int32 1 ch 44100 Hz 24 bit, 8 bytes at 44"_s);
    add("PCM 32", WavBytes{.bits = 32, .data = d}.Build(), 44, u"Int32 1 ch 44100 Hz 32 bit, 8 bytes at 44"_s);
    add("float", WavBytes{.formatTag = 3, .bits = 32, .data = d}.Build(), 44,
        u"Float 1 ch 44100 Hz 32 bit, 8 bytes at 44"_s);
    add("float that says 16 bits", WavBytes{.formatTag = 3, .bits = 16, .data = d}.Build(), 44,
        u"Float 1 ch 44100 Hz 16 bit, 8 bytes at 44"_s);
    add("float that says 24 bits", WavBytes{.formatTag = 3, .bits = 24, .data = d}.Build(), 44,
        u"Float 1 ch 44100 Hz 24 bit, 8 bytes at 44"_s);
    add("stereo at 96 kHz", WavBytes{.channels = 2, .sampleRate = 96000, .data = d}.Build(), 44,
        u"Int16 2 ch 96000 Hz 16 bit, 8 bytes at 44"_s);

    add("extensible PCM 16", Extensible(16, PcmGuid()).Build(), 68,
        u"Int16 1 ch 44100 Hz 16 bit, 24 bytes at 68"_s);
    add("extensible PCM 24", Extensible(24, PcmGuid()).Build(), 68,
        u"Int32 1 ch 44100 Hz 24 bit, 24 bytes at 68"_s);
    add("extensible PCM 32", Extensible(32, PcmGuid()).Build(), 68,
        u"Int32 1 ch 44100 Hz 32 bit, 24 bytes at 68"_s);
    add("extensible float 16", Extensible(16, FloatGuid()).Build(), 68,
        u"Float 1 ch 44100 Hz 16 bit, 24 bytes at 68"_s);
    add("extensible float 24", Extensible(24, FloatGuid()).Build(), 68,
        u"Float 1 ch 44100 Hz 24 bit, 24 bytes at 68"_s);
    add("extensible float 32", Extensible(32, FloatGuid()).Build(), 68,
        u"Float 1 ch 44100 Hz 32 bit, 24 bytes at 68"_s);
    for (const quint32 size : {0U, 16U, 18U, 0xFFFFFFFFU}) {
        WavBytes file = Extensible(16, PcmGuid());
        file.statedFmtSize = size;
        add(Named("extensible whose chunk claims the size ", size), file.Build(), 68,
            u"Int16 1 ch 44100 Hz 16 bit, 24 bytes at 68"_s);
    }

    const QString plain = u"Int16 1 ch 44100 Hz 16 bit, 8 bytes at %1"_s;
    add("LIST chunk before fmt", WavBytes{.beforeFmt = {{"LIST", "INFOISFT"}}, .data = d}.Build(), 60,
        plain.arg(60));
    add("three chunks before fmt",
        WavBytes{.beforeFmt = {{"JUNK", "1234"}, {"RIFF", ""}, {"data", "samples!"}}, .data = d}.Build(), 80,
        plain.arg(80));
    add("odd chunk without pad byte", WavBytes{.beforeFmt = {{"LIST", "abc"}}, .data = d}.Build(), 55,
        plain.arg(55));
    add("chunks between fmt and data",
        WavBytes{.beforeData = {{"fact", "1234"}, {"fmt ", "again"}, {"LIST", "x"}}, .data = d}.Build(), 78,
        plain.arg(78));
    add("chunks behind data", WavBytes{.data = d, .afterData = {{"LIST", "abcd"}}}.Build(), 44, plain.arg(44));
    add("fmt of 18 bytes", WavBytes{.extension = LittleEndian(quint16(0)), .data = d}.Build(), 46, plain.arg(46));
    add("fmt of 40 bytes under tag 1", WavBytes{.extension = QByteArray(24, 'e'), .data = d}.Build(), 68,
        plain.arg(68));
    add("fmt that claims 15 bytes", WavBytes{.statedFmtSize = 15, .data = d}.Build(), 44, plain.arg(44));
    add("fmt that claims no bytes", WavBytes{.statedFmtSize = 0, .data = d}.Build(), 44, plain.arg(44));
    add("RIFF size 0", WavBytes{.statedRiffSize = 0, .data = d}.Build(), 44, plain.arg(44));
    add("RIFF size of all ones", WavBytes{.statedRiffSize = 0xFFFFFFFF, .data = d}.Build(), 44, plain.arg(44));

    const QString stated = u"Int16 1 ch %1 Hz 16 bit, %2 bytes at 44"_s;
    add("data size beyond the file", WavBytes{.data = d, .statedDataSize = 1000}.Build(), 44,
        stated.arg(u"44100"_s, u"1000"_s));
    add("data size of all ones", WavBytes{.data = d, .statedDataSize = 0xFFFFFFFF}.Build(), 44,
        stated.arg(u"44100"_s, u"4294967295"_s));
    add("data size below the real one", WavBytes{.data = d, .statedDataSize = 2}.Build(), 44,
        stated.arg(u"44100"_s, u"2"_s));
    add("empty data", WavBytes{}.Build(), 44, stated.arg(u"44100"_s, u"0"_s));
    add("sample rate 0", WavBytes{.sampleRate = 0}.Build(), 44, stated.arg(u"0"_s, u"0"_s));
    add("sample rate of all ones", WavBytes{.sampleRate = 0xFFFFFFFF}.Build(), 44, stated.arg(u"-1"_s, u"0"_s));

    // Files without a complete "fmt " chunk: only the data offset is stored.
    const QByteArray whole = WavBytes{.data = d}.Build();
    const QString former = u"UInt8 7 ch 123 Hz 99 bit, 97 bytes at %1"_s;
    add("ends behind WAVE", whole.left(12), 12, former.arg(12));
    add("ends behind the name of fmt", whole.left(16), 16, former.arg(16));
    add("ends behind the size of fmt", whole.left(20), 20, former.arg(20));
    add("ends one byte before fmt is complete", whole.left(35), 35, former.arg(35));
    add("ends behind another chunk", whole.left(12) + Chunk{"LIST", "abcd"}.Build(), 24, former.arg(24));
}

void TestWavHeader::readsSoundFiles()
{
    CheckReading(0);
}

void TestWavHeader::stopsAtBrokenFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("result");
    QTest::addColumn<qint64>("position");
    QTest::addColumn<QString>("fields");
    const auto add = [](const QByteArray& name, const QByteArray& bytes, int result, qint64 position,
                        const QString& fields) {
        QTest::newRow(name.constData()) << bytes << result << position << fields;
    };
    const QString former = u"UInt8 7 ch 123 Hz 99 bit, 97 bytes at 98"_s;
    const QByteArray d = eightBytes;
    const QByteArray whole = WavBytes{.data = d}.Build();

    add("empty", {}, -3, 0, former);
    add("shorter than 12 bytes", whole.left(11), -3, 11, former);
    add("big-endian RIFX", WavBytes{.riff = "RIFX"}.Build(), -1, 12, former);
    add("another form", WavBytes{.form = "AVI "}.Build(), -1, 12, former);
    add("lower case form", WavBytes{.form = "wave"}.Build(), -1, 12, former);

    // A stated size is skipped, never allocated. Where the file is shorter, reading ends at its end.
    for (const quint32 size : {101U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF7U, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
        const Chunk huge{"LIST", QByteArray(100, 'x'), size};
        add(Named("chunk before fmt that claims ", size), "RIFF1234WAVE" + huge.Build(), -3, 120, former);
        add(Named("chunk before data that claims ", size), whole.left(36) + huge.Build(), -3, 144,
            u"Int16 1 ch 44100 Hz 16 bit, 97 bytes at 98"_s);
        add(Named("fmt that claims ", size), WavBytes{.statedFmtSize = size}.Build(), -3, 44, former);
    }
    add("pad byte behind an odd chunk is not known", WavBytes{.beforeFmt = {{"LIST", "abc|", 3}}}.Build(), -3, 56,
        former);
    add("fmt of 18 bytes cut to 17", WavBytes{.extension = LittleEndian(quint16(0))}.Build().left(37), -3, 37,
        former);

    for (const quint16 tag : {quint16(0), quint16(2), quint16(6), quint16(0x55), quint16(0xFFFF)}) {
        add(Named("format tag ", tag), WavBytes{.formatTag = tag}.Build(), -1, 36, former);
    }
    for (const quint16 bits : {quint16(0), quint16(8), quint16(12), quint16(64), quint16(0xFFFF)}) {
        const QString fields = u"UInt8 7 ch 123 Hz %1 bit, 97 bytes at 98"_s.arg(bits);
        add(Named("PCM bits ", bits), WavBytes{.bits = bits}.Build(), -1, 36, fields);
        add(Named("float bits ", bits), WavBytes{.formatTag = 3, .bits = bits}.Build(), -1, 36, fields);
        add(Named("extensible bits ", bits), Extensible(bits, PcmGuid()).Build(), -1, 60, fields);
    }

    add("no channel", WavBytes{.channels = 0}.Build(), -7, 36, u"UInt8 0 ch 123 Hz 16 bit, 97 bytes at 98"_s);
    add("three channels", WavBytes{.channels = 3}.Build(), -7, 36, u"UInt8 3 ch 123 Hz 16 bit, 97 bytes at 98"_s);
    add("six channels", WavBytes{.channels = 6}.Build(), -7, 36, u"UInt8 6 ch 123 Hz 16 bit, 97 bytes at 98"_s);
    add("65537 channels if counted wider", WavBytes{.channels = 0xFFFF}.Build(), -7, 36,
        u"UInt8 -1 ch 123 Hz 16 bit, 97 bytes at 98"_s);
    add("bad bits are reported before bad channels", WavBytes{.channels = 3, .bits = 8}.Build(), -1, 36,
        u"UInt8 7 ch 123 Hz 8 bit, 97 bytes at 98"_s);
    add("bad channels are reported before a bad sub-format",
        WavBytes{.formatTag = 0xFFFE, .channels = 3, .extension = Extension(QByteArray(16, 'g'))}.Build(), -7, 60,
        u"UInt8 3 ch 123 Hz 16 bit, 97 bytes at 98"_s);

    const QString noFormat = u"UInt8 1 ch 44100 Hz 16 bit, 97 bytes at 98"_s;
    const QByteArray extensible = Extensible(16, PcmGuid()).Build();
    add("extensible without extension", extensible.left(36), -1, 36, former);
    add("extensible with half an extension size", extensible.left(37), -1, 36, former);
    add("extensible cut in its sub-format", extensible.left(59), -3, 59, former);
    add("unknown sub-format", Extensible(16, QByteArray(16, 'g')).Build(), -1, 60, noFormat);
    add("extension size 0", WavBytes{.formatTag = 0xFFFE, .extension = LittleEndian(quint16(0))}.Build(), -1, 38,
        noFormat);
    add("extension size 21 before a known sub-format",
        WavBytes{.formatTag = 0xFFFE, .extension = Extension(PcmGuid(), 21)}.Build(), -1, 59, noFormat);
    add("extension size 23 before a known sub-format",
        WavBytes{.formatTag = 0xFFFE, .extension = Extension(PcmGuid(), 23) + "x"}.Build(), -1, 61, noFormat);
    add("extension size beyond the file",
        WavBytes{.formatTag = 0xFFFE, .extension = Extension(PcmGuid(), 0xFFFF)}.Build(), -3, 68, former);

    const QString noData = u"Int16 1 ch 44100 Hz 16 bit, 97 bytes at 98"_s;
    add("no data chunk", whole.left(36), -3, 36, noData);
    add("no data chunk behind another", whole.left(36) + Chunk{"LIST", "abcd"}.Build(), -3, 48, noData);
    add("ends behind the name of data", whole.left(40), -3, 40, noData);
    add("ends within the size of data", whole.left(43), -3, 43, noData);
}

void TestWavHeader::stopsAtBrokenFiles()
{
    QFETCH(const int, result);
    CheckReading(result);
}

void TestWavHeader::refusesEverySubFormatThatDiffersInOneByte_data()
{
    QTest::addColumn<QByteArray>("guid");
    for (qsizetype i = 0; i < 16; ++i) {
        QTest::newRow(Named("PCM byte ", i).constData()) << Flipped(PcmGuid(), i);
        QTest::newRow(Named("float byte ", i).constData()) << Flipped(FloatGuid(), i);
    }
}

void TestWavHeader::refusesEverySubFormatThatDiffersInOneByte()
{
    QFETCH(const QByteArray, guid);
    QByteArray bytes = Extensible(16, guid).Build();
    QBuffer device(&bytes);
    QVERIFY(device.open(QIODevice::ReadOnly));
    WavHeader header = FormerHeader();
    QCOMPARE(ReadWavHeader(device, header), WavFile::ErrorInvalidFormat);
    QCOMPARE(Describe(header), u"UInt8 1 ch 44100 Hz 16 bit, 97 bytes at 98"_s);
}

void TestWavHeader::endsTheWalkAtAnUnfinishedChunkHeader_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("tail");
    const QByteArray riff = "RIFF1234WAVE";
    const QByteArray format = WavBytes{}.Build().left(36);
    for (qsizetype size = 1; size < 8; ++size) {
        QTest::newRow(Named("before fmt, bytes: ", size).constData()) << riff << QByteArray(size, '\0');
        QTest::newRow(Named("before data, bytes: ", size).constData()) << format << QByteArray(size, '\0');
    }
    // The last piece must not be read together with what an earlier chunk header left behind.
    QTest::newRow("f behind mt") << riff + Chunk{"xmt ", ""}.Build() << QByteArray("f");
    QTest::newRow("d behind ata") << format + Chunk{"xata", ""}.Build() << QByteArray("d");
}

void TestWavHeader::endsTheWalkAtAnUnfinishedChunkHeader()
{
    QFETCH(const QByteArray, before);
    QFETCH(const QByteArray, tail);
    QByteArray bytes = before + tail;
    QBuffer device(&bytes);
    QVERIFY(device.open(QIODevice::ReadOnly));
    WavHeader header;
    QCOMPARE(ReadWavHeader(device, header), WavFile::ErrorReadFile);
    QCOMPARE(device.pos(), bytes.size());
}

void TestWavHeader::walksOverAHundredThousandEmptyChunks()
{
    constexpr qsizetype chunkCount = 100000;
    QByteArray bytes = "RIFF1234WAVE" + Chunk{"JUNK", ""}.Build().repeated(chunkCount);
    bytes += WavBytes{.data = eightBytes}.Build().mid(12);
    QBuffer device(&bytes);
    QVERIFY(device.open(QIODevice::ReadOnly));
    WavHeader header;
    QCOMPARE(ReadWavHeader(device, header), WavFile::Success);
    QCOMPARE(header.dataOffset, qint64(44 + 8 * chunkCount));
}

void TestWavHeader::walksOverZerosEightByEight()
{
    const QByteArray whole = WavBytes{.data = eightBytes}.Build();
    for (const qsizetype zeros : {8, 16, 800, 65528, 65536, 65544, 200000}) {
        QByteArray bytes = whole;
        QBuffer device(&bytes.insert(12, QByteArray(zeros, '\0')));
        QVERIFY(device.open(QIODevice::ReadOnly));
        WavHeader header;
        QCOMPARE(ReadWavHeader(device, header), WavFile::Success);
        QCOMPARE(header.dataOffset, 44 + zeros);
        // With four more zeros, what follows them is taken for the size of a chunk.
        QByteArray shifted = whole;
        QBuffer shiftedDevice(&shifted.insert(12, QByteArray(zeros + 4, '\0')));
        QVERIFY(shiftedDevice.open(QIODevice::ReadOnly));
        QCOMPARE(ReadWavHeader(shiftedDevice, header), WavFile::ErrorReadFile);
    }
}

void TestWavHeader::leavesTheChannelConfigurationUnknown()
{
    WavHeader header;
    header.format.setChannelConfig(QAudioFormat::ChannelConfigStereo);
    QByteArray bytes = WavBytes{.channels = 2}.Build();
    QBuffer device(&bytes);
    QVERIFY(device.open(QIODevice::ReadOnly));
    QCOMPARE(ReadWavHeader(device, header), WavFile::Success);
    QCOMPARE(header.format.channelConfig(), QAudioFormat::ChannelConfigUnknown);
    QCOMPARE(header.format.channelCount(), 2);
}

void TestWavHeader::readsAFileCutAtAnyPlaceWithoutHarm()
{
    const QByteArray whole = Extensible(24, PcmGuid()).Build();
    constexpr qsizetype headerSize = 68;
    for (qsizetype size = 0; size < headerSize; ++size) {
        QByteArray bytes = whole.left(size);
        QBuffer device(&bytes);
        QVERIFY(device.open(QIODevice::ReadOnly));
        WavHeader header;
        // One to three letters of "fmt " are no name yet.
        const bool endsBeforeFormat = size == 12 || (size >= 16 && size < 36);
        QCOMPARE(ReadWavHeader(device, header) == WavFile::Success, endsBeforeFormat);
        QVERIFY(device.pos() <= size);
    }
}

void TestWavHeader::composesFortyFourBytes_data()
{
    using F = QAudioFormat;
    QTest::addColumn<QAudioFormat>("format");
    QTest::addColumn<int>("dataSize");
    QTest::addColumn<QByteArray>("expected");
    const auto add = [](const char* name, const QAudioFormat& format, int dataSize, const char* expected) {
        QTest::newRow(name) << format << dataSize << QByteArray(expected);
    };
    // Each blank stands between two fields; "RIFF" is 52494646, "WAVEfmt " 57415645 666d7420, "data" 64617461.
    add("stereo 16-bit, 1000 bytes", Format(F::Int16, 2, 44100), 1000,
        "52494646 0c040000 57415645 666d7420 10000000 0100 0200 44ac0000 10b10200 0400 1000 64617461 e8030000");
    add("mono 32-bit, empty", Format(F::Int32, 1, 48000), 0,
        "52494646 24000000 57415645 666d7420 10000000 0100 0100 80bb0000 00ee0200 0400 2000 64617461 00000000");
    add("stereo float", Format(F::Float, 2, 96000), 100000,
        "52494646 c4860100 57415645 666d7420 10000000 0300 0200 00770100 00b80b00 0800 2000 64617461 a0860100");
    add("size -1 is all ones", Format(F::Int16, 1, 8000), -1,
        "52494646 23000000 57415645 666d7420 10000000 0100 0100 401f0000 803e0000 0200 1000 64617461 ffffffff");
    add("largest size", Format(F::Int16, 1, 8000), std::numeric_limits<int>::max(),
        "52494646 23000080 57415645 666d7420 10000000 0100 0100 401f0000 803e0000 0200 1000 64617461 ffffff7f");
    add("byte rate wraps", Format(F::Float, 2, 100000000), 0,
        "52494646 24000000 57415645 666d7420 10000000 0300 0200 00e1f505 0008af0f 0800 2000 64617461 00000000");
    add("byte rate wraps below zero", Format(F::Float, 2, 50000000), 0,
        "52494646 24000000 57415645 666d7420 10000000 0300 0200 80f0fa02 0084d7f7 0800 2000 64617461 00000000");
}

void TestWavHeader::composesFortyFourBytes()
{
    QFETCH(const QAudioFormat, format);
    QFETCH(const int, dataSize);
    QFETCH(const QByteArray, expected);
    const QByteArray header = ComposeWavHeader(format, dataSize);
    QCOMPARE(header.toHex(), QByteArray::fromHex(expected).toHex());
    QCOMPARE(header.size(), 44);
}

void TestWavHeader::composesNothingForFormatsWithoutEncoding_data()
{
    QTest::addColumn<int>("sampleFormat");
    QTest::newRow("Unknown") << int(QAudioFormat::Unknown);
    QTest::newRow("UInt8") << int(QAudioFormat::UInt8);
    QTest::newRow("NSampleFormats") << int(QAudioFormat::NSampleFormats);
}

void TestWavHeader::composesNothingForFormatsWithoutEncoding()
{
    QFETCH(const int, sampleFormat);
    QVERIFY(ComposeWavHeader(Format(QAudioFormat::SampleFormat(sampleFormat), 2, 44100), 1000).isEmpty());
}

void TestWavHeader::calculatesDataSizes_data()
{
    using F = QAudioFormat;
    QTest::addColumn<int>("bytes");
    QTest::addColumn<QAudioFormat>("from");
    QTest::addColumn<QAudioFormat>("to");
    QTest::addColumn<int>("expected");
    const QAudioFormat cd = Format(F::Int16, 2, 44100);
    const QAudioFormat wide = Format(F::Float, 2, 48000);

    QTest::newRow("one second of CD audio as 48 kHz float") << 176400 << cd << wide << 384000;
    QTest::newRow("back again") << 384000 << wide << cd << 176400;
    QTest::newRow("8-bit to 16-bit") << 1000 << Format(F::UInt8, 1, 8000) << Format(F::Int16, 1, 8000) << 2000;
    QTest::newRow("an incomplete frame does not count") << 15 << cd << cd << 12;
    QTest::newRow("10.88 frames become 10") << 40 << cd << Format(F::Int16, 2, 48000) << 40;
    // The way over seconds rounds.
    QTest::newRow("15 frames at the same rate become 14") << 60 << cd << cd << 56;
    QTest::newRow("3,381 frames become 3,679 and not 3,680") << 13524 << cd << Format(F::Int16, 2, 48000) << 14716;
    QTest::newRow("no bytes") << 0 << cd << cd << -1;
    QTest::newRow("less than a frame") << 3 << cd << cd << -1;
    QTest::newRow("less than a target frame") << 4 << cd << Format(F::Int16, 2, 8000) << -1;
    QTest::newRow("negative bytes") << -4 << cd << cd << -1;
    QTest::newRow("from rate 0") << 400 << Format(F::Int16, 2, 0) << cd << -1;
    QTest::newRow("from a negative rate") << 400 << Format(F::Int16, 2, -44100) << cd << -1;
    QTest::newRow("from no channels") << 400 << Format(F::Int16, 0, 44100) << cd << -1;
    QTest::newRow("from an unknown format") << 400 << Format(F::Unknown, 2, 44100) << cd << -1;
    QTest::newRow("to rate 0") << 400 << cd << Format(F::Int16, 2, 0) << -1;
    QTest::newRow("to a negative rate") << 400 << cd << Format(F::Int16, 2, -1) << -1;
    QTest::newRow("to no channels") << 400 << cd << Format(F::Int16, 0, 44100) << -1;
    QTest::newRow("to an unknown format") << 400 << cd << Format(F::Unknown, 2, 44100) << -1;
    QTest::newRow("to a format without a size") << 400 << cd << Format(F::NSampleFormats, 2, 44100) << -1;
    // 1,073,741,822 frames of 8 bytes; the rates are powers of two, so the way over seconds is exact.
    QTest::newRow("result wraps at 32 bits")
        << 2147483644 << Format(F::Int16, 1, 32768) << Format(F::Float, 2, 32768) << -16;
    QTest::newRow("more frames than an int holds")
        << 2000000000 << Format(F::UInt8, 1, 1) << Format(F::UInt8, 1, 1000000) << 2147483647;
}

void TestWavHeader::calculatesDataSizes()
{
    QFETCH(const int, bytes);
    QFETCH(const QAudioFormat, from);
    QFETCH(const QAudioFormat, to);
    QTEST(WavFileTestAccess::CalculateAudioDataSize(bytes, from, to), "expected");
}

void TestWavHeader::countsSamplesOfBytes_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<int>("expected");
    QTest::newRow("whole") << 1000 << 2 << 2 << 250;
    QTest::newRow("with a rest") << 1003 << 2 << 2 << 250;
    QTest::newRow("no bytes are no samples") << 0 << 2 << 2 << 0;
    QTest::newRow("a is 0") << 1000 << 0 << 2 << -1;
    QTest::newRow("b is 0") << 1000 << 2 << 0 << -1;
    QTest::newRow("a is negative") << 1000 << -1 << 2 << -1;
    QTest::newRow("b is negative") << 1000 << 2 << -1 << -1;
    QTest::newRow("negative bytes") << -1 << 2 << 2 << -1;
    QTest::newRow("a product that is 0 in 32 bits") << 1000 << 65536 << 65536 << 0;
}

void TestWavHeader::countsSamplesOfBytes()
{
    QFETCH(const int, bytes);
    QFETCH(const int, a);
    QFETCH(const int, b);
    QTEST(WavFileTestAccess::BytesToSamples(bytes, a, b), "expected");
}

void TestWavHeader::countsBytesOfSamples_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<int>("expected");
    QTest::newRow("usual") << 250 << 2 << 4 << 2000;
    QTest::newRow("no samples are -1 bytes, unlike the other way round") << 0 << 2 << 2 << -1;
    QTest::newRow("negative samples") << -1 << 2 << 2 << -1;
    QTest::newRow("a is 0") << 250 << 0 << 2 << -1;
    QTest::newRow("b is 0") << 250 << 2 << 0 << -1;
    QTest::newRow("wraps") << 1073741824 << 2 << 1 << std::numeric_limits<int>::min();
}

void TestWavHeader::countsBytesOfSamples()
{
    QFETCH(const int, samples);
    QFETCH(const int, a);
    QFETCH(const int, b);
    QTEST(WavFileTestAccess::SamplesToBytes(samples, a, b), "expected");
}

void TestWavHeader::namesFFmpegSampleFormats_data()
{
    QTest::addColumn<int>("sampleFormat");
    QTest::addColumn<int>("expected");
    QTest::newRow("Int16") << int(QAudioFormat::Int16) << 1;
    QTest::newRow("Int32") << int(QAudioFormat::Int32) << 2;
    QTest::newRow("Float") << int(QAudioFormat::Float) << 3;
    QTest::newRow("UInt8") << int(QAudioFormat::UInt8) << -1;
    QTest::newRow("Unknown") << int(QAudioFormat::Unknown) << -1;
    QTest::newRow("NSampleFormats") << int(QAudioFormat::NSampleFormats) << -1;
}

void TestWavHeader::namesFFmpegSampleFormats()
{
    QFETCH(const int, sampleFormat);
    QTEST(WavFileTestAccess::FFmpegSampleFormat(Format(QAudioFormat::SampleFormat(sampleFormat), 2, 44100)),
          "expected");
}

QTEST_APPLESS_MAIN(TestWavHeader)
#include "tst_wavheader.moc"
