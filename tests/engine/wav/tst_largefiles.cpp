#include "engine/wav/ByteCounting.h"
#include "engine/wav/WavHeader.h"
#include "tests/support/AudioFormat.h"
#include "tests/support/OpenedWav.h"

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using namespace vantoraudio::AudioEngine;

namespace {

constexpr qint64 allOnes = 0xFFFFFFFF;
constexpr qint64 longest = std::numeric_limits<qint64>::max();
constexpr qint64 oneGiB = qint64(1) << 30;

Chunk SizeChunk(quint64 riffSize, quint64 dataSize, quint64 frames)
{
    return {"ds64",
            LittleEndian(riffSize) + LittleEndian(dataSize) + LittleEndian(frames) + LittleEndian(quint32(0))};
}

/** Turns a file into one that states `dataSize` in 64 bits, with a header of 80 bytes. */
WavBytes AsRf64(WavBytes wav, quint64 dataSize)
{
    const quint64 frames = dataSize / (wav.channels * wav.bits / 8U);
    wav.riff = "RF64";
    wav.statedRiffSize = allOnes;
    wav.beforeFmt.prepend(SizeChunk(dataSize + 72, dataSize, frames));
    wav.statedDataSize = allOnes;
    return wav;
}

WavBytes FloatBytes(quint16 channels, quint32 rate, const QByteArray& data = {})
{
    return {.formatTag = 3, .channels = channels, .sampleRate = rate, .bits = 32, .data = data};
}

/** The header that stands before a one-channel export, as RF64 where it states 4 GiB or more. */
QByteArray ExportedHeader(const WavBytes& wav, qint64 dataSize)
{
    if (dataSize + 36 > allOnes) {
        return AsRf64(wav, static_cast<quint64>(dataSize)).Build();
    }
    WavBytes stated = wav;
    stated.statedRiffSize = dataSize + 36;
    stated.statedDataSize = static_cast<quint32>(dataSize);
    return stated.Build();
}

/** The values of an extraction of the left channel. */
QList<float> Values(const TestAudio& audio, int step)
{
    QList<float> values;
    for (int frame = 0; frame < audio.frames; frame += step) {
        values.append(audio.Float(frame, 0));
    }
    return values;
}

/** A file with silence, which takes no room on the disk, before its last second. */
class LongRecording
{
public:
    LongRecording(const QByteArray& header, qint64 seconds)
    {
        const qint64 lastSecond = header.size() + (seconds - 1) * audio.FrameBytes() * audio.frames;
        QFile recording(m_files.Write(u"long.wav"_s, header));
        QVERIFY(recording.open(QIODevice::ReadWrite));
        QVERIFY(recording.resize(lastSecond));
        QVERIFY(recording.seek(lastSecond));
        const QByteArray data = audio.Data();
        QCOMPARE(recording.write(data), data.size());
    }

    QString File() const { return m_files.Path(u"long.wav"_s); }
    QString Output() const { return m_files.Path(u"out.wav"_s); }

    /** Twelve hours, which are more than 30 GB. */
    static LongRecording OfTwelveHours() { return {AsRf64(FloatBytes(2, 96000), twelveHours).Build(), 43200}; }

    static constexpr qint64 twelveHours = qint64(43200) * 96000 * 8;

    /** The last second. */
    const TestAudio audio{.coding = F32, .channels = 2, .rate = 96000, .frames = 96000};

private:
    const TemporaryFiles m_files;
};

/** A file with two chunks of 3 GiB before its data. They take no room on the disk. Returns its path. */
QString WriteFarData(const TemporaryFiles& files, const QByteArray& data)
{
    constexpr qsizetype sizesEnd = 48;
    const QByteArray wav = AsRf64(FloatBytes(1, 8192, data), static_cast<quint64>(data.size())).Build();
    QFile file(files.Write(u"far.wav"_s, wav.left(sizesEnd)));
    const QByteArray chunk = "JUNK" + LittleEndian(static_cast<quint32>(3 * oneGiB));
    const bool isWritten = file.open(QIODevice::ReadWrite) && file.seek(sizesEnd) && file.write(chunk) > 0 &&
                           file.seek(sizesEnd + 8 + 3 * oneGiB) && file.write(chunk) > 0 &&
                           file.seek(sizesEnd + 16 + 6 * oneGiB) && file.write(wav.mid(sizesEnd)) > 0;
    return isWritten ? file.fileName() : QString();
}

/** What reading stored, and the result. */
struct Reading
{
    explicit Reading(QByteArray bytes, WavKinds kinds = WavKinds::RiffAndRf64)
    {
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        result = ReadWavHeader(device, header, kinds);
        position = device.pos();
    }

    WavHeader header;
    WavFile::AudioEngineReturnValue result;
    qint64 position = 0;
};

} // namespace

class TestLargeFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areNotAllowedAtFirst();
    void areNotAllowedByAssignment();
    void areRefusedUntilTheNextOpenThatMayReadThem();

    void opensTwelveHours();
    void opensRiffFilesAsBefore_data();
    void opensRiffFilesAsBefore();
    void readsSizesOfRf64_data();
    void readsSizesOfRf64();
    void refusesBrokenRf64_data();
    void refusesBrokenRf64();
    void readsRf64CutAtAnyPlaceWithoutHarm();
    void opensDataBehindFourGiB();

    void extractsTheEndOfTwelveHours();
    void extractsBehindTwoGiBOfARiffFile();
    void endsExtractionForEveryTime_data();
    void endsExtractionForEveryTime();

    void cutsASnippetFromTheEndOfTwelveHours();
    void statesTheSizeOfAnySnippet_data();
    void statesTheSizeOfAnySnippet();
    void endsSnippetsForEveryTime_data();
    void endsSnippetsForEveryTime();
    void marksASnippetWithoutFramesAsBefore();

    void filtersUpToAnEndBehindTheOldLimit_data();
    void filtersUpToAnEndBehindTheOldLimit();
    void convertsAnyStatedLength_data();
    void convertsAnyStatedLength();
    void convertsDataBehindFourGiB();
    void keepsTheSourceOfWhichOnlyALargeHeaderWouldBeLeft();
    void opensItsOwnLargeExports();

    void composesTheHeaderThatStatesTheSize_data();
    void composesTheHeaderThatStatesTheSize();
    void composesHeadersWithRoomOfOneSize_data();
    void composesHeadersWithRoomOfOneSize();
    void composesNothingForFormatsWithoutEncoding();
    void readsWhatItComposes_data();
    void readsWhatItComposes();

    void countsInSixtyFourBits();
    void calculatesLargeDataSizes();

private:
    static void AddTimes();
};

void TestLargeFiles::areNotAllowedAtFirst()
{
    WavFile file;
    QVERIFY(!file.GetLargeFiles());
    file.SetLargeFiles(true);
    QVERIFY(file.GetLargeFiles());
    file.SetLargeFiles(false);
    QVERIFY(!file.GetLargeFiles());
}

void TestLargeFiles::areNotAllowedByAssignment()
{
    WavFile large;
    large.SetLargeFiles(true);
    WavFile target;
    target = large;
    QVERIFY(!target.GetLargeFiles());
    large = WavFile();
    QVERIFY(large.GetLargeFiles());
}

void TestLargeFiles::areRefusedUntilTheNextOpenThatMayReadThem()
{
    const TemporaryFiles files;
    const QString path = files.Write(u"rf64.wav"_s, AsRf64({.data = PackS16({1, 2})}, 4).Build());
    WavFile file;
    QCOMPARE(file.Open(path), WavFile::ErrorInvalidFormat);
    file.SetLargeFiles(true);
    QCOMPARE(file.GetDataLength(), 0);
    QCOMPARE(file.Open(path), WavFile::Success);
    QCOMPARE(file.GetDataLength(), 4);
    file.SetLargeFiles(false);
    QCOMPARE(file.GetDataLength(), 4);
    QCOMPARE(file.Open(path), WavFile::ErrorInvalidFormat);
}

void TestLargeFiles::opensTwelveHours()
{
    const LongRecording recording = LongRecording::OfTwelveHours();
    WavFile file;
    file.SetLargeFiles(true);
    QCOMPARE(file.Open(recording.File()), WavFile::Success);
    QCOMPARE(file.GetDuration(), 43200.0);
    QCOMPARE(file.GetDataLength(), LongRecording::twelveHours);
    QCOMPARE(file.GetDataOffset(), 80);
    QCOMPARE(file.GetFileFormat(), Format(QAudioFormat::Float, 2, 96000));
    QCOMPARE(file.GetSampleSize(), 32);
}

void TestLargeFiles::opensRiffFilesAsBefore_data()
{
    QTest::addColumn<WavBytes>("wav");
    const QByteArray data = PackS16({1, 2, 3, 4});
    QTest::addRow("plain") << WavBytes{.data = data};
    QTest::addRow("a size of all ones") << WavBytes{.data = data, .statedDataSize = allOnes};
    QTest::addRow("a size chunk that has no meaning here")
        << WavBytes{.beforeFmt = {SizeChunk(1, 2, 3)}, .data = data, .statedDataSize = allOnes};
    QTest::addRow("big-endian") << WavBytes{.riff = "RIFX", .data = data};
    QTest::addRow("no audio") << WavBytes{.form = "AVI ", .data = data};
}

void TestLargeFiles::opensRiffFilesAsBefore()
{
    QFETCH(const WavBytes, wav);
    const Reading before(wav.Build(), WavKinds::Riff);
    const Reading now(wav.Build());
    QCOMPARE(now.result, before.result);
    QCOMPARE(now.position, before.position);
    QCOMPARE(now.header.format, before.header.format);
    QCOMPARE(now.header.dataLength, before.header.dataLength);
    QCOMPARE(now.header.dataOffset, before.header.dataOffset);
}

void TestLargeFiles::readsSizesOfRf64_data()
{
    QTest::addColumn<WavBytes>("wav");
    QTest::addColumn<qint64>("offset");
    QTest::addColumn<qint64>("length");
    const WavBytes plain{.data = PackS16({1, 2, 3, 4})};
    QTest::addRow("the size there is") << AsRf64(plain, 8) << qint64(80) << qint64(8);
    QTest::addRow("no data") << AsRf64(plain, 0) << qint64(80) << qint64(0);
    QTest::addRow("more than the file holds") << AsRf64(plain, 1ULL << 40) << qint64(80) << (qint64(1) << 40);
    QTest::addRow("the largest size") << AsRf64(plain, longest) << qint64(80) << longest;

    WavBytes inField = AsRf64(plain, 1ULL << 40);
    inField.statedDataSize = 6;
    QTest::addRow("a size field that counts as it stands") << inField << qint64(80) << qint64(6);

    WavBytes withTable = AsRf64(plain, 1ULL << 40);
    withTable.beforeFmt[0].body += QByteArray(24, 't');
    QTest::addRow("a table behind the sizes") << withTable << qint64(104) << (qint64(1) << 40);

    WavBytes withJunk = AsRf64(plain, 1ULL << 40);
    withJunk.beforeFmt.append({"JUNK", QByteArray(28, '\0')});
    withJunk.beforeData = {{"bext", "text"}, {"ds64", "another"}};
    QTest::addRow("other chunks") << withJunk << qint64(80 + 36 + 12 + 15) << (qint64(1) << 40);

    WavBytes strange = AsRf64(plain, 1ULL << 40);
    strange.statedRiffSize = 1;
    strange.beforeFmt[0] = SizeChunk(3, 1ULL << 40, ~0ULL);
    QTest::addRow("other sizes that do not fit") << strange << qint64(80) << (qint64(1) << 40);
}

void TestLargeFiles::readsSizesOfRf64()
{
    QFETCH(const WavBytes, wav);
    const Reading reading(wav.Build());
    QCOMPARE(reading.result, WavFile::Success);
    QTEST(reading.header.dataOffset, "offset");
    QTEST(reading.header.dataLength, "length");
    QCOMPARE(Reading(wav.Build(), WavKinds::Riff).result, WavFile::ErrorInvalidFormat);
}

void TestLargeFiles::refusesBrokenRf64_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("result");
    const auto add = [](const char* name, const QList<Chunk>& beforeFmt, int result,
                        const QByteArray& form = "WAVE") {
        const WavBytes wav{.riff = "RF64", .form = form, .beforeFmt = beforeFmt, .data = PackS16({1, 2})};
        QTest::newRow(name) << wav.Build() << result;
    };
    const Chunk sizes = SizeChunk(76, 4, 2);
    add("no size chunk", {}, WavFile::ErrorInvalidFormat);
    add("a size chunk that is not the first one", {{"JUNK", "junk"}, sizes}, WavFile::ErrorInvalidFormat);
    add("an empty size chunk", {{"ds64", {}}}, WavFile::ErrorInvalidFormat);
    add("a size chunk that lacks a byte", {{"ds64", sizes.body.left(27)}}, WavFile::ErrorInvalidFormat);
    add("a size of 2^63", {SizeChunk(76, 1ULL << 63, 2)}, WavFile::ErrorInvalidFormat);
    add("a size of all ones", {SizeChunk(76, ~0ULL, 2)}, WavFile::ErrorInvalidFormat);
    add("a table beyond the end", {{"ds64", sizes.body, 1000}}, WavFile::ErrorReadFile);
    add("a table of 4 GiB", {{"ds64", sizes.body, allOnes}}, WavFile::ErrorReadFile);
    add("no audio", {sizes}, WavFile::ErrorInvalidFormat, "AVI ");
    QTest::newRow("ends before the size chunk")
        << QByteArray("RF64\xff\xff\xff\xffWAVE") << int(WavFile::ErrorReadFile);
}

void TestLargeFiles::refusesBrokenRf64()
{
    QFETCH(const QByteArray, bytes);
    const Reading reading(bytes);
    QTEST(int(reading.result), "result");
    QCOMPARE_LE(reading.position, bytes.size());
    QCOMPARE(reading.header.dataLength, 0);
    QCOMPARE(reading.header.format.sampleFormat(), QAudioFormat::Unknown);
}

void TestLargeFiles::readsRf64CutAtAnyPlaceWithoutHarm()
{
    const QByteArray whole = AsRf64({.data = PackS16({1, 2})}, 1ULL << 40).Build();
    for (qsizetype size = 0; size < 80; ++size) {
        const Reading reading(whole.left(size));
        // As in every file, a missing "fmt " chunk is accepted; one to three letters are no name yet.
        const bool endsBeforeFormat = size == 48 || (size >= 52 && size < 72);
        QCOMPARE(reading.result, endsBeforeFormat ? WavFile::Success : WavFile::ErrorReadFile);
        QCOMPARE_LE(reading.position, size);
    }
    QCOMPARE(Reading(whole.left(80)).result, WavFile::Success);
}

void TestLargeFiles::opensDataBehindFourGiB()
{
    const TemporaryFiles files;
    WavFile file;
    file.SetLargeFiles(true);
    QCOMPARE(file.Open(WriteFarData(files, PackF32({0.25F, 0.5F}))), WavFile::Success);
    QCOMPARE(file.GetDataOffset(), 80 + 16 + 6 * oneGiB);
    QCOMPARE(file.GetDataLength(), 8);
    file.ReadData(0, 1, 1);
    QCOMPARE(file.GetSamples(), QList<float>({0.25F, 0.5F}));
}

void TestLargeFiles::extractsTheEndOfTwelveHours()
{
    const LongRecording recording = LongRecording::OfTwelveHours();
    WavFile file;
    file.SetLargeFiles(true);
    QCOMPARE(file.Open(recording.File()), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    for (const int step : {1, 100, 48000}) {
        file.ReadData(43199, 43200, step);
        QCOMPARE(file.GetSamples(), Values(recording.audio, step));
    }

    file.SetLargeFiles(false);
    file.ReadData(43199, 43200, 100);
    QVERIFY(file.GetSamples().isEmpty());
}

void TestLargeFiles::extractsBehindTwoGiBOfARiffFile()
{
    // An hour of 768,000 bytes a second is more than 2 GiB and less than 4 GiB.
    constexpr qint64 seconds = 3600;
    WavBytes wav = FloatBytes(2, 96000);
    wav.statedDataSize = seconds * 768000;
    const LongRecording recording(wav.Build(), seconds);
    WavFile file;
    QCOMPARE(file.Open(recording.File()), WavFile::Success);
    QCOMPARE(file.GetDuration(), 3600.0);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    file.ReadData(3599, 3600, 100);
    QVERIFY(file.GetSamples().isEmpty());

    file.SetLargeFiles(true);
    file.ReadData(3599, 3600, 100);
    QCOMPARE(file.GetSamples(), Values(recording.audio, 100));
}

void TestLargeFiles::AddTimes()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    const double infinity = std::numeric_limits<double>::infinity();
    const double times[] = {0.0,   0.05,  -1.0,   1e6,      -1e6,      1e12,
                            -1e12, 1e300, -1e300, infinity, -infinity, std::nan("")};
    for (const double start : times) {
        for (const double end : times) {
            QTest::addRow("%g to %g", start, end) << start << end;
        }
    }
}

void TestLargeFiles::endsExtractionForEveryTime_data()
{
    AddTimes();
}

void TestLargeFiles::endsExtractionForEveryTime()
{
    QFETCH(const double, start);
    QFETCH(const double, end);
    const TestAudio audio{.coding = F32, .channels = 2, .frames = 4000};
    OpenedWav opened(audio.File());
    opened.file.SetLargeFiles(true);
    // Not-a-number counts as 0.
    const double first = std::isnan(start) ? 0 : start;
    const double last = std::isnan(end) ? 0 : end;
    for (const int step : {1, 100000, std::numeric_limits<int>::max()}) {
        opened.file.ReadData(start, end, step);
        const qsizetype count = opened.file.GetSamples().size();
        QCOMPARE_LE(count, 4000 + 200);
        QCOMPARE(count > 0, first > -1 && first < 1 && last > first);
    }
}

void TestLargeFiles::cutsASnippetFromTheEndOfTwelveHours()
{
    const LongRecording recording = LongRecording::OfTwelveHours();
    const TestAudio& audio = recording.audio;
    const QString out = recording.Output();
    WavFile file;
    file.SetLargeFiles(true);
    QCOMPARE(file.Open(recording.File()), WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelRight);
    QCOMPARE(file.CreateSnippet(out, 43199, 43199.5), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(out),
             audio.Exported(audio.ExportedData(0, 48000, WavFile::ChannelRight), 48000 * 4));

    file.SetLargeFiles(false);
    QCOMPARE(file.CreateSnippet(out, 43199, 43199.5), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(out), audio.Exported({}, 48000 * 4));
}

void TestLargeFiles::statesTheSizeOfAnySnippet_data()
{
    QTest::addColumn<double>("end");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<qint64>("sizeByDefault");
    QTest::addRow("what the file holds") << 0.05 << qint64(1600) << qint64(1600);
    QTest::addRow("3 GiB") << 100663.296 << 3 * oneGiB << 3 * oneGiB;
    QTest::addRow("just below the limit") << 134217.726 << qint64(4294967232) << qint64(4294967232);
    QTest::addRow("just above the limit") << 134217.727 << qint64(4294967264) << qint64(4294967264);
    QTest::addRow("4 GiB") << 134217.728 << 4 * oneGiB << qint64(0);
    QTest::addRow("12 GiB and a bit") << 402653.185 << 12 * oneGiB + 32 << qint64(-4);
    QTest::addRow("for ever") << std::numeric_limits<double>::infinity() << longest << qint64(-4);
}

void TestLargeFiles::statesTheSizeOfAnySnippet()
{
    QFETCH(const double, end);
    QFETCH(const qint64, size);
    QFETCH(const qint64, sizeByDefault);
    const TestAudio audio{.coding = F32, .frames = 400};
    const QByteArray data = audio.ExportedData(0, 400, WavFile::ChannelMono);
    ExportSetup setup(audio);
    setup.file.SetLargeFiles(true);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, end), WavFile::Success);
    QCOMPARE(setup.Result(), ExportedHeader(FloatBytes(1, 8000), size) + data);

    // By default the end lies before the start where its position wraps.
    setup.file.SetLargeFiles(false);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, end), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported(end < 1 ? data : QByteArray(), sizeByDefault));
}

void TestLargeFiles::endsSnippetsForEveryTime_data()
{
    AddTimes();
}

void TestLargeFiles::endsSnippetsForEveryTime()
{
    QFETCH(const double, start);
    QFETCH(const double, end);
    ExportSetup setup(TestAudio{.coding = F32, .frames = 400});
    setup.file.SetLargeFiles(true);
    QCOMPARE(setup.file.CreateSnippet(setup.out, start, end), WavFile::Success);
    const Reading written(setup.Result());
    QCOMPARE(written.result, WavFile::Success);
    // At most all of the file: a start just before the audio takes the header for audio, as ever.
    QCOMPARE_LE(setup.Result().size(), written.header.dataOffset + 44 + 1600);
}

void TestLargeFiles::marksASnippetWithoutFramesAsBefore()
{
    const TestAudio audio{.coding = F32, .frames = 400};
    ExportSetup setup(audio);
    setup.file.SetLargeFiles(true);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0.02, 0.02), WavFile::Success);
    QCOMPARE(setup.Result(), audio.Exported({}, -1));
}

void TestLargeFiles::filtersUpToAnEndBehindTheOldLimit_data()
{
    QTest::addColumn<Coding>("coding");
    QTest::addColumn<qint64>("length");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<qint64>("sizeByDefault");
    QTest::addRow("16 bits, 2.5 GB") << S16 << qint64(2621440000) << qint64(1310720000) << qint64(1310720000);
    QTest::addRow("16 bits, 6 GiB") << S16 << 6 * oneGiB << 3 * oneGiB << qint64(0x7FFFFFFF);
    QTest::addRow("16 bits, 12 GiB") << S16 << 12 * oneGiB << 6 * oneGiB << qint64(0x7FFFFFFF);
    QTest::addRow("24 bits, 12 GiB") << S24 << 12 * oneGiB << 8 * oneGiB << qint64(0x7FFFFFFF);
    QTest::addRow("16 bits, the largest size") << S16 << longest << (qint64(1) << 62) << qint64(0x7FFFFFFF);
}

/** The file ends long before the end that it states. */
void TestLargeFiles::filtersUpToAnEndBehindTheOldLimit()
{
    QFETCH(const Coding, coding);
    QFETCH(const qint64, length);
    QFETCH(const qint64, size);
    QFETCH(const qint64, sizeByDefault);
    const TestAudio audio{.coding = coding, .channels = 2, .rate = 32768, .frames = 300};
    const auto bits = static_cast<quint16>(TestAudio::Bits(coding));
    const WavBytes source{.channels = 2, .sampleRate = 32768, .bits = bits, .data = audio.Data()};
    const WavBytes exported = coding == S24 ? FloatBytes(1, 32768) : WavBytes{.sampleRate = 32768};

    const TemporaryFiles files;
    const QString out = files.Path(u"out.wav"_s);
    WavFile file;
    file.SetLargeFiles(true);
    QCOMPARE(file.Open(files.Write(u"source.wav"_s, AsRf64(source, static_cast<quint64>(length)).Build())),
             WavFile::Success);
    file.SetSelectedChannel(WavFile::ChannelLeft);
    QCOMPARE(file.FilterChannel(out), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(out),
             ExportedHeader(exported, size) + audio.ExportedData(0, 300, WavFile::ChannelLeft));

    QVERIFY(QFile::remove(out));
    file.SetLargeFiles(false);
    QCOMPARE(file.FilterChannel(out), WavFile::Success);
    QCOMPARE(TemporaryFiles::Read(out), audio.Exported({}, sizeByDefault));
}

void TestLargeFiles::convertsAnyStatedLength_data()
{
    QTest::addColumn<WavBytes>("source");
    QTest::addColumn<QAudioFormat>("target");
    QTest::addColumn<WavBytes>("expected");
    QTest::addColumn<qint64>("size");
    const QByteArray s16 = PackS16({1, -2, 3, -4});
    const QAudioFormat int16 = Format(QAudioFormat::Int16, 1, 8192);
    const WavBytes source{.sampleRate = 8192, .data = s16};
    WavBytes riff = source;
    riff.statedDataSize = 3'000'000'000;
    QTest::addRow("RIFF, 3 GB") << riff << int16 << source << qint64(3'000'000'000);
    QTest::addRow("RF64, 3 GB") << AsRf64(source, 3'000'000'000) << int16 << source << qint64(3'000'000'000);
    QTest::addRow("20 GiB") << AsRf64(source, 20ULL << 30) << int16 << source << 20 * oneGiB;
    QTest::addRow("the largest size") << AsRf64(source, longest) << int16 << source << longest;

    const WavBytes source24{.sampleRate = 8192, .bits = 24, .data = PackS24({1, -2, 3, -4})};
    const WavBytes expected32{.sampleRate = 8192, .bits = 32, .data = PackS32({256, -512, 768, -1024})};
    QTest::addRow("the largest size of 24 bits")
        << AsRf64(source24, longest) << Format(QAudioFormat::Int32, 1, 8192) << expected32 << longest;
}

void TestLargeFiles::convertsAnyStatedLength()
{
    QFETCH(const WavBytes, source);
    QFETCH(const QAudioFormat, target);
    QFETCH(WavBytes, expected);
    QFETCH(const qint64, size);
    const QByteArray data = std::exchange(expected.data, {});
    const TemporaryFiles files;
    const QString out = files.Path(u"out.wav"_s);
    WavFile file;
    file.SetLargeFiles(true);
    QCOMPARE(file.Open(files.Write(u"source.wav"_s, source.Build())), WavFile::Success);
    QVERIFY(file.Convert(target, out));
    QCOMPARE(TemporaryFiles::Read(out), ExportedHeader(expected, size) + data);

    // By default such a length becomes negative, or nothing.
    file.SetLargeFiles(false);
    QVERIFY(file.Convert(target, out));
    QCOMPARE(TemporaryFiles::Read(out), ExportedHeader(expected, -1) + data);
}

void TestLargeFiles::convertsDataBehindFourGiB()
{
    const TemporaryFiles files;
    const QString out = files.Path(u"out.wav"_s);
    const QByteArray data = PackF32({0.25F, 0.5F, -0.75F});
    WavFile file;
    file.SetLargeFiles(true);
    QCOMPARE(file.Open(WriteFarData(files, data)), WavFile::Success);
    QVERIFY(file.Convert(Format(QAudioFormat::Float, 1, 8192), out));
    QCOMPARE(TemporaryFiles::Read(out), FloatBytes(1, 8192, data).Build());
}

void TestLargeFiles::keepsTheSourceOfWhichOnlyALargeHeaderWouldBeLeft()
{
    const QByteArray bytes = AsRf64({.data = PackS16({1, 2, 3, 4, 5})}, 1ULL << 50).Build();
    const TemporaryFiles files;
    WavFile file;
    file.SetLargeFiles(true);
    QCOMPARE(file.Open(files.Write(u"source.wav"_s, bytes)), WavFile::Success);
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), {}));
    QCOMPARE(TemporaryFiles::Read(file.fileName()), bytes);
    QCOMPARE(QDir(files.Path({})).entryList(QDir::Files | QDir::Hidden), QStringList({u"source.wav"_s}));
}

void TestLargeFiles::opensItsOwnLargeExports()
{
    const TestAudio audio{.coding = F32, .frames = 400};
    ExportSetup setup(audio);
    setup.file.SetLargeFiles(true);
    QCOMPARE(setup.file.CreateSnippet(setup.out, 0, 1e6), WavFile::Success);
    WavFile opened;
    QCOMPARE(opened.Open(setup.out), WavFile::ErrorInvalidFormat);
    opened.SetLargeFiles(true);
    QCOMPARE(opened.Open(setup.out), WavFile::Success);
    QCOMPARE(opened.GetDataOffset(), 80);
    QCOMPARE(opened.GetDuration(), 1e6);
    opened.ReadData(0, 1e6, 7);
    QCOMPARE(opened.GetSamples(), Values(audio, 7));
}

void TestLargeFiles::composesTheHeaderThatStatesTheSize_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QByteArray>("expected");
    // Each blank stands between two fields.
    QTest::addRow("twelve hours")
        << qint64(33177600000)
        << QByteArray::fromHex("52463634 ffffffff 57415645 64733634 1c000000 48008ab907000000 00008ab907000000 "
                               "004031f700000000 00000000"
                               "666d7420 10000000 0300 0200 00770100 00b80b00 0800 2000 64617461 ffffffff");
    const auto add = [](const char* name, qint64 size) {
        QTest::newRow(name) << size << ExportedHeader(FloatBytes(2, 96000), size);
    };
    add("nothing", 0);
    add("a little", 1000);
    add("2 GiB", 2 * oneGiB);
    add("the largest size of a RIFF file", allOnes - 36);
    add("one byte more", allOnes - 35);
    add("4 GiB", 4 * oneGiB);
    add("the largest size", longest);
    add("no size", -1);
}

void TestLargeFiles::composesTheHeaderThatStatesTheSize()
{
    QFETCH(const qint64, size);
    const QByteArray header = ComposeLargeWavHeader(Format(QAudioFormat::Float, 2, 96000), size);
    QTEST(header, "expected");
    QCOMPARE(header.size(), size > allOnes - 36 ? 80 : 44);
}

void TestLargeFiles::composesHeadersWithRoomOfOneSize_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QByteArray>("expected");
    QTest::addRow("a little") << qint64(1000)
                              << QByteArray::fromHex(
                                     "52494646 30040000 57415645 4a554e4b 1c000000 "
                                     "00000000000000000000000000000000000000000000000000000000"
                                     "666d7420 10000000 0100 0200 44ac0000 10b10200 0400 1000 64617461 e8030000");
    const auto addRiff = [](const char* name, qint64 size) {
        WavBytes wav{.channels = 2};
        wav.beforeFmt = {{"JUNK", QByteArray(28, '\0')}};
        wav.statedRiffSize = size + 72;
        wav.statedDataSize = size;
        QTest::newRow(name) << size << wav.Build();
    };
    const auto addRf64 = [](const char* name, qint64 size) {
        QTest::newRow(name) << size << AsRf64({.channels = 2}, static_cast<quint64>(size)).Build();
    };
    addRiff("nothing", 0);
    addRiff("2 GiB", 2 * oneGiB);
    addRiff("the largest size of a RIFF file", allOnes - 72);
    addRf64("one byte more", allOnes - 71);
    addRf64("4 GiB", 4 * oneGiB);
    addRf64("the largest size", longest);
}

void TestLargeFiles::composesHeadersWithRoomOfOneSize()
{
    QFETCH(const qint64, size);
    const QByteArray header = ComposeWavHeaderWithRoom(Format(QAudioFormat::Int16, 2, 44100), size);
    QTEST(header, "expected");
    QCOMPARE(header.size(), 80);
}

void TestLargeFiles::composesNothingForFormatsWithoutEncoding()
{
    for (const auto sampleFormat : {QAudioFormat::Unknown, QAudioFormat::UInt8}) {
        for (const qint64 size : {qint64(1000), 8 * oneGiB}) {
            QVERIFY(ComposeLargeWavHeader(Format(sampleFormat, 2, 44100), size).isEmpty());
            QVERIFY(ComposeWavHeaderWithRoom(Format(sampleFormat, 2, 44100), size).isEmpty());
        }
    }
    // No frames to count, and no division by their size.
    QCOMPARE(ComposeLargeWavHeader(Format(QAudioFormat::Int16, 0, 44100), 8 * oneGiB).mid(36, 8),
             QByteArray(8, '\0'));
}

void TestLargeFiles::readsWhatItComposes_data()
{
    QTest::addColumn<qint64>("size");
    for (const qint64 size : {qint64(0), qint64(1000), 2 * oneGiB, allOnes - 72, allOnes - 71, allOnes - 36,
                              allOnes - 35, allOnes, 4 * oneGiB, longest}) {
        QTest::addRow("%lld bytes", size) << size;
    }
}

void TestLargeFiles::readsWhatItComposes()
{
    QFETCH(const qint64, size);
    const QAudioFormat format = Format(QAudioFormat::Float, 2, 96000);
    for (const QByteArray& header :
         {ComposeLargeWavHeader(format, size), ComposeWavHeaderWithRoom(format, size)}) {
        const Reading reading(header);
        QCOMPARE(reading.result, WavFile::Success);
        QCOMPARE(reading.header.dataLength, size);
        QCOMPARE(reading.header.dataOffset, header.size());
        QCOMPARE(reading.header.format, format);
        QCOMPARE(reading.header.sampleSize, 32);
    }
}

void TestLargeFiles::countsInSixtyFourBits()
{
    constexpr qint64 smallest = std::numeric_limits<qint64>::min();
    const ByteCounting large(true);
    QCOMPARE(large.Truncate(1e12 + 0.5), qint64(1'000'000'000'000));
    QCOMPARE(large.Truncate(1e300), longest);
    QCOMPARE(large.Truncate(std::nan("")), 0);
    QCOMPARE(large.Restrict(longest), longest);
    QCOMPARE(large.Multiply(3 * oneGiB, -8), -24 * oneGiB);
    QCOMPARE(large.Multiply(longest, 2), longest);
    QCOMPARE(large.Multiply(smallest, -1), longest);
    QCOMPARE(large.Multiply(smallest, 2), smallest);
    QCOMPARE(large.PositionOf(1e6, 96000, 8, 80), qint64(768'000'000'080));
    // Any two positions can be subtracted without overflow.
    const double infinity = std::numeric_limits<double>::infinity();
    QCOMPARE_LT(large.PositionOf(infinity, 96000, 8, 80), longest / 2);
    QCOMPARE_GT(large.PositionOf(-infinity, 96000, 8, 80), smallest / 2);

    const ByteCounting small(false);
    QCOMPARE(small.Truncate(1e12), qint64(0x7FFFFFFF));
    QCOMPARE(small.Restrict(4 * oneGiB + 3), 3);
    QCOMPARE(small.Multiply(oneGiB, 2), -2 * oneGiB);
    QCOMPARE(small.PositionOf(16384, 32768, 4, 44), 44 - 2 * oneGiB);
}

void TestLargeFiles::calculatesLargeDataSizes()
{
    const QAudioFormat from = Format(QAudioFormat::Float, 2, 32768);
    const QAudioFormat to = Format(QAudioFormat::Int16, 1, 65536);
    const ByteCounting large(true);
    QCOMPARE(CalculateAudioDataSize(20 * oneGiB, from, to, large), 10 * oneGiB);
    QCOMPARE(CalculateAudioDataSize(longest, to, from, large), longest);
    QCOMPARE(CalculateAudioDataSize(qint64(0), from, to, large), -1);
    QCOMPARE(CalculateAudioDataSize(qint64(-1), from, to, large), -1);
    QCOMPARE(CalculateAudioDataSize(8 * oneGiB, Format(QAudioFormat::NSampleFormats, 2, 8000), to, large), -1);
    QCOMPARE(SamplesToBytes(3 * oneGiB, 4, 2, large), 24 * oneGiB);
    QCOMPARE(SamplesToBytes(qint64(0), 4, 2, large), -1);
    QCOMPARE(SamplesToBytes(longest, 4, 2, large), longest);
}

QTEST_GUILESS_MAIN(TestLargeFiles)
#include "tst_largefiles.moc"
