#include "engine/decoding/ImportedWav.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtTest/QtTest>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::AudioEngine;
using namespace WavTest;

using Problem = AudioFileInfo::Problem;

namespace {

QAudioFormat FloatFormat()
{
    QAudioFormat format;
    format.setSampleFormat(QAudioFormat::Float);
    format.setSampleRate(48000);
    format.setChannelCount(1);
    return format;
}

} // namespace

/** The file that an import writes, with limits that are met soon. */
class TestImportedWav : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void becomesIntegersWhenItGrowsTooLarge_data();
    void becomesIntegersWhenItGrowsTooLarge();
    void staysFloatAsLongAsItMay();
    void cutsOffWhatIsTooLoudForIntegers();
    void canBeCancelledWhileItBecomesIntegers();
    void keepsRoomForLargeSizesWhereTheLengthIsUnknown();
    void endsAtTheLimitOfPlainFiles();
    void beginsWithIntegersOnlyForCertainLengths_data();
    void beginsWithIntegersOnlyForCertainLengths();
};

void TestImportedWav::becomesIntegersWhenItGrowsTooLarge_data()
{
    QTest::addColumn<int>("blocks");
    QTest::addRow("at its last block") << 5;
    QTest::addRow("in the middle") << 9;
}

void TestImportedWav::becomesIntegersWhenItGrowsTooLarge()
{
    QFETCH(const int, blocks);
    const TemporaryFiles files;
    ImportedWav wav(files.Path(u"out.wav"_s), {}, {}, {.mostFloatBytes = 4 * 1000 * 4});
    QVERIFY(wav.Open());
    wav.Start({}, FloatFormat(), {});
    QByteArray expected;
    for (int block = 0; block < blocks; ++block) {
        QByteArray samples;
        for (int i = 0; i < 1000; ++i) {
            const int value = block * 1000 + i - 4000;
            samples += LittleEndian(float(value) / 32768.0F);
            expected += LittleEndian(qint16(value));
        }
        QVERIFY(wav.Append(samples));
    }
    QVERIFY(wav.Finish());
    QCOMPARE(wav.Format().sampleFormat(), QAudioFormat::Int16);
    QCOMPARE(wav.DataSize(), expected.size());

    const QByteArray written = TemporaryFiles::Read(files.Path(u"out.wav"_s));
    QCOMPARE(written.mid(80), expected);
    WavFile opened;
    QCOMPARE(opened.Open(files.Path(u"out.wav"_s)), WavFile::Success);
    QCOMPARE(opened.GetFileFormat().sampleFormat(), QAudioFormat::Int16);
    QCOMPARE(opened.GetDataOffset(), 80);
    QCOMPARE(opened.GetDataLength(), expected.size());
}

void TestImportedWav::staysFloatAsLongAsItMay()
{
    const TemporaryFiles files;
    for (const auto sampleFormat : {ImportOptions::Automatic, ImportOptions::Float}) {
        const ImportLimits limits{.mostFloatBytes = sampleFormat == ImportOptions::Float ? 4 : 4000};
        ImportedWav wav(files.Path(u"out.wav"_s), {}, {}, limits);
        QVERIFY(wav.Open());
        wav.Start({.sampleFormat = sampleFormat}, FloatFormat(), {});
        QVERIFY(wav.Append(QByteArray(4000, '\0')));
        QVERIFY(wav.Finish());
        QCOMPARE(wav.Format().sampleFormat(), QAudioFormat::Float);
        QCOMPARE(wav.DataSize(), 4000);
    }
}

void TestImportedWav::cutsOffWhatIsTooLoudForIntegers()
{
    const TemporaryFiles files;
    ImportedWav wav(files.Path(u"out.wav"_s), {}, {}, {.mostFloatBytes = 8});
    QVERIFY(wav.Open());
    wav.Start({}, FloatFormat(), {});
    QVERIFY(wav.Append(PackF32({1.0F, -1.0F, 3e38F, -3e38F, 0.00001F, 0.5F})));
    QVERIFY(wav.Finish());
    QCOMPARE(TemporaryFiles::Read(files.Path(u"out.wav"_s)).mid(80),
             PackS16({32767, -32768, 32767, -32768, 0, 16384}));
}

void TestImportedWav::canBeCancelledWhileItBecomesIntegers()
{
    const TemporaryFiles files;
    ImportedWav wav(files.Path(u"out.wav"_s), {}, [] { return true; }, {.mostFloatBytes = 8});
    QVERIFY(wav.Open());
    wav.Start({}, FloatFormat(), {});
    QVERIFY(!wav.Append(QByteArray(400, '\0')));
    QCOMPARE(wav.GetProblem(), Problem::Cancelled);
    QVERIFY(!wav.Finish());
}

void TestImportedWav::keepsRoomForLargeSizesWhereTheLengthIsUnknown()
{
    const TemporaryFiles files;
    const auto offsetFor = [&files](const ImportOptions& options, const ImportLength& length) {
        ImportedWav wav(files.Path(u"out.wav"_s), {});
        WavFile opened;
        if (!wav.Open()) {
            return qint64(-1);
        }
        wav.Start(options, FloatFormat(), length);
        return wav.Append(PackF32({0.5F})) && wav.Finish() &&
                       opened.Open(files.Path(u"out.wav"_s)) == WavFile::Success
                   ? opened.GetDataOffset()
                   : -1;
    };
    QCOMPARE(offsetFor({}, {}), 80);
    QCOMPARE(offsetFor({}, {1.0, false}), 80);
    QCOMPARE(offsetFor({}, {1.0, true}), 44);
    QCOMPARE(offsetFor({}, {3600.0, true}), 80);
    QCOMPARE(offsetFor({.mayBeLarge = false}, {}), 44);
    QCOMPARE(offsetFor({.mayBeLarge = false}, {3600.0, true}), 44);
}

void TestImportedWav::endsAtTheLimitOfPlainFiles()
{
    const TemporaryFiles files;
    for (const bool mayBeLarge : {false, true}) {
        ImportedWav wav(files.Path(u"out.wav"_s), {}, {}, {.mostPlainBytes = 100});
        QVERIFY(wav.Open());
        wav.Start({.mayBeLarge = mayBeLarge}, FloatFormat(), {});
        QVERIFY(wav.Append(QByteArray(100, '\0')));
        QCOMPARE(wav.Append(QByteArray(4, '\0')), mayBeLarge);
        QCOMPARE(wav.GetProblem(), mayBeLarge ? Problem::None : Problem::TooLong);
        QCOMPARE(wav.Finish(), mayBeLarge);
        QCOMPARE(QFile::exists(files.Path(u"out.wav"_s)), mayBeLarge);
    }
}

void TestImportedWav::beginsWithIntegersOnlyForCertainLengths_data()
{
    QTest::addColumn<ImportOptions::SampleFormat>("option");
    QTest::addColumn<double>("hours");
    QTest::addColumn<bool>("isCertain");
    QTest::addColumn<QAudioFormat::SampleFormat>("first");
    QTest::addRow("short") << ImportOptions::Automatic << 1.0 << true << QAudioFormat::Float;
    QTest::addRow("long") << ImportOptions::Automatic << 12.0 << true << QAudioFormat::Int16;
    QTest::addRow("perhaps long") << ImportOptions::Automatic << 12.0 << false << QAudioFormat::Float;
    QTest::addRow("long, but floats are wanted") << ImportOptions::Float << 12.0 << true << QAudioFormat::Float;
    QTest::addRow("short, but integers are wanted") << ImportOptions::Int16 << 1.0 << true << QAudioFormat::Int16;
    QTest::addRow("endless") << ImportOptions::Automatic << qInf() << true << QAudioFormat::Int16;
}

void TestImportedWav::beginsWithIntegersOnlyForCertainLengths()
{
    QFETCH(const ImportOptions::SampleFormat, option);
    QFETCH(const double, hours);
    QFETCH(const bool, isCertain);
    QFETCH(const QAudioFormat::SampleFormat, first);
    QCOMPARE(FirstSampleFormat({.sampleFormat = option}, FloatFormat(), {hours * 3600.0, isCertain}), first);
}

QTEST_APPLESS_MAIN(TestImportedWav)
#include "tst_importedwav.moc"
