#include "playback/PlayableFile.h"
#include "tests/support/AudioPrograms.h"
#include "tests/support/SoundServer.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/Tone.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QUrl>
#include <QtCore/QtEndian>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <sys/stat.h>

using vantoraudio::AudioEngine::CanBePlayed;
using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

namespace {

constexpr int patience = 30000;

QByteArray WavOf(quint32 rate, quint16 channels)
{
    QByteArray bytes = ToneFileBytes({.leftFrequency = 44, .seconds = 0.5});
    bytes.replace(22, 2, LittleEndian(channels));
    bytes.replace(24, 4, LittleEndian(rate));
    return bytes;
}

QByteArray FlacOf(quint32 rate)
{
    QByteArray description(34, '\0');
    description[0] = 0x10; // 4096 samples a block
    description[2] = 0x10;
    description[10] = static_cast<char>(rate >> 12);
    description[11] = static_cast<char>(rate >> 4);
    description[12] = static_cast<char>(rate << 4 | 2); // two channels
    description[13] = static_cast<char>(0xF0);          // of 16 bits
    return QByteArray("fLaC").append(QByteArray::fromHex("80000022")).append(description);
}

QByteArray EmptyChunks(int count)
{
    return QByteArray("JUNK\0\0\0\0", 8).repeated(count);
}

/** A tag that holds nothing but its 128 bytes of padding. */
QByteArray BehindATag(const QByteArray& bytes)
{
    return QByteArray::fromHex("49443304000000000100").append(128, '\0') + bytes;
}

} // namespace

class PlayableFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsByTheHeaderWhatNoOutputPlays_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("canBePlayed");
        QTest::newRow("192 kHz") << WavOf(192000, 2) << true;
        QTest::newRow("highest rate") << WavOf(384000, 2) << true;
        QTest::newRow("a higher one") << WavOf(384001, 2) << false;
        QTest::newRow("1 MHz") << WavOf(1000000, 2) << false;
        QTest::newRow("highest rate that a header can state") << WavOf(0xFFFFFFFF, 2) << false;
        QTest::newRow("most channels") << WavOf(44100, 64) << true;
        QTest::newRow("more channels") << WavOf(44100, 65) << false;
        QTest::newRow("most channels that a header can state") << WavOf(44100, 0xFFFF) << false;
        QTest::newRow("without rate and channels") << WavOf(0, 0) << true;
        QTest::newRow("RF64") << WavOf(500000, 2).replace(0, 4, "RF64") << false;
        QTest::newRow("behind another chunk of odd length")
            << WavOf(500000, 2).insert(12, QByteArray::fromHex("4a554e4b03000000000000") + '\0') << false;
        QTest::newRow("behind a chunk that reaches beyond the end")
            << WavOf(500000, 2).insert(12, QByteArray::fromHex("4a554e4bffffffff")) << true;
        QTest::newRow("behind 999 chunks, highest rate") << WavOf(384000, 2).insert(12, EmptyChunks(999)) << true;
        QTest::newRow("behind 999 chunks") << WavOf(500000, 2).insert(12, EmptyChunks(999)) << false;
        QTest::newRow("behind 1001 chunks, highest rate")
            << WavOf(384000, 2).insert(12, EmptyChunks(1001)) << true;
        QTest::newRow("behind 1001 chunks") << WavOf(500000, 2).insert(12, EmptyChunks(1001)) << false;
        QTest::newRow("only chunks without an end") << QByteArray("RIFF____WAVE").append(100000, '\0') << true;
        QTest::newRow("cut in the format") << WavOf(500000, 2).left(26) << true;
        QTest::newRow("cut behind the name") << WavOf(500000, 2).left(12) << true;
        QTest::newRow("empty") << QByteArray() << true;
        QTest::newRow("text") << QByteArray(1000, 't') << true;
        QTest::newRow("FLAC, highest rate") << FlacOf(384000) << true;
        QTest::newRow("FLAC, a higher one") << FlacOf(655350) << false;
        QTest::newRow("FLAC, cut") << FlacOf(655350).left(20) << true;
        QTest::newRow("WAV behind a tag") << BehindATag(WavOf(500000, 2)) << false;
        QTest::newRow("WAV behind two tags, which FFmpeg does not find either")
            << BehindATag(BehindATag(WavOf(500000, 2))) << true;
        QTest::newRow("WAV behind a tag, highest rate") << BehindATag(WavOf(384000, 2)) << true;
        QTest::newRow("FLAC behind a tag") << BehindATag(FlacOf(655350)) << false;
        QTest::newRow("FLAC behind two tags") << BehindATag(BehindATag(FlacOf(655350))) << false;
        QTest::newRow("a tag alone") << BehindATag({}) << true;
        QTest::newRow("a tag that is longer than the file")
            << QByteArray::fromHex("494433040010") + QByteArray(4, '\x7f') + FlacOf(655350) << true;
    }
    void tellsByTheHeaderWhatNoOutputPlays()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, canBePlayed);
        QCOMPARE(CanBePlayed(m_files.Write(u"file"_s, bytes)), canBePlayed);
    }

    void tellsOfOtherFormatsToo_data()
    {
        QTest::addColumn<QString>("format");
        for (const char* format : {"au", "aiff", "w64", "caf", "wv", "flac"}) {
            QTest::addRow("%s", format) << QString::fromLatin1(format);
        }
    }
    void tellsOfOtherFormatsToo()
    {
        QFETCH(const QString, format);
        for (const quint32 rate : {44100U, 500000U}) {
            const QString path = m_files.Path(u"tone."_s + format);
            const QString wav = m_files.Write(u"tone.wav"_s, WavOf(rate, 2));
            QVERIFY(AudioPrograms::Succeeds(u"ffmpeg"_s, {u"-y"_s, u"-i"_s, wav, path}));
            QCOMPARE(CanBePlayed(path), rate == 44100U);
        }
    }

    void findsTheFormatBehindSamplesOfMoreThan4GiB()
    {
        // By its 32 bits alone the next chunk would begin four bytes too early.
        const qint64 size = (qint64(1) << 32) + 4;
        QByteArray begin("RF64\xff\xff\xff\xffWAVEds64", 16);
        begin += LittleEndian(quint32(28)) + LittleEndian(quint64(size + 88)) + LittleEndian(quint64(size));
        begin += LittleEndian(quint64(size / 4)) + LittleEndian(quint32(0)) + "data\xff\xff\xff\xff";
        QFile file(m_files.Path(u"large.wav"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(begin) == begin.size());
        QVERIFY(file.seek(begin.size() + size));
        const QByteArray format = WavOf(500000, 2).mid(12, 24);
        QCOMPARE(file.write(format), format.size());
        file.close();
        QVERIFY(!CanBePlayed(file.fileName()));
        QVERIFY(file.remove());
    }

    void tellsOfTheChannelsOfOtherFormatsToo()
    {
        for (const quint32 channels : {2U, 64U, 65U}) {
            QByteArray bytes(".snd");
            for (const quint32 number : {24U, 130000U, 3U, 44100U, channels}) {
                bytes.append(4, '\0');
                qToBigEndian(number, bytes.data() + bytes.size() - 4);
            }
            QCOMPARE(CanBePlayed(m_files.Write(u"tone.au"_s, bytes.append(130000, '\0'))), channels < 65U);
        }
    }

    void doesNotWaitAtAPipe()
    {
        const QString path = m_files.Path(u"pipe"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        QVERIFY(CanBePlayed(path));
        QVERIFY(CanBePlayed(m_files.Path(u"missing"_s)));
        QVERIFY(CanBePlayed(m_files.Path(QString())));
    }

    void aPlayerRefusesWhatNoOutputPlays_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("bySetAudio");
        for (const bool bySetAudio : {true, false}) {
            const char* const how = bySetAudio ? "SetAudio" : "setSource";
            QTest::addRow("%s, 400 kHz", how) << WavOf(400000, 2) << bySetAudio;
            QTest::addRow("%s, 48 MHz", how) << WavOf(48000000, 2) << bySetAudio;
            QTest::addRow("%s, 255 channels", how) << WavOf(44100, 255) << bySetAudio;
            QTest::addRow("%s, 500 kHz behind a tag", how) << BehindATag(WavOf(500000, 2)) << bySetAudio;
        }
    }
    void aPlayerRefusesWhatNoOutputPlays()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, bySetAudio);
        const QString path = m_files.Write(u"unplayable.wav"_s, bytes);
        AudioPlayer player;
        QSignalSpy errors(&player, &QMediaPlayer::errorOccurred);
        if (bySetAudio) {
            player.SetAudio(path, 1.0);
        } else {
            player.setSource(QUrl::fromLocalFile(path));
        }
        QCOMPARE(player.source(), QUrl::fromLocalFile(path));
        QTRY_VERIFY_WITH_TIMEOUT(!errors.isEmpty(), patience);
        QVERIFY(!errors.constFirst().at(1).toString().isEmpty());
        player.play();
        errors.wait(300);
        QCOMPARE(player.position(), 0);

        // The player is as good as before.
        player.SetAudio(m_files.Write(u"good.wav"_s, WavOf(44100, 2)), 0.5);
        player.play();
        QTRY_VERIFY_WITH_TIMEOUT(player.position() > 100, patience);
    }

private:
    TemporaryFiles m_files;
};

int main(int argc, char** argv)
{
    const SoundServer server({u"one"_s});
    QCoreApplication application(argc, argv);
    PlayableFileTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playable_file.moc"
