#include "engine/files/BlockWalk.h"
#include "tests/support/TemporaryFiles.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

using namespace vantoraudio::AudioEngine;

class TestBlockWalk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsWholeBlocks_data();
    void countsWholeBlocks();
    void tellsTheProgressFromTheBeginning_data();
    void tellsTheProgressFromTheBeginning();
    void handsOverEverythingInWholeFrames_data();
    void handsOverEverythingInWholeFrames();
    void stopsWhenNothingMoreIsTaken();
};

void TestBlockWalk::countsWholeBlocks_data()
{
    QTest::addColumn<qint64>("start");
    QTest::addColumn<qint64>("end");
    QTest::addColumn<qint64>("blockSize");
    QTest::addColumn<qint64>("size");
    QTest::newRow("whole blocks") << qint64(44) << qint64(844) << qint64(400) << qint64(800);
    QTest::newRow("a part of a block") << qint64(44) << qint64(445) << qint64(400) << qint64(800);
    QTest::newRow("nothing") << qint64(44) << qint64(44) << qint64(400) << qint64(0);
    QTest::newRow("less than nothing") << qint64(44) << qint64(0) << qint64(400) << qint64(0);
    QTest::newRow("no block") << qint64(44) << qint64(844) << qint64(0) << qint64(0);
    QTest::newRow("a negative block") << qint64(44) << qint64(844) << qint64(-4) << qint64(0);
}

void TestBlockWalk::countsWholeBlocks()
{
    QFETCH(const qint64, start);
    QFETCH(const qint64, end);
    QFETCH(const qint64, blockSize);
    const BlockRange range{.end = end, .blockSize = blockSize};
    QTEST(range.SizeFrom(start), "size");
}

void TestBlockWalk::tellsTheProgressFromTheBeginning_data()
{
    QTest::addColumn<qint64>("position");
    QTest::addColumn<qint64>("end");
    QTest::addColumn<int>("progress");
    QTest::newRow("first") << qint64(44) << qint64(192044) << 0;
    QTest::newRow("second") << qint64(8044) << qint64(192044) << 4;
    QTest::newRow("late") << qint64(96044) << qint64(192044) << 50;
    QTest::newRow("almost the end") << qint64(192043) << qint64(192044) << 99;
    QTest::newRow("nowhere") << qint64(0) << qint64(0) << 0;
}

void TestBlockWalk::tellsTheProgressFromTheBeginning()
{
    QFETCH(const qint64, position);
    QFETCH(const qint64, end);
    QTEST(ProgressAt(position, end), "progress");
}

void TestBlockWalk::handsOverEverythingInWholeFrames_data()
{
    QTest::addColumn<qint64>("blockSize");
    QTest::addColumn<qint64>("frameSize");
    QTest::newRow("short blocks") << qint64(1200) << qint64(6);
    QTest::newRow("blocks longer than a piece") << qint64(600000) << qint64(6);
    QTest::newRow("a block longer than the file") << qint64(6000000) << qint64(6);
    QTest::newRow("frames of no size") << qint64(1200) << qint64(0);
    QTest::newRow("frames longer than a piece") << qint64(800000) << qint64(800000);
}

void TestBlockWalk::handsOverEverythingInWholeFrames()
{
    QFETCH(const qint64, blockSize);
    QFETCH(const qint64, frameSize);
    QByteArray bytes;
    for (int i = 0; bytes.size() < 2'000'000; ++i) {
        bytes += QByteArray::number(i);
    }
    bytes.truncate(2'000'000);
    const TemporaryFiles files;
    QFile file(files.Write(QStringLiteral("bytes"), bytes));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QMutex lock;
    SharedFileCursor cursor(file, lock, 44);
    QByteArray together;
    int reports = 0;
    const auto take = [&](QByteArrayView frames) {
        together += frames.toByteArray();
        return frameSize < 1 || frames.size() % frameSize == 0 || together.size() == bytes.size() - 44;
    };
    const WalkResult result =
        WalkBlocks(cursor, {.end = 3'000'000, .blockSize = blockSize, .frameSize = frameSize},
                   {[&](int) { ++reports; }, [] { return false; }, take});
    QCOMPARE(result, WalkResult::FileEnded);
    QVERIFY(together == bytes.mid(44));
    QCOMPARE(reports, int((bytes.size() - 44 + blockSize - 1) / blockSize));
}

void TestBlockWalk::stopsWhenNothingMoreIsTaken()
{
    const TemporaryFiles files;
    QFile file(files.Write(QStringLiteral("bytes"), QByteArray(10000, 'x')));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QMutex lock;
    SharedFileCursor cursor(file, lock, 0);
    const BlockTask task{[](int) {}, [] { return false; }, [](QByteArrayView) { return false; }};
    QCOMPARE(WalkBlocks(cursor, {.end = 10000, .blockSize = 100}, task), WalkResult::Stopped);
}

QTEST_APPLESS_MAIN(TestBlockWalk)
#include "tst_blockwalk.moc"
