#include "tests/support/BrokenFiles.h"
#include "tests/support/TemporaryFiles.h"

#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/AudioImporter.h>

#include <QtCore/QDir>
#include <QtCore/QSet>
#include <QtTest/QtTest>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::AudioEngine;
using BrokenFiles::Audio;
using BrokenFiles::File;
using Problem = AudioFileInfo::Problem;

namespace {

QStringList EntriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace

/** What the engine makes of files that are broken or odd. */
class BrokenFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsManyRowsEachOfItsOwn();
    void opensOrRefuses_data() { BrokenFiles::AddRows(); }
    void opensOrRefuses();
    void readsNoMoreThanThereIs_data() { BrokenFiles::AddRows(); }
    void readsNoMoreThanThereIs();
    void importsOrRefuses_data() { BrokenFiles::AddRows(); }
    void importsOrRefuses();
    void changesTheRateOrRefuses_data() { BrokenFiles::AddRows(); }
    void changesTheRateOrRefuses();
    void refusesRatesTooFarApartAtOnce();

private:
    TemporaryFiles m_files;
};

void BrokenFilesTest::holdsManyRowsEachOfItsOwn()
{
    QSet<QByteArray> rows;
    for (const File& file : BrokenFiles::All()) {
        rows.insert(file.row);
    }
    QCOMPARE(rows.size(), BrokenFiles::All().size());
    QVERIFY(rows.size() >= 200);
}

void BrokenFilesTest::opensOrRefuses()
{
    QFETCH(const File, file);
    const QString path = m_files.Write(file.name, file.bytes);
    WavFile wav;
    QCOMPARE(wav.Open(path), file.open);
    WavFile large;
    large.SetLargeFiles(true);
    QCOMPARE(large.Open(path), file.openLarge);
    QCOMPARE(TemporaryFiles::Read(path), file.bytes);
}

/** Whatever Open() said: a program may go on after an error. */
void BrokenFilesTest::readsNoMoreThanThereIs()
{
    QFETCH(const File, file);
    WavFile wav;
    wav.SetLargeFiles(true);
    static_cast<void>(wav.Open(m_files.Write(file.name, file.bytes)));
    wav.ReadData(0.0, wav.GetDuration(), 1);
    QVERIFY(wav.GetSamples().size() <= file.bytes.size() / 2 + 1);
    QVERIFY(wav.GetSamples().capacity() <= 2 * file.bytes.size() + 64);
}

void BrokenFilesTest::importsOrRefuses()
{
    QFETCH(const File, file);
    const TemporaryFiles results;
    const QString path = m_files.Write(file.name, file.bytes);
    const QString output = results.Path(u"imported.wav"_s);
    const ImportResult result = AudioImporter::ImportNow(path, output);
    const bool isReadable = result.IsSuccess() && result.frameCount > 0;
    if (file.imported != Audio::Clear) {
        QCOMPARE(isReadable, file.imported == Audio::Readable);
    }
    if (!result.IsSuccess()) {
        QVERIFY(result.problem == Problem::NoAudio || result.problem == Problem::Damaged);
        QCOMPARE(result.Code(), WavFile::ErrorInvalidFormat);
        QVERIFY(AudioFileInfo::TextOf(result.problem, path).contains(path));
        QCOMPARE(EntriesOf(results.Path(QString())), QStringList());
        return;
    }
    WavFile wav;
    QCOMPARE(wav.Open(output), WavFile::Success);
    QVERIFY(std::isfinite(wav.GetDuration()));
    QCOMPARE(wav.GetDataLength(), result.frameCount * wav.GetFileFormat().bytesPerFrame());
    QCOMPARE(EntriesOf(results.Path(QString())), QStringList{u"imported.wav"_s});
}

/** By both roads. */
void BrokenFilesTest::changesTheRateOrRefuses()
{
    QFETCH(const File, file);
    const TemporaryFiles results;
    const QString path = m_files.Write(file.name, file.bytes);
    const QString imported = results.Path(u"imported.wav"_s);
    const ImportResult result = AudioImporter::ImportNow(path, imported, {.sampleRate = 44100});
    QCOMPARE(QFile::exists(imported), result.IsSuccess());
    QVERIFY(!result.IsSuccess() || result.sampleRate == 44100);

    WavFile wav;
    wav.SetLargeFiles(true);
    const bool isStereo = wav.Open(path) == WavFile::Success && wav.GetFileFormat().channelCount() == 2;
    if (isStereo) {
        QAudioFormat target;
        target.setSampleRate(44100);
        target.setChannelCount(1);
        target.setSampleFormat(QAudioFormat::Float);
        const QString converted = results.Path(u"converted.wav"_s);
        WavFile written;
        written.SetLargeFiles(true);
        QVERIFY(!wav.Convert(target, converted) || written.Open(converted) == WavFile::Success);
    }
    QCOMPARE(TemporaryFiles::Read(path), file.bytes);
}

/** The filter between them would take gigabytes and most of a minute. */
void BrokenFilesTest::refusesRatesTooFarApartAtOnce()
{
    const auto& files = BrokenFiles::All();
    const auto file = std::ranges::find(files, "sample rate 1860000001", &File::row);
    QVERIFY(file != files.end());
    const TemporaryFiles results;
    const ImportResult result = AudioImporter::ImportNow(m_files.Write(file->name, file->bytes),
                                                         results.Path(u"imported.wav"_s), {.sampleRate = 192000});
    QCOMPARE(result.problem, Problem::UnsupportedRate);
    QCOMPARE(result.Code(), WavFile::ErrorInvalidFormat);
    QCOMPARE(EntriesOf(results.Path(QString())), QStringList());
}

QTEST_GUILESS_MAIN(BrokenFilesTest)
#include "tst_brokenfiles.moc"
