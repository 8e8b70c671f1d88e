#include "tests/support/AudioFormat.h"
#include "tests/support/AudioPrograms.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"
#include "tests/ui/player/PlayerSetup.h"

#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/Decoder.h>

#include <QtWidgets/QApplication>

#include <tuple>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::AudioEngine;

namespace {

/** Writes a file made from another one, and returns a code. */
using Work = int (*)(const QString& source, const QString& out);

int CreateSnippet(const QString& source, const QString& out)
{
    WavFile file;
    file.SetKeepParts(false);
    return file.Open(source) == WavFile::Success ? file.CreateSnippet(out, 0.0, 1.0) : int(WavFile::Success);
}

int FilterChannel(const QString& source, const QString& out)
{
    WavFile file;
    file.SetKeepParts(false);
    if (file.Open(source) != WavFile::Success) {
        return WavFile::Success;
    }
    file.SetSelectedChannel(WavFile::ChannelLeft);
    return file.FilterChannel(out);
}

int Convert(const QString& source, const QString& out)
{
    WavFile file;
    file.SetKeepParts(false);
    const bool isConverted =
        file.Open(source) == WavFile::Success && file.Convert(WavTest::Format(QAudioFormat::Float, 2, 44100), out);
    return isConverted ? 1 : 0;
}

int Import(const QString& source, const QString& out)
{
    return AudioImporter::ImportNow(source, out).Code();
}

int Decode(const QString& source, const QString& out)
{
    return Decoder::Convert(source, out, 44100);
}

int DecodeToFloat(const QString& source, const QString& out)
{
    return Decoder::ConvertToFloat(source, out, 44100);
}

const QString filler = u"filler"_s;

/** Less than anything that is written here. */
constexpr qint64 littleRoom = 65536;

} // namespace

Q_DECLARE_METATYPE(Work)

/** What is written to a real disk that has no room for it; elsewhere the system is made to refuse. */
class FullDiskTest : public QObject
{
    Q_OBJECT

public:
    explicit FullDiskTest(const QString& whyNoDisk) : m_whyNoDisk(whyNoDisk) {}

private Q_SLOTS:
    void initTestCase();

    void keepsAnOlderFile_data();
    void keepsAnOlderFile();
    void leavesNoPart_data();
    void leavesNoPart();
    void keepsASourceThatItWouldReplace_data();
    void keepsASourceThatItWouldReplace();
    void loadsNothing_data();
    void loadsNothing();

private:
    void AddWorks(const QList<std::tuple<const char*, Work, int>>& works);

    const QString m_whyNoDisk;
    const TemporaryFiles m_files;
    const QString m_source = m_files.Path(u"tone.wav"_s);
};

void FullDiskTest::initTestCase()
{
    if (!m_whyNoDisk.isEmpty()) {
        QSKIP(qPrintable(u"This program may not have a disk of its own: "_s + m_whyNoDisk));
    }
    QVERIFY(WriteToneFile(m_source, {.seconds = 2.0}));
    QVERIFY(AudioPrograms::Encode(u"flac"_s, m_source, m_files.Path(u"tone.flac"_s)));
}

/** Each with a disk that is full and one that fills up. */
void FullDiskTest::AddWorks(const QList<std::tuple<const char*, Work, int>>& works)
{
    QTest::addColumn<Work>("work");
    QTest::addColumn<int>("code");
    QTest::addColumn<qint64>("room");
    for (const auto& [name, work, code] : works) {
        QTest::addRow("%s, no room", name) << work << code << qint64(0);
        QTest::addRow("%s, little room", name) << work << code << littleRoom;
    }
}

void FullDiskTest::keepsAnOlderFile_data()
{
    // An older channel file is used as it is.
    AddWorks({{"snippet", CreateSnippet, WavFile::ErrorCreateSnippet},
              {"conversion", Convert, 0},
              {"import", Import, WavFile::ErrorWriteHeader}});
}

void FullDiskTest::keepsAnOlderFile()
{
    QFETCH(Work, work);
    QFETCH(int, code);
    QFETCH(qint64, room);
    const SmallDisk disk;
    QCOMPARE(disk.Write(u"out.wav"_s, "older"), disk.Path(u"out.wav"_s));
    QVERIFY(disk.FillBut(filler, room));
    QCOMPARE(work(m_source, disk.Path(u"out.wav"_s)), code);
    QCOMPARE(TemporaryFiles::Read(disk.Path(u"out.wav"_s)), "older");
    QCOMPARE(disk.Names(), QStringList({filler, u"out.wav"_s}));
}

void FullDiskTest::leavesNoPart_data()
{
    AddWorks({{"snippet", CreateSnippet, WavFile::ErrorCreateSnippet},
              {"channel", FilterChannel, WavFile::ErrorFilterChannel},
              {"conversion", Convert, 0},
              {"import", Import, WavFile::ErrorWriteHeader},
              {"decoding", Decode, WavFile::ErrorWriteHeader},
              {"decoding to float", DecodeToFloat, WavFile::ErrorWriteHeader}});
}

void FullDiskTest::leavesNoPart()
{
    QFETCH(Work, work);
    QFETCH(int, code);
    QFETCH(qint64, room);
    const SmallDisk disk;
    QVERIFY(disk.FillBut(filler, room));
    QCOMPARE(work(m_source, disk.Path(u"out.wav"_s)), code);
    QCOMPARE(disk.Names(), QStringList{filler});
}

void FullDiskTest::keepsASourceThatItWouldReplace_data()
{
    AddWorks({{"conversion", Convert, 0},
              {"import", Import, WavFile::ErrorWriteHeader},
              {"decoding", Decode, WavFile::ErrorWriteHeader},
              {"decoding to float", DecodeToFloat, WavFile::ErrorWriteHeader}});
}

void FullDiskTest::keepsASourceThatItWouldReplace()
{
    QFETCH(Work, work);
    QFETCH(int, code);
    QFETCH(qint64, room);
    const SmallDisk disk;
    const QByteArray bytes = TemporaryFiles::Read(m_source);
    const QString path = disk.Write(u"tone.wav"_s, bytes);
    QVERIFY(disk.FillBut(filler, room));
    QCOMPARE(work(path, path), code);
    QVERIFY(TemporaryFiles::Read(path) == bytes);
    QCOMPARE(disk.Names(), QStringList({filler, u"tone.wav"_s}));
}

void FullDiskTest::loadsNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isInBackground");
    QTest::addColumn<qint64>("room");
    for (const char* name : {"tone.wav", "tone.flac"}) {
        for (const bool isInBackground : {false, true}) {
            for (const qint64 room : {qint64(0), littleRoom}) {
                QTest::addRow("%s, %s, room for %lld bytes", name, isInBackground ? "LoadFile" : "SetAudioFile",
                              room)
                    << QString::fromLatin1(name) << isInBackground << room;
            }
        }
    }
}

void FullDiskTest::loadsNothing()
{
    QFETCH(QString, name);
    QFETCH(bool, isInBackground);
    QFETCH(qint64, room);
    const SmallDisk disk;
    QCOMPARE(disk.Write(u"older.wav"_s, "older"), disk.Path(u"older.wav"_s));
    QVERIFY(disk.FillBut(filler, room));
    PlayerSetup::Player player;
    player.SetWritableDirectoryPath(disk.Path({}));
    isInBackground ? player.LoadFile(m_files.Path(name)) : player.SetAudioFile(m_files.Path(name));
    QTRY_VERIFY_WITH_TIMEOUT(!player.IsLoading(), PlayerSetup::patience);
    QCOMPARE(player.errors, QList{WavFile::ErrorWriteHeader});
    QCOMPARE(player.GetAudioFileName(), QString());
    QTRY_COMPARE(disk.Names(), QStringList({filler, u"older.wav"_s}));
    QCOMPARE(TemporaryFiles::Read(disk.Path(u"older.wav"_s)), "older");
}

int main(int argc, char** argv)
{
    const QString whyNoDisk = SmallDisk::Prepare();
    const SoundServer server({u"one"_s});
    QApplication application(argc, argv);
    FullDiskTest test(whyNoDisk);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_fulldisk.moc"
