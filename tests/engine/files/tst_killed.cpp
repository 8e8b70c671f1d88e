#include "engine/files/Leftovers.h"
#include "tests/engine/files/FileTasks.h"
#include "tests/support/AudioPrograms.h"
#include "tests/support/FileFaults.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QtTest>

#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

int Decode(const QString& source, const QString& out)
{
    int count = 0;
    const QCoreApplication application(count, nullptr);
    return Decoder::Convert(source, out, 8000);
}

int DecodeInPlace(const QString& source, const QString& /*out*/)
{
    return Decode(source, source);
}

int DecodeToFloat(const QString& source, const QString& out)
{
    int count = 0;
    const QCoreApplication application(count, nullptr);
    return Decoder::ConvertToFloat(source, out, 8000);
}

int DecodeToFloatInPlace(const QString& source, const QString& /*out*/)
{
    return DecodeToFloat(source, source);
}

/** What it decodes to integers, Qt writes as noise. */
bool IsForMp3(const FileTask& task)
{
    return task.run == &Decode || task.run == &DecodeInPlace;
}

/** More calls than any task makes. */
constexpr int mostCalls = 100;

} // namespace

/** What is on the disk when the program is killed at any moment in which it changes something there. */
class TestKilled : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void leavesTheOldOrTheNewFileWhole_data();
    void leavesTheOldOrTheNewFileWhole();

private:
    TemporaryFiles m_files;
    QByteArray m_wav;
    QByteArray m_mp3;
};

void TestKilled::initTestCase()
{
    const QString mp3 = m_files.Path(u"tone.mp3"_s);
    m_wav = WavTest::TestAudio{.channels = 2, .rate = 44100, .frames = 8000}.File();
    QVERIFY(AudioPrograms::Encode(u"mp3"_s, m_files.Write(u"tone.wav"_s, m_wav), mp3));
    m_mp3 = TemporaryFiles::Read(mp3);
}

void TestKilled::leavesTheOldOrTheNewFileWhole_data()
{
    FileTasks::AddRows();
    QTest::addRow("decoding") << FileTask{.run = &Decode};
    QTest::addRow("decoding in place") << FileTask{.run = &DecodeInPlace, .isInPlace = true};
    QTest::addRow("decoding to float") << FileTask{.run = &DecodeToFloat};
    QTest::addRow("decoding to float in place") << FileTask{.run = &DecodeToFloatInPlace, .isInPlace = true};
}

void TestKilled::leavesTheOldOrTheNewFileWhole()
{
    QFETCH(const FileTask, task);
    const QByteArray bytes = IsForMp3(task) ? m_mp3 : m_wav;
    QByteArray whole;
    for (const bool hasOlder : {false, true}) {
        // On other disks it grows under a hidden name.
        std::optional<NoUnnamedFiles> otherDisk;
        if (hasOlder) {
            otherDisk.emplace();
        }
        const QByteArray older = hasOlder ? QByteArray("an older file") : QByteArray();
        QList<QByteArray> left;
        bool isKilled = true;
        for (int call = 1; isKilled && call < mostCalls; ++call) {
            const TemporaryFiles files;
            const QString source = files.Write(u"source.wav"_s, bytes);
            const QString out = files.Path(u"out.wav"_s);
            if (hasOlder) {
                files.Write(u"out.wav"_s, older);
            }
            isKilled = IsKilledAtCall(call, files.Path({}), [&] {
                if (task.run(source, out) != 0) {
                    ::_exit(1);
                }
            });
            // What nobody uses any more goes, and then there is nothing but the files that were asked for.
            vantoraudio::AudioEngine::RemoveLeftovers(files.Path({}));
            QStringList names{u"source.wav"_s};
            if (QFile::exists(out)) {
                names.prepend(u"out.wav"_s);
            }
            QCOMPARE(files.Names(), names);
            QCOMPARE(TemporaryFiles::Read(source) == bytes || task.isInPlace, true);
            left.append(TemporaryFiles::Read(task.isInPlace ? source : out));
        }
        QVERIFY(!isKilled);
        whole = left.last();
        QVERIFY(!whole.isEmpty());
        const QByteArray former = task.isInPlace ? bytes : older;
        for (const QByteArray& each : left) {
            QVERIFY(each == whole || each == former);
        }
        if (task.overwrites || !hasOlder) {
            QVERIFY(whole != former);
            QCOMPARE_GT(left.size(), 4);
            QVERIFY(left.first() == former);
        }
    }
}

QTEST_APPLESS_MAIN(TestKilled)
#include "tst_killed.moc"
