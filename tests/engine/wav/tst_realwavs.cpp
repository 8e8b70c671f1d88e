#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QDir>
#include <QtCore/QSet>
#include <QtTest/QtTest>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Expectation
{
    const char* name;
    int result;
    QAudioFormat::SampleFormat sampleFormat;
    int sampleSize;
    int channelCount;
    int sampleRate;
    qint64 dataOffset;
    qint64 dataLength;
    double duration;
    int valueCount;
    float firstValue;
    float lastValue;
};

/** Read off the bytes of each file. */
QList<Expectation> Expectations()
{
    using F = QAudioFormat;
    QList<Expectation> rows;
    const auto add = [&rows](auto... values) { rows.append(Expectation{values...}); };
    const auto addRefused = [&](const char* name, int result, int sampleSize) {
        add(name, result, F::Unknown, sampleSize, 0, 0, 0, 0, 0.0, 0, 0.0F, 0.0F);
    };

    addRefused("crash-24728523ef4be15c838293b676f6853e73723bf4", -1, 0);
    addRefused("crash-b8447179832529c48f9c6bf17feab6337bbc78ea", -3, 0);
    addRefused("crash-e5471f5b58397287b509db7d026e95f1724454f5", -1, 0);
    addRefused("crash-e879de4eb4d206c59e21f0e01def16457af80fdc", -3, 0);
    addRefused("oom-48ae4cd061ff8578ad3f23dc87624bd365cf5216", -3, 0);
    addRefused("pcmwaveformat-8bit-44100Hz-mono", -1, 8);

    const float first = 2.0F / 32767.0F;
    const float last = -7.0F / 32767.0F;
    add("pcmwaveformat-16bit-44100Hz-mono", 0, F::Int16, 16, 1, 44100, 44, 8, 4 / 44100.0, 4, first, last);
    add("pcmwaveformat-16bit-44100Hz-mono-extra", 0, F::Int16, 16, 1, 44100, 78, 8, 4 / 44100.0, 4, first, last);
    add("waveformatex-16bit-44100Hz-mono", 0, F::Int16, 16, 1, 44100, 46, 8, 4 / 44100.0, 4, first, last);
    add("waveformatex-16bit-44100Hz-mono-extra", 0, F::Int16, 16, 1, 44100, 80, 8, 4 / 44100.0, 4, first, last);
    // Samples 2, -3, ..., 17, -19: the average of each pair.
    add("waveformatex-16bit-44100Hz-stereo", 0, F::Int16, 16, 2, 44100, 46, 16, 4 / 44100.0, 4, -0.5F / 32767.0F,
        -1.0F / 32767.0F);
    add("waveformatex-ieeefloat-44100Hz-mono", 0, F::Float, 32, 1, 44100, 46, 16, 4 / 44100.0, 4, 2.0F, 1019.0F);
    add("waveformatextensible-24bit-192kHz-mono", 0, F::Int32, 24, 1, 192000, 68, 12, 4 / 192000.0, 4,
        -17.0F / 8388607.0F, 8355817.0F / 8388607.0F);
    // Its frames of 8 bytes are read as frames of 6, since the bits say 24; four bytes are left over.
    add("pcmwaveformat-24bit-4byte-48kHz-stereo", 0, F::Int32, 24, 2, 48000, 44, 16, 16 / 288000.0, 2,
        (-96.0F + 5901312.0F) * 0.5F / 8388607.0F, (-65536.0F + 32767.0F) * 0.5F / 8388607.0F);
    const float firstOf32 = (16777120.0F + 23052.0F) * 4.656612873077393e-10F * 0.5F;
    const float lastOf32 = (8388607.0F + 8416544.0F) * 4.656612873077393e-10F * 0.5F;
    add("waveformatextensible-24bit-4byte-48kHz-stereo", 0, F::Int32, 32, 2, 48000, 68, 16, 2 / 48000.0, 2,
        firstOf32, lastOf32);
    // Samples 19, -229373, 33587161, -2147483497.
    const float firstOfBoth = (19.0F - 229373.0F) * 4.656612873077393e-10F * 0.5F;
    const float lastOfBoth = (33587161.0F - 2147483497.0F) * 4.656612873077393e-10F * 0.5F;
    add("waveformatextensible-32bit-48kHz-stereo", 0, F::Int32, 32, 2, 48000, 68, 16, 2 / 48000.0, 2, firstOfBoth,
        lastOfBoth);
    add("nonstandard-02", 0, F::Int32, 32, 2, 48000, 68, 16, 2 / 48000.0, 2, firstOfBoth, lastOfBoth);
    add("nonstandard-01", 0, F::Int32, 24, 2, 48000, 802, 6, 1 / 48000.0, 1, 0.0F, 0.0F);
    add("pop", 0, F::Int16, 16, 1, 44100, 68, 200, 100 / 44100.0, 100, 0.0F, -2518.0F / 32767.0F);
    // The last block reaches over the chunk behind the data: 156 bytes in all, the last four of them text.
    add("waveformatextensible-ieeefloat-44100Hz-mono", 0, F::Float, 32, 1, 44100, 80, 16, 4 / 44100.0, 39, 2.0F,
        std::ldexp(7301476.0F, -149));

    return rows;
}

QString FileName(const char* row)
{
    return u"hound__%1.wav"_s.arg(QLatin1String(row));
}

} // namespace

/** Files that another project's encoder, hand or fuzzer made. */
class TestRealWavs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opensAndExtracts_data();
    void opensAndExtracts();
    void expectsSomethingOfEveryFile();

private:
    const QDir m_folder{QStringLiteral(VANTOR_REAL_WAVS_DIR)};
};

void TestRealWavs::opensAndExtracts_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("sampleFormat");
    QTest::addColumn<int>("sampleSize");
    QTest::addColumn<int>("channelCount");
    QTest::addColumn<int>("sampleRate");
    QTest::addColumn<qint64>("dataOffset");
    QTest::addColumn<qint64>("dataLength");
    QTest::addColumn<double>("duration");
    QTest::addColumn<int>("valueCount");
    QTest::addColumn<float>("firstValue");
    QTest::addColumn<float>("lastValue");
    for (const Expectation& row : Expectations()) {
        QTest::newRow(row.name) << row.result << int(row.sampleFormat) << row.sampleSize << row.channelCount
                                << row.sampleRate << row.dataOffset << row.dataLength << row.duration
                                << row.valueCount << row.firstValue << row.lastValue;
    }
}

void TestRealWavs::opensAndExtracts()
{
    QFETCH(const int, result);
    QFETCH(const double, duration);
    QFETCH(const int, valueCount);
    QFETCH(const float, firstValue);
    QFETCH(const float, lastValue);
    WavFile file;
    QCOMPARE(int(file.Open(m_folder.filePath(FileName(QTest::currentDataTag())))), result);
    QTEST(int(file.GetFileFormat().sampleFormat()), "sampleFormat");
    QTEST(file.GetSampleSize(), "sampleSize");
    QTEST(file.GetFileFormat().channelCount(), "channelCount");
    QTEST(file.GetFileFormat().sampleRate(), "sampleRate");
    QTEST(file.GetDataOffset(), "dataOffset");
    QTEST(file.GetDataLength(), "dataLength");
    QVERIFY(std::abs(file.GetDuration() - duration) < 1e-12);

    file.SetSelectedChannel(WavFile::ChannelLeftRight);
    file.ReadData(0.0, file.GetDuration(), 1);
    const QList<float> samples = file.GetSamples();
    QCOMPARE(int(samples.size()), valueCount);
    if (valueCount > 0) {
        QCOMPARE(samples.first(), firstValue);
        QCOMPARE(samples.last(), lastValue);
    }
}

void TestRealWavs::expectsSomethingOfEveryFile()
{
    QSet<QString> expected;
    for (const Expectation& row : Expectations()) {
        expected.insert(FileName(row.name));
    }
    const QStringList files = m_folder.entryList({u"*.wav"_s}, QDir::Files);
    QCOMPARE(QSet<QString>(files.begin(), files.end()), expected);
}

QTEST_GUILESS_MAIN(TestRealWavs)
#include "tst_realwavs.moc"
