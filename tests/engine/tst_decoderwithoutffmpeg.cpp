#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QFile>
#include <QtTest/QtTest>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

/** To be run where libavformat cannot be loaded. */
class TestDecoderWithoutFFmpeg : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void warnsOnceAndDecodesNothing();
};

void TestDecoderWithoutFFmpeg::warnsOnceAndDecodesNothing()
{
    const TemporaryFiles files;
    const QString in = files.Write(u"in.wav"_s, WavBytes{.data = QByteArray(9600, '\1')}.Build());
    const QString out = files.Path(u"out.wav"_s);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Files cannot be looked into: .*libavformat"_s));
    QCOMPARE(Decoder::GetDuration(in), 0);

    QTest::failOnWarning(QRegularExpression(u"."_s));
    QCOMPARE(Decoder::GetDuration(in), 0);
    QCOMPARE(Decoder::Convert(in, out, 48000), WavFile::ErrorInvalidFormat);
    QCOMPARE(Decoder::ConvertToFloat(in, out, 48000), WavFile::ErrorInvalidFormat);
    QVERIFY(!QFile::exists(out));
    QVERIFY(QFile::exists(in));
}

QTEST_GUILESS_MAIN(TestDecoderWithoutFFmpeg)
#include "tst_decoderwithoutffmpeg.moc"
