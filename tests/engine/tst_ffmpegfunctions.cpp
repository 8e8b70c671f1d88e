#include "engine/FFmpegFunctions.h"

#include <QtTest/QtTest>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::AudioEngine;

/** The libraries that look into files, loaded by name. */
class TestFFmpegFunctions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areThoseOfTheCompiledVersions();
    void areNothingWithoutALibrary_data();
    void areNothingWithoutALibrary();
    void areLoadedOnce();
};

void TestFFmpegFunctions::areThoseOfTheCompiledVersions()
{
    const std::optional<FFmpegFunctions> functions = LoadFFmpegFunctions();
    QVERIFY(functions.has_value());
    AVCodecContext* codec = functions->avcodec_alloc_context3(functions->avcodec_find_decoder(AV_CODEC_ID_FLAC));
    QVERIFY(codec != nullptr);
    QCOMPARE(codec->codec_id, AV_CODEC_ID_FLAC);
    functions->avcodec_free_context(&codec);
    QVERIFY(codec == nullptr);
}

void TestFFmpegFunctions::areNothingWithoutALibrary_data()
{
    QTest::addColumn<FFmpegLibraries>("libraries");
    QTest::addColumn<QString>("warning");
    QTest::newRow("no format library") << FFmpegLibraries{.format = u"missing"_s} << u"missing"_s;
    QTest::newRow("no codec library") << FFmpegLibraries{.codec = u"missing"_s} << u"missing"_s;
    QTest::newRow("another format version") << FFmpegLibraries{.formatVersion = 1} << u"avformat"_s;
    QTest::newRow("another codec version") << FFmpegLibraries{.codecVersion = 1} << u"avcodec"_s;
    QTest::newRow("function missing") << FFmpegLibraries{.format = u"avcodec"_s,
                                                         .formatVersion = LIBAVCODEC_VERSION_MAJOR}
                                      << u"avformat_alloc_context"_s;
}

void TestFFmpegFunctions::areNothingWithoutALibrary()
{
    QFETCH(const FFmpegLibraries, libraries);
    QFETCH(const QString, warning);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Files cannot be looked into: .*%1.*"_s.arg(warning)));
    QVERIFY(!LoadFFmpegFunctions(libraries).has_value());
}

void TestFFmpegFunctions::areLoadedOnce()
{
    QVERIFY(FFmpeg() != nullptr);
    QCOMPARE(FFmpeg(), FFmpeg());
}

QTEST_GUILESS_MAIN(TestFFmpegFunctions)
#include "tst_ffmpegfunctions.moc"
