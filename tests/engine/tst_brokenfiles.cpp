#include "tests/support/BrokenFiles.h"
#include "tests/support/TemporaryFiles.h"

#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/AudioImporter.h>

#include <QtCore/QDir>
#include <QtCore/QSet>
#include <QtTest/QtTest>

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

QTEST_GUILESS_MAIN(BrokenFilesTest)
#include "tst_brokenfiles.moc"
