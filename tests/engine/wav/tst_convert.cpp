#include "tests/support/AudioFormat.h"
#include "tests/support/AudioPrograms.h"
#include "tests/support/BrokenReading.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/SignalLog.h"
#include "tests/support/StandardErrorCapture.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/TestAudio.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtCore/QDir>
#include <QtCore/QStorageInfo>
#include <QtTest/QtTest>

#include <cmath>
#include <memory>
#include <numbers>
#include <optional>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

namespace {

const QByteArray noFrames = "Could not get sample buffer size\n";

/** A 16-bit file with a tone of 1000 Hz on the left and one of 3000 Hz on the right. */
WavBytes Tones(int frames, int channels, int rate)
{
    WavBytes wav{.channels = static_cast<quint16>(channels), .sampleRate = static_cast<quint32>(rate)};
    for (int frame = 0; frame < frames; ++frame) {
        for (int channel = 0; channel < channels; ++channel) {
            const double phase = 2 * std::numbers::pi * (channel == 0 ? 1000 : 3000) * frame / rate;
            wav.data += LittleEndian(static_cast<qint16>(std::lround(12000 * std::sin(phase))));
        }
    }
    return wav;
}

/** A converted file with its header and `data`. */
QByteArray Converted(const QAudioFormat& format, const QByteArray& data, qint64 statedSize)
{
    const bool isFloat = format.sampleFormat() == QAudioFormat::Float;
    return WavBytes{.statedRiffSize = statedSize + 36,
                    .formatTag = static_cast<quint16>(isFloat ? 3 : 1),
                    .channels = static_cast<quint16>(format.channelCount()),
                    .sampleRate = static_cast<quint32>(format.sampleRate()),
                    .bits = static_cast<quint16>(format.bytesPerSample() * 8),
                    .data = data,
                    .statedDataSize = static_cast<quint32>(statedSize)}
        .Build();
}

/** The samples as FFmpeg's own program converts them to float. */
QByteArray ByFFmpeg(const QString& path, const QAudioFormat& format)
{
    return AudioPrograms::Output(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, path, u"-ac"_s,
                                               QString::number(format.channelCount()), u"-ar"_s,
                                               QString::number(format.sampleRate()), u"-f"_s, u"f32le"_s, u"-"_s});
}

/** The lines that the library itself wrote; FFmpeg adds its own, most of which begin with a name and an address.
 */
QByteArray OwnLines(const QByteArray& text)
{
    QByteArray own;
    for (const QByteArray& line : text.split('\n')) {
        if (!line.isEmpty() && !line.startsWith("[SWR @") && line != "Filter length too large") {
            own += line + '\n';
        }
    }
    return own;
}

double LargestDifference(const QList<float>& a, const QList<float>& b)
{
    double largest = 0;
    for (qsizetype i = 0; i < qMin(a.size(), b.size()); ++i) {
        largest = qMax(largest, double(std::abs(a[i] - b[i])));
    }
    return largest;
}

} // namespace

class TestConvert : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_files = std::make_unique<TemporaryFiles>();
        m_out = m_files->Path(u"out.wav"_s);
    }

    void choosesTheLayoutByTheChannelCount();
    void refusesAnImpossibleTarget_data();
    void refusesAnImpossibleTarget();
    void refusesAClosedSource();
    void refusesASourceOpenForWriting();
    void throwsForOtherChannelCounts_data();
    void throwsForOtherChannelCounts();
    void failsForUnsignedBytes_data();
    void failsForUnsignedBytes();
    void failsForASourceWithoutAFrame();
    void failsForARateThatCannotBeResampled_data();
    void failsForARateThatCannotBeResampled();
    void failsForRatesTooFarApart();
    void failsWhereTheRateRisesTooFar();
    void refusesAtOnceWhatNoDiskCanHold();

    void copiesWhatNeedsNoConversion_data();
    void copiesWhatNeedsNoConversion();
    void changesTheSampleFormat_data();
    void changesTheSampleFormat();
    void widensTwentyFourBits_data();
    void widensTwentyFourBits();
    void resamplesLikeTheFFmpegProgram_data();
    void resamplesLikeTheFFmpegProgram();
    void keepsTheComputedSizeInTheHeader();
    void statesNoSizeForALengthBeyondTwoGiB();
    void convertsAFewFrames_data();
    void convertsAFewFrames();
    void convertsUpToTheEndOfTheFile();
    void takesAnIncompleteFrameForTheEnd_data();
    void takesAnIncompleteFrameForTheEnd();
    void convertsWhatATruncatedFileHolds();
    void takesFloatsOfAnyStatedWidth();
    void reportsNoProgress();
    void leavesTheSourceOpen();
    void overwritesAnExistingFile();

    void replacesTheSource_data();
    void replacesTheSource();
    void keepsALinkAndThePermissions();
    void replacesOnlyTheSecondNameOfTheSource();
    void keepsTheSourceWhenThereIsNoRoom_data();
    void keepsTheSourceWhenThereIsNoRoom();
    void failsWhereNoFrameComesOut_data();
    void failsWhereNoFrameComesOut();
    void keepsTheSourceWithoutTheRightToReplaceIt();
    void keepsTheSourceWhenTheResamplerFails();
    void keepsTheSourceThatCannotBeReadToItsEnd();
    void keepsTheSourceThatHasBecomeShorter();
    void leavesASourceAloneThatAnotherProgramChanged_data();
    void leavesASourceAloneThatAnotherProgramChanged();
    void replacesASourceThatMayOnlyBeRead();
    void keepsAnOlderFileWhenItFails();
    void leavesNoPartWhereNoneIsWanted();
    void createsNothingForASourceThatWasRemoved();
    void failsWhenTheOutputCannotBeOpened();
    void failsWhenTheOutputCannotBeFilled_data();
    void failsWhenTheOutputCannotBeFilled();

private:
    QString Write(const QByteArray& bytes) { return m_files->Write(u"source.wav"_s, bytes); }
    QString Write(const WavBytes& wav) { return Write(wav.Build()); }
    QByteArray Result() const { return TemporaryFiles::Read(m_out); }
    QStringList Names() const
    {
        return QDir(m_files->Path({}))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<TemporaryFiles> m_files;
    QString m_out;
};

void TestConvert::choosesTheLayoutByTheChannelCount()
{
    const auto layout = [](int channels) {
        return WavFileTestAccess::SelectChannelLayout(Format(QAudioFormat::Int16, channels, 8000));
    };
    QCOMPARE(int(WavFile::Mono), 1);
    QCOMPARE(int(WavFile::Stereo), 2);
    QVERIFY(layout(1) == WavFile::Mono);
    QVERIFY(layout(2) == WavFile::Stereo);
    for (const int channels : {-1, 0, 3, 6, 1000}) {
        QVERIFY(layout(channels) == std::nullopt);
    }
}

void TestConvert::refusesAnImpossibleTarget_data()
{
    QTest::addColumn<QAudioFormat>("target");
    QTest::addRow("rate 0") << Format(QAudioFormat::Int16, 1, 0);
    QTest::addRow("rate below 0") << Format(QAudioFormat::Int16, 1, -1);
    QTest::addRow("no channels") << Format(QAudioFormat::Int16, 0, 8000);
    QTest::addRow("fewer than no channels") << Format(QAudioFormat::Int16, -1, 8000);
    QTest::addRow("unknown sample format") << Format(QAudioFormat::Unknown, 1, 8000);
    QTest::addRow("nothing of it") << QAudioFormat();
}

void TestConvert::refusesAnImpossibleTarget()
{
    QFETCH(const QAudioFormat, target);
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(3000, 1, 8000))), WavFile::Success);
    StandardErrorCapture capture;
    QVERIFY(!file.Convert(target, m_out));
    QVERIFY(!file.Convert(target, {}));
    QCOMPARE(capture.Text(), QByteArray());
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
    QCOMPARE(TemporaryFiles::Read(file.fileName()), Tones(3000, 1, 8000).Build());
}

void TestConvert::refusesAClosedSource()
{
    WavFile file;
    const QAudioFormat target = Format(QAudioFormat::Float, 1, 8000);
    QVERIFY(!file.Convert(target, m_out));
    QCOMPARE(file.Open(Write(Tones(3000, 1, 8000))), WavFile::Success);
    file.close();
    QVERIFY(!file.Convert(target, m_out));
    QVERIFY(!file.Convert(target, {}));
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
}

void TestConvert::refusesASourceOpenForWriting()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(3000, 1, 8000))), WavFile::Success);
    file.close();
    QVERIFY(file.open(QIODevice::Append));
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), {}));
    QCOMPARE(TemporaryFiles::Read(file.fileName()), Tones(3000, 1, 8000).Build());
}

void TestConvert::throwsForOtherChannelCounts_data()
{
    QTest::addColumn<int>("sourceChannels");
    QTest::addColumn<int>("targetChannels");
    QTest::addRow("a source of three") << 3 << 1;
    QTest::addRow("a source of none") << 0 << 1;
    QTest::addRow("a target of three") << 1 << 3;
    QTest::addRow("a target of six") << 2 << 6;
}

void TestConvert::throwsForOtherChannelCounts()
{
    QFETCH(const int, sourceChannels);
    QFETCH(const int, targetChannels);
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(3000, 1, 8000))), WavFile::Success);
    WavFileTestAccess(file).FileFormat().setChannelCount(sourceChannels);
    const QAudioFormat target = Format(QAudioFormat::Int16, targetChannels, 8000);
    QVERIFY_THROWS_EXCEPTION(std::bad_optional_access, file.Convert(target, m_out));
    QVERIFY_THROWS_EXCEPTION(std::bad_optional_access, file.Convert(target, {}));
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
}

void TestConvert::failsForUnsignedBytes_data()
{
    QTest::addColumn<QAudioFormat::SampleFormat>("source");
    QTest::addColumn<QAudioFormat::SampleFormat>("target");
    QTest::addRow("source") << QAudioFormat::UInt8 << QAudioFormat::Int16;
    QTest::addRow("target") << QAudioFormat::Int16 << QAudioFormat::UInt8;
    QTest::addRow("both") << QAudioFormat::UInt8 << QAudioFormat::UInt8;
}

void TestConvert::failsForUnsignedBytes()
{
    QFETCH(const QAudioFormat::SampleFormat, source);
    QFETCH(const QAudioFormat::SampleFormat, target);
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(3000, 1, 8000))), WavFile::Success);
    WavFileTestAccess(file).FileFormat().setSampleFormat(source);
    StandardErrorCapture capture;
    QVERIFY(!file.Convert(Format(target, 1, 8000), m_out));
    QCOMPARE(OwnLines(capture.Text()), QByteArray("Failed to initialize the resampling context\n"));
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
}

void TestConvert::failsForASourceWithoutAFrame()
{
    WavFile file;
    QCOMPARE(file.Open(Write(WavBytes{.channels = 2, .data = "abc"})), WavFile::Success);
    StandardErrorCapture capture;
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), m_out));
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), {}));
    QCOMPARE(capture.Text(), QByteArray("Could not allocate source samples\nCould not allocate source samples\n"));
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
}

void TestConvert::failsForARateThatCannotBeResampled_data()
{
    QTest::addColumn<quint32>("rate");
    QTest::addColumn<QByteArray>("message");
    QTest::addRow("0") << 0U << QByteArray("Failed to initialize the resampling context\n");
    QTest::addRow("too high") << 2147483647U << QByteArray("Failed to initialize the resampling context\n");
    QTest::addRow("gigahertz") << 1860000011U << QByteArray("Failed to initialize the resampling context\n");
    QTest::addRow("just too high") << 8000U * 512U + 1U
                                   << QByteArray("Failed to initialize the resampling context\n");
    QTest::addRow("below 0") << 4294967295U << QByteArray("Failed to set resampler context options\n");
}

void TestConvert::failsForARateThatCannotBeResampled()
{
    QFETCH(const quint32, rate);
    QFETCH(const QByteArray, message);
    WavBytes wav = Tones(3000, 1, 8000);
    wav.sampleRate = rate;
    WavFile file;
    QCOMPARE(file.Open(Write(wav)), WavFile::Success);
    StandardErrorCapture capture;
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), m_out));
    QCOMPARE(OwnLines(capture.Text()), message);
    QVERIFY(!QFile::exists(m_out));
}

void TestConvert::failsForRatesTooFarApart()
{
    // 1024 frames of a second each become 614,400,000 frames of 4 bytes: more than 2 GiB.
    WavBytes wav = Tones(3000, 1, 8000);
    wav.sampleRate = 1;
    WavFile file;
    QCOMPARE(file.Open(Write(wav)), WavFile::Success);
    StandardErrorCapture capture;
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 600000), m_out));
    QCOMPARE(OwnLines(capture.Text()), QByteArray("Could not allocate destination samples\n"));
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
}

/** What the resampler holds back would take a gigabyte, though the file has few frames. */
void TestConvert::failsWhereTheRateRisesTooFar()
{
    WavBytes wav = Tones(50, 1, 8000);
    wav.sampleRate = 1;
    WavFile file;
    QCOMPARE(file.Open(Write(wav)), WavFile::Success);
    {
        StandardErrorCapture capture;
        QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 200001), m_out));
        QCOMPARE(OwnLines(capture.Text()), QByteArray("Could not allocate destination samples\n"));
    }
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
    QVERIFY(file.Convert(Format(QAudioFormat::Float, 1, 192000), m_out));
}

/** A megabyte that becomes almost half a terabyte. */
void TestConvert::refusesAtOnceWhatNoDiskCanHold()
{
    WavBytes wav = Tones(500000, 1, 8000);
    wav.sampleRate = 1;
    WavFile file;
    const QString source = Write(wav);
    const QStorageInfo storage(source);
    constexpr double size = 500000.0 * 200000.0 * 4.0;
    if (double(storage.bytesAvailable()) > size) {
        QSKIP("The disk has room for it.");
    }
    QCOMPARE(file.Open(source), WavFile::Success);
    for (const QString& outPath : {QString(), m_out}) {
        QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 200000), outPath));
        QVERIFY(file.isOpen());
    }
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
}

void TestConvert::copiesWhatNeedsNoConversion_data()
{
    QTest::addColumn<Coding>("coding");
    QTest::addColumn<QAudioFormat::SampleFormat>("sampleFormat");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("frames");
    for (const int channels : {1, 2}) {
        for (const int frames : {1, 1023, 1024, 1025, 50000}) {
            QTest::addRow("16 bits, %d x %d", channels, frames)
                << S16 << QAudioFormat::Int16 << channels << frames;
            QTest::addRow("32 bits, %d x %d", channels, frames)
                << S32 << QAudioFormat::Int32 << channels << frames;
            QTest::addRow("float, %d x %d", channels, frames) << F32 << QAudioFormat::Float << channels << frames;
        }
    }
}

void TestConvert::copiesWhatNeedsNoConversion()
{
    QFETCH(const Coding, coding);
    QFETCH(const QAudioFormat::SampleFormat, sampleFormat);
    QFETCH(const int, channels);
    QFETCH(const int, frames);
    const TestAudio audio{
        .coding = coding, .channels = static_cast<quint16>(channels), .rate = 32768, .frames = frames};
    WavFile file;
    QCOMPARE(file.Open(Write(audio.File())), WavFile::Success);
    StandardErrorCapture capture;
    QVERIFY(file.Convert(Format(sampleFormat, channels, 32768), m_out));
    QCOMPARE(capture.Text(), QByteArray());
    QCOMPARE(Result(), audio.File());
}

void TestConvert::changesTheSampleFormat_data()
{
    QTest::addColumn<quint16>("tag");
    QTest::addColumn<quint16>("bits");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QAudioFormat::SampleFormat>("target");
    QTest::addColumn<QByteArray>("converted");
    QTest::addRow("16 bits to float") << quint16(1) << quint16(16) << PackS16({0, 16384, -32768, 32767, 1})
                                      << QAudioFormat::Float
                                      << PackF32({0, 0.5F, -1, 32767 / 32768.0F, 1 / 32768.0F});
    QTest::addRow("16 bits to 32") << quint16(1) << quint16(16) << PackS16({0, 16384, -32768, 32767, 1})
                                   << QAudioFormat::Int32
                                   << PackS32({0, 0x40000000, -0x80000000LL, 0x7FFF0000, 0x10000});
    QTest::addRow("float to 16 bits") << quint16(3) << quint16(32) << PackF32({0, 0.5F, -1, 1, 7, -7, 0.25F})
                                      << QAudioFormat::Int16
                                      << PackS16({0, 16384, -32768, 32767, 32767, -32768, 8192});
    QTest::addRow("32 bits to float") << quint16(1) << quint16(32) << PackS32({0, 0x40000000, -0x80000000LL})
                                      << QAudioFormat::Float << PackF32({0, 0.5F, -1});
}

void TestConvert::changesTheSampleFormat()
{
    QFETCH(const quint16, tag);
    QFETCH(const quint16, bits);
    QFETCH(const QByteArray, data);
    QFETCH(const QAudioFormat::SampleFormat, target);
    QFETCH(const QByteArray, converted);
    const QAudioFormat format = Format(target, 1, 44100);
    WavFile file;
    QCOMPARE(file.Open(Write(WavBytes{.formatTag = tag, .bits = bits, .data = data})), WavFile::Success);
    QVERIFY(file.Convert(format, m_out));
    QCOMPARE(Result(), Converted(format, converted, converted.size()));
}

void TestConvert::widensTwentyFourBits_data()
{
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("frames");
    for (const int frames : {1, 2, 1023, 1024, 1025, 1367, 5000}) {
        QTest::addRow("mono of %d", frames) << 1 << frames;
        QTest::addRow("stereo of %d", frames) << 2 << frames;
    }
}

/** 24-bit samples are counted as the 32-bit ones that the resampler gets, also in the header. */
void TestConvert::widensTwentyFourBits()
{
    QFETCH(const int, channels);
    QFETCH(const int, frames);
    const TestAudio audio{
        .coding = S24, .channels = static_cast<quint16>(channels), .rate = 32768, .frames = frames};
    QByteArray wide;
    for (int frame = 0; frame < frames; ++frame) {
        for (int channel = 0; channel < channels; ++channel) {
            wide += '\0' + audio.Sample(frame, channel);
        }
    }
    const QAudioFormat format = Format(QAudioFormat::Int32, channels, 32768);
    WavFile file;
    QCOMPARE(file.Open(Write(audio.File())), WavFile::Success);
    QVERIFY(file.Convert(format, m_out));
    QCOMPARE(Result(), Converted(format, wide, wide.size()));
}

void TestConvert::resamplesLikeTheFFmpegProgram_data()
{
    QTest::addColumn<int>("sourceRate");
    QTest::addColumn<int>("sourceChannels");
    QTest::addColumn<int>("targetRate");
    QTest::addColumn<int>("targetChannels");
    QTest::addColumn<int>("statedFrames");
    QTest::addRow("44100 stereo to 48000 mono") << 44100 << 2 << 48000 << 1 << 87074;
    QTest::addRow("48000 stereo to 44100 mono") << 48000 << 2 << 44100 << 1 << 73500;
    QTest::addRow("8000 mono to 96000 stereo") << 8000 << 1 << 96000 << 2 << 960000;
    QTest::addRow("96000 stereo to 8000 stereo") << 96000 << 2 << 8000 << 2 << 6666;
    QTest::addRow("stereo to mono at one rate") << 44100 << 2 << 44100 << 1 << 80000;
    QTest::addRow("mono to stereo at one rate") << 44100 << 1 << 44100 << 2 << 80000;
}

void TestConvert::resamplesLikeTheFFmpegProgram()
{
    QFETCH(const int, sourceRate);
    QFETCH(const int, sourceChannels);
    QFETCH(const int, targetRate);
    QFETCH(const int, targetChannels);
    QFETCH(const int, statedFrames);
    const QAudioFormat format = Format(QAudioFormat::Float, targetChannels, targetRate);
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(80000, sourceChannels, sourceRate))), WavFile::Success);
    QVERIFY(file.Convert(format, m_out));
    const QByteArray data = Result().mid(44);
    QCOMPARE(Result(), Converted(format, data, statedFrames * targetChannels * 4));

    const QByteArray reference = ByFFmpeg(file.fileName(), format);
    QCOMPARE_GT(reference.size(), 10000);
    // The resampler's delay is drained, so that nothing is missing at the end.
    const qsizetype frameSize = 4 * targetChannels;
    QCOMPARE_LE(qAbs(data.size() - reference.size()) / frameSize, 1);
    QCOMPARE_LE(LargestDifference(AudioPrograms::Floats(data), AudioPrograms::Floats(reference)), 1e-6);
}

void TestConvert::keepsTheComputedSizeInTheHeader()
{
    // 1023 / 8000.0 * 8000 is slightly less than 1023 in double precision.
    const TestAudio audio{.channels = 1, .frames = 1023};
    const QAudioFormat format = Format(QAudioFormat::Int16, 1, 8000);
    WavFile file;
    QCOMPARE(file.Open(Write(audio.File())), WavFile::Success);
    QVERIFY(file.Convert(format, m_out));
    QCOMPARE(Result(), Converted(format, audio.Data(), 2 * 1022));
}

/** The length counts in 32 bits, where this one is below 0. */
void TestConvert::statesNoSizeForALengthBeyondTwoGiB()
{
    WavBytes wav = Tones(100, 1, 8000);
    wav.statedDataSize = 3'000'000'000;
    const QAudioFormat format = Format(QAudioFormat::Int16, 1, 8000);
    WavFile file;
    QCOMPARE(file.Open(Write(wav)), WavFile::Success);
    QVERIFY(file.Convert(format, m_out));
    QCOMPARE(Result(), Converted(format, wav.data, -1));
}

void TestConvert::convertsAFewFrames_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("rate");
    for (const int frames : {1, 5, 17, 40, 500}) {
        for (const int rate : {8000, 44101, 192000}) {
            QTest::addRow("%d to %d Hz", frames, rate) << frames << rate;
        }
    }
}

/** A pass may yield nothing, which is no failure. What is shorter than the resampler's filter yields nothing at
 * all, as it does in FFmpeg's own program, and that is one. */
void TestConvert::convertsAFewFrames()
{
    QFETCH(const int, frames);
    QFETCH(const int, rate);
    const QAudioFormat format = Format(QAudioFormat::Float, 1, rate);
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(frames, 1, 44100))), WavFile::Success);
    const QByteArray data = ByFFmpeg(file.fileName(), format);
    StandardErrorCapture capture;
    QCOMPARE(file.Convert(format, m_out), !data.isEmpty());
    QCOMPARE(capture.Text(), data.isEmpty() ? noFrames : QByteArray());
    const int statedFrames = int(double(frames) / 44100 * rate);
    QCOMPARE(Result(), Converted(format, data, statedFrames == 0 ? -1 : 4 * statedFrames));
}

/** The source ends where its file ends: chunks behind the audio are taken for more of it. */
void TestConvert::convertsUpToTheEndOfTheFile()
{
    WavBytes wav = Tones(2000, 1, 8000);
    wav.afterData = {{"LIST", QByteArray(100, '\x01')}};
    const QAudioFormat format = Format(QAudioFormat::Int16, 1, 8000);
    WavFile file;
    QCOMPARE(file.Open(Write(wav)), WavFile::Success);
    QVERIFY(file.Convert(format, m_out));
    QCOMPARE(Result(), Converted(format, wav.data + Build(wav.afterData), 4000));
}

void TestConvert::takesAnIncompleteFrameForTheEnd_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("extra");
    for (const int frames : {100, 1000, 1024, 3000}) {
        for (const int extra : {1, 2, 3}) {
            QTest::addRow("%d frames and %d bytes", frames, extra) << frames << extra;
        }
    }
}

void TestConvert::takesAnIncompleteFrameForTheEnd()
{
    QFETCH(const int, frames);
    QFETCH(const int, extra);
    const QByteArray whole = Tones(frames, 2, 8000).Build();
    const QAudioFormat format = Format(QAudioFormat::Float, 1, 11025);
    WavFile file;
    QCOMPARE(file.Open(Write(whole)), WavFile::Success);
    QVERIFY(file.Convert(format, m_out));
    const QByteArray expected = Result();
    QCOMPARE(file.Open(Write(whole + QByteArray(extra, 'x'))), WavFile::Success);
    QVERIFY(file.Convert(format, m_out));
    QCOMPARE(Result(), expected);
}

void TestConvert::convertsWhatATruncatedFileHolds()
{
    const QAudioFormat format = Format(QAudioFormat::Int16, 1, 8000);
    for (const int frames : {1, 500, 1500}) {
        WavBytes wav = Tones(frames, 1, 8000);
        wav.statedDataSize = 10000;
        WavFile file;
        QCOMPARE(file.Open(Write(wav)), WavFile::Success);
        QVERIFY(file.Convert(format, m_out));
        QCOMPARE(Result(), Converted(format, wav.data, 10000));
    }
}

void TestConvert::takesFloatsOfAnyStatedWidth()
{
    const TestAudio audio{.coding = F32, .channels = 1, .frames = 3000};
    const QAudioFormat format = Format(QAudioFormat::Float, 1, 8000);
    for (const int bits : {16, 24}) {
        WavFile file;
        QCOMPARE(
            file.Open(Write(WavBytes{
                .formatTag = 3, .sampleRate = 8000, .bits = static_cast<quint16>(bits), .data = audio.Data()})),
            WavFile::Success);
        QVERIFY(file.Convert(format, m_out));
        QCOMPARE(Result(), Converted(format, audio.Data(), 12000));
    }
}

void TestConvert::reportsNoProgress()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(3000, 1, 8000))), WavFile::Success);
    SignalLog log(file);
    file.AbortRead();
    file.AbortWrite();
    file.AbortChannelFilter();
    QVERIFY(file.Convert(Format(QAudioFormat::Int16, 1, 8000), m_out));
    QVERIFY(log.isEmpty());
    QCOMPARE(Result(), Tones(3000, 1, 8000).Build());
}

void TestConvert::leavesTheSourceOpen()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(3000, 1, 8000))), WavFile::Success);
    const QAudioFormat target = Format(QAudioFormat::Float, 2, 11025);
    QVERIFY(file.Convert(target, m_out));
    const QByteArray first = Result();
    QVERIFY(file.isOpen());
    QVERIFY(file.atEnd());
    QCOMPARE(file.GetFileFormat(), Format(QAudioFormat::Int16, 1, 8000));
    QVERIFY(file.Convert(target, m_out));
    QCOMPARE(Result(), first);
}

void TestConvert::overwritesAnExistingFile()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(100, 1, 8000))), WavFile::Success);
    QCOMPARE(m_files->Write(u"out.wav"_s, QByteArray(5000, 'x')), m_out);
    QVERIFY(file.Convert(Format(QAudioFormat::Int16, 1, 8000), m_out));
    QCOMPARE(Result(), Tones(100, 1, 8000).Build());
}

void TestConvert::replacesTheSource_data()
{
    QTest::addColumn<QString>("outPath");
    QTest::addRow("without an output path") << QString();
    QTest::addRow("with its own path") << u"source.wav"_s;
    QTest::addRow("with another spelling") << u"folder/../source.wav"_s;
    QTest::addRow("through a link") << u"link.wav"_s;
}

void TestConvert::replacesTheSource()
{
    QFETCH(const QString, outPath);
    const QAudioFormat format = Format(QAudioFormat::Float, 2, 11025);
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(30000, 1, 8000))), WavFile::Success);
    QVERIFY(file.Convert(format, m_out));
    QVERIFY(QDir(m_files->Path({})).mkdir(u"folder"_s));
    QVERIFY(QFile::link(file.fileName(), m_files->Path(u"link.wav"_s)));
    const QStringList names = Names();

    StandardErrorCapture capture;
    QVERIFY(file.Convert(format, outPath.isEmpty() ? outPath : m_files->Path(outPath)));
    QCOMPARE(capture.Text(), QByteArray());
    QVERIFY(!file.isOpen());
    QVERIFY(TemporaryFiles::Read(file.fileName()) == Result());
    QCOMPARE(Names(), names);
    QCOMPARE(file.Open(file.fileName()), WavFile::Success);
    QCOMPARE(file.GetFileFormat(), format);
}

void TestConvert::keepsALinkAndThePermissions()
{
    const QString source = Write(Tones(3000, 1, 8000));
    const QString link = m_files->Path(u"link.wav"_s);
    QVERIFY(QFile::link(source, link));
    QVERIFY(QFile::setPermissions(source, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    const auto permissions = QFile::permissions(source);
    WavFile file;
    QCOMPARE(file.Open(link), WavFile::Success);
    QVERIFY(file.Convert(Format(QAudioFormat::Float, 1, 8000), {}));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(QFile::permissions(source), permissions);
    QCOMPARE(file.Open(source), WavFile::Success);
    QCOMPARE(file.GetFileFormat().sampleFormat(), QAudioFormat::Float);
}

void TestConvert::replacesOnlyTheSecondNameOfTheSource()
{
    const WavBytes wav = Tones(3000, 1, 8000);
    const QString source = Write(wav);
    QCOMPARE(::link(QFile::encodeName(source).constData(), QFile::encodeName(m_out).constData()), 0);
    WavFile file;
    QCOMPARE(file.Open(source), WavFile::Success);
    QVERIFY(file.Convert(Format(QAudioFormat::Float, 1, 8000), m_out));
    QCOMPARE(TemporaryFiles::Read(source), wav.Build());
    QCOMPARE(Result().size(), 44 + 12000);
}

void TestConvert::keepsTheSourceWhenThereIsNoRoom_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addRow("for nothing") << 0;
    QTest::addRow("for a part of the header") << 43;
    QTest::addRow("for the header") << 44;
    QTest::addRow("for a part of the audio") << 50000;
    QTest::addRow("for all but one byte") << 44 + 120000 - 1;
}

void TestConvert::keepsTheSourceWhenThereIsNoRoom()
{
    QFETCH(const int, bytes);
    const QByteArray source = Tones(30000, 1, 8000).Build();
    WavFile file;
    for (const QString& outPath : {QString(), m_files->Path(u"source.wav"_s)}) {
        QCOMPARE(file.Open(Write(source)), WavFile::Success);
        {
            const FileSizeLimit limit(static_cast<rlim_t>(bytes));
            QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), outPath));
        }
        QVERIFY(TemporaryFiles::Read(file.fileName()) == source);
        QCOMPARE(Names(), QStringList({u"source.wav"_s}));
    }
}

void TestConvert::failsWhereNoFrameComesOut_data()
{
    QTest::addColumn<WavBytes>("wav");
    QTest::addColumn<int>("rate");
    WavBytes promised = Tones(0, 1, 8000);
    promised.statedDataSize = 10000;
    QTest::addRow("ten frames to another rate") << Tones(10, 1, 44100) << 8000;
    QTest::addRow("samples that are not there") << promised << 8000;
    QTest::addRow("samples that are not there, to another rate") << promised << 44100;
}

void TestConvert::failsWhereNoFrameComesOut()
{
    QFETCH(const WavBytes, wav);
    QFETCH(const int, rate);
    const QByteArray source = wav.Build();
    WavFile file;
    QCOMPARE(file.Open(Write(source)), WavFile::Success);
    StandardErrorCapture capture;
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, rate), {}));
    QVERIFY(file.isOpen());
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, rate), m_out));
    QCOMPARE(capture.Text(), noFrames + noFrames);
    QCOMPARE(Result().size(), 44);
    QCOMPARE(TemporaryFiles::Read(file.fileName()), source);
}

void TestConvert::keepsTheSourceWithoutTheRightToReplaceIt()
{
    const QByteArray source = Tones(3000, 1, 8000).Build();
    WavFile file;
    QCOMPARE(file.Open(Write(source)), WavFile::Success);
    const QString folder = m_files->Path({});
    const auto permissions = QFile::permissions(folder);
    QVERIFY(
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther));
    {
        const OrdinaryUser user;
        QVERIFY(user.IsOrdinary());
        QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), {}));
    }
    QVERIFY(QFile::setPermissions(folder, permissions));
    QVERIFY(TemporaryFiles::Read(file.fileName()) == source);
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
}

void TestConvert::keepsTheSourceWhenTheResamplerFails()
{
    const QByteArray source = Tones(3000, 1, 8000).Build();
    WavFile file;
    QCOMPARE(file.Open(Write(source)), WavFile::Success);
    StandardErrorCapture capture;
    QVERIFY(!file.Convert(Format(QAudioFormat::UInt8, 1, 8000), {}));
    QCOMPARE(OwnLines(capture.Text()), QByteArray("Failed to initialize the resampling context\n"));
    QVERIFY(TemporaryFiles::Read(file.fileName()) == source);
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
}

void TestConvert::keepsTheSourceThatCannotBeReadToItsEnd()
{
    const QByteArray source = Tones(30000, 1, 8000).Build();
    const QAudioFormat target = Format(QAudioFormat::Float, 1, 8000);
    for (const QString& outPath : {QString(), m_out}) {
        WavFile file;
        QCOMPARE(file.Open(Write(source)), WavFile::Success);
        QVERIFY(BreakReading(file));
        QVERIFY(!file.Convert(target, outPath));
        QVERIFY(TemporaryFiles::Read(file.fileName()) == source);
    }
    // What was converted until then stays, except in place.
    QCOMPARE(Names(), QStringList({u"out.wav"_s, u"source.wav"_s}));
}

void TestConvert::keepsTheSourceThatHasBecomeShorter()
{
    const QAudioFormat target = Format(QAudioFormat::Float, 1, 8000);
    for (const QString& outPath : {QString(), m_out}) {
        WavFile file;
        QCOMPARE(file.Open(Write(Tones(30000, 1, 8000))), WavFile::Success);
        QVERIFY(QFile::resize(file.fileName(), 50000));
        QVERIFY(!file.Convert(target, outPath));
        QCOMPARE(QFileInfo(file.fileName()).size(), 50000);
    }
    QCOMPARE(Names(), QStringList({u"out.wav"_s, u"source.wav"_s}));
}

void TestConvert::leavesASourceAloneThatAnotherProgramChanged_data()
{
    QTest::addColumn<QString>("change");
    QTest::addRow("replaced") << u"replaced"_s;
    QTest::addRow("replaced by a link") << u"link"_s;
    QTest::addRow("removed") << u"removed"_s;
}

void TestConvert::leavesASourceAloneThatAnotherProgramChanged()
{
    QFETCH(const QString, change);
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(3000, 1, 8000))), WavFile::Success);
    QVERIFY(QFile::remove(file.fileName()));
    if (change == u"replaced") {
        Write(Tones(1000, 1, 8000));
    } else if (change == u"link") {
        QVERIFY(QFile::link(m_files->Write(u"other.wav"_s, Tones(3000, 1, 8000).Build()), file.fileName()));
    }
    const QByteArray left = TemporaryFiles::Read(file.fileName());
    const QStringList names = Names();
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), {}));
    QCOMPARE(file.errorString(), u"Another program has changed the file"_s);
    QVERIFY(file.isOpen());
    QCOMPARE(TemporaryFiles::Read(file.fileName()), left);
    QCOMPARE(Names(), names);
}

void TestConvert::replacesASourceThatMayOnlyBeRead()
{
    const QString source = Write(Tones(3000, 1, 8000));
    QVERIFY(QFile::setPermissions(source, QFile::ReadOwner));
    QVERIFY(OrdinaryUser::TakesOver(source) && OrdinaryUser::TakesOver(m_files->Path({})));
    const OrdinaryUser user;
    WavFile file;
    QCOMPARE(file.Open(source), WavFile::Success);
    QVERIFY(file.Convert(Format(QAudioFormat::Float, 1, 8000), {}));
    QCOMPARE(QFileInfo(source).size(), 44 + 12000);
    QVERIFY(!QFile::permissions(source).testFlag(QFile::WriteOwner));
}

void TestConvert::keepsAnOlderFileWhenItFails()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(30000, 1, 8000))), WavFile::Success);
    QCOMPARE(m_files->Write(u"out.wav"_s, "older"), m_out);
    {
        const FileSizeLimit limit(50000);
        QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), m_out));
    }
    QCOMPARE(Result(), QByteArray("older"));
    QCOMPARE(Names(), QStringList({u"out.wav"_s, u"source.wav"_s}));
}

void TestConvert::leavesNoPartWhereNoneIsWanted()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(30000, 1, 8000))), WavFile::Success);
    file.SetKeepParts(false);
    const FileSizeLimit limit(50000);
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), m_out));
    QCOMPARE(Names(), QStringList({u"source.wav"_s}));
}

void TestConvert::createsNothingForASourceThatWasRemoved()
{
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(3000, 1, 8000))), WavFile::Success);
    QVERIFY(QFile::remove(m_files->Path(u"source.wav"_s)));
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), {}));
    QCOMPARE(Names(), QStringList());
}

void TestConvert::failsWhenTheOutputCannotBeOpened()
{
    const QByteArray source = Tones(3000, 1, 8000).Build();
    WavFile file;
    QCOMPARE(file.Open(Write(source)), WavFile::Success);
    const QAudioFormat target = Format(QAudioFormat::Float, 1, 8000);
    QVERIFY(!file.Convert(target, m_files->Path(u"missing/out.wav"_s)));
    QVERIFY(!file.Convert(target, m_files->Path({})));
    QVERIFY(!file.Convert(target, u"/dev/full"_s));
    QVERIFY(TemporaryFiles::Read(file.fileName()) == source);
}

void TestConvert::failsWhenTheOutputCannotBeFilled_data()
{
    keepsTheSourceWhenThereIsNoRoom_data();
}

void TestConvert::failsWhenTheOutputCannotBeFilled()
{
    QFETCH(const int, bytes);
    WavFile file;
    QCOMPARE(file.Open(Write(Tones(30000, 1, 8000))), WavFile::Success);
    const FileSizeLimit limit(static_cast<rlim_t>(bytes));
    QVERIFY(!file.Convert(Format(QAudioFormat::Float, 1, 8000), m_out));
    QCOMPARE_LE(QFileInfo(m_out).size(), bytes);
}

QTEST_GUILESS_MAIN(TestConvert)
#include "tst_convert.moc"
