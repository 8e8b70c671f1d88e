#include "engine/files/SharedFileCursor.h"
#include "tests/support/TemporaryFiles.h"

#include <QtTest/QtTest>

#include <limits>
#include <thread>

using namespace vantoraudio::AudioEngine;

class TestSharedFileCursor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bytes.clear();
        for (int i = 0; i < 50000; ++i) {
            m_bytes += QByteArray::number(i);
        }
        m_file.setFileName(m_files.Write(QStringLiteral("bytes"), m_bytes));
        QVERIFY(m_file.open(QIODevice::ReadOnly));
    }

    void cleanup() { m_file.close(); }

    void readsBlockAfterBlock();
    void movesTheFileWithALoneTask();
    void comesBackWhenSomebodyElseMovedTheFile();
    void takesAPlaceBehindTheEnd();
    void movesToAnotherPlace();
    void readsNothingAtANegativePlace();
    void readsNothingFromAClosedFile();
    void readsNothingFromAFileOpenForWritingOnly();
    void readsNothingWhenAskedForNothing_data();
    void readsNothingWhenAskedForNothing();
    void neverTakesMoreMemoryThanTheFileHolds();
    void usesTheSameMemoryAgain();
    void seesAFileThatShrank();
    void keepsTwoThreadsApart();

private:
    QByteArray ReadAll(qint64 start, qint64 blockSize);

    TemporaryFiles m_files;
    QByteArray m_bytes;
    QFile m_file;
    QMutex m_lock;
};

QByteArray TestSharedFileCursor::ReadAll(qint64 start, qint64 blockSize)
{
    SharedFileCursor cursor(m_file, m_lock, start);
    QByteArray all;
    QByteArray block;
    while (cursor.Read(blockSize, block)) {
        all += block;
    }
    return all;
}

void TestSharedFileCursor::readsBlockAfterBlock()
{
    SharedFileCursor cursor(m_file, m_lock, 5);
    QByteArray block;
    QCOMPARE(cursor.Position(), 5);
    QCOMPARE(cursor.BytesLeft(), m_bytes.size() - 5);
    QVERIFY(cursor.Read(7, block));
    QCOMPARE(block, m_bytes.mid(5, 7));
    QVERIFY(cursor.Read(20000, block));
    QCOMPARE(block, m_bytes.mid(12, 20000));
    QCOMPARE(cursor.Position(), 20012);
    for (const qint64 blockSize : {1000, 16384, 100000, 1000000}) {
        QCOMPARE(ReadAll(0, blockSize), m_bytes);
    }
}

void TestSharedFileCursor::movesTheFileWithALoneTask()
{
    SharedFileCursor cursor(m_file, m_lock, 100);
    QCOMPARE(m_file.pos(), 100);
    QByteArray block;
    QVERIFY(cursor.Read(50, block));
    QCOMPARE(m_file.pos(), 150);
}

void TestSharedFileCursor::comesBackWhenSomebodyElseMovedTheFile()
{
    SharedFileCursor one(m_file, m_lock, 0);
    SharedFileCursor other(m_file, m_lock, 40000);
    QByteArray block;
    for (int i = 0; i < 20; ++i) {
        QVERIFY(one.Read(300, block));
        QCOMPARE(block, m_bytes.mid(i * 300, 300));
        QVERIFY(other.Read(700, block));
        QCOMPARE(block, m_bytes.mid(40000 + i * 700, 700));
    }
}

void TestSharedFileCursor::takesAPlaceBehindTheEnd()
{
    const qint64 place = m_bytes.size() + 1000;
    SharedFileCursor cursor(m_file, m_lock, place);
    QByteArray block("former");
    QCOMPARE(cursor.Position(), place);
    QCOMPARE(cursor.BytesLeft(), 0);
    QVERIFY(!cursor.Read(10, block));
    QVERIFY(block.isEmpty());
    QCOMPARE(cursor.Position(), place);
}

void TestSharedFileCursor::movesToAnotherPlace()
{
    SharedFileCursor cursor(m_file, m_lock, 100);
    QByteArray block;
    QVERIFY(cursor.Read(50, block));
    cursor.MoveTo(20);
    QCOMPARE(cursor.Position(), 20);
    QCOMPARE(m_file.pos(), 20);
    QVERIFY(cursor.Read(50, block));
    QCOMPARE(block, m_bytes.mid(20, 50));
    cursor.MoveTo(-1);
    QCOMPARE(cursor.Position(), 70);
    cursor.MoveTo(m_bytes.size() + 5);
    QVERIFY(!cursor.Read(50, block));
    m_file.close();
    SharedFileCursor unplaced(m_file, m_lock, 100);
    unplaced.MoveTo(20);
    QCOMPARE(unplaced.Position(), 0);
}

void TestSharedFileCursor::readsNothingAtANegativePlace()
{
    SharedFileCursor cursor(m_file, m_lock, -1);
    QByteArray block("former");
    QCOMPARE(cursor.Position(), 0);
    QCOMPARE(cursor.BytesLeft(), 0);
    QVERIFY(!cursor.Read(10, block));
    QVERIFY(block.isEmpty());
}

void TestSharedFileCursor::readsNothingFromAClosedFile()
{
    m_file.close();
    SharedFileCursor cursor(m_file, m_lock, 10);
    QByteArray block;
    QCOMPARE(cursor.Position(), 0);
    QVERIFY(!cursor.Read(10, block));
}

void TestSharedFileCursor::readsNothingFromAFileOpenForWritingOnly()
{
    m_file.close();
    QVERIFY(m_file.open(QIODevice::WriteOnly));
    SharedFileCursor cursor(m_file, m_lock, 0);
    QByteArray block;
    QVERIFY(!cursor.Read(10, block));
}

void TestSharedFileCursor::readsNothingWhenAskedForNothing_data()
{
    QTest::addColumn<qint64>("size");
    QTest::newRow("0") << qint64(0);
    QTest::newRow("-1") << qint64(-1);
    QTest::newRow("smallest") << std::numeric_limits<qint64>::min();
}

void TestSharedFileCursor::readsNothingWhenAskedForNothing()
{
    QFETCH(const qint64, size);
    SharedFileCursor cursor(m_file, m_lock, 0);
    QByteArray block("former");
    QVERIFY(!cursor.Read(size, block));
    QVERIFY(block.isEmpty());
    QCOMPARE(cursor.Position(), 0);
}

void TestSharedFileCursor::neverTakesMoreMemoryThanTheFileHolds()
{
    SharedFileCursor cursor(m_file, m_lock, 1000);
    QByteArray block;
    QVERIFY(cursor.Read(std::numeric_limits<qint64>::max(), block));
    QCOMPARE(block, m_bytes.mid(1000));
    QVERIFY(block.capacity() <= m_bytes.size());
}

void TestSharedFileCursor::usesTheSameMemoryAgain()
{
    SharedFileCursor cursor(m_file, m_lock, 0);
    QByteArray block;
    QVERIFY(cursor.Read(1000, block));
    const char* memory = block.constData();
    while (cursor.Read(1000, block)) {
        QVERIFY(block.constData() == memory);
    }
}

void TestSharedFileCursor::seesAFileThatShrank()
{
    SharedFileCursor cursor(m_file, m_lock, 0);
    QByteArray block;
    QVERIFY(cursor.Read(20000, block));
    QVERIFY(QFile::resize(m_file.fileName(), 100));
    QVERIFY(!cursor.Read(100000, block));
    QCOMPARE(cursor.BytesLeft(), 0);
}

void TestSharedFileCursor::keepsTwoThreadsApart()
{
    QByteArray one;
    QByteArray other;
    std::thread first([&] { one = ReadAll(0, 777); });
    std::thread second([&] { other = ReadAll(12345, 1234); });
    first.join();
    second.join();
    QCOMPARE(one, m_bytes);
    QCOMPARE(other, m_bytes.mid(12345));
}

QTEST_APPLESS_MAIN(TestSharedFileCursor)
#include "tst_sharedfilecursor.moc"
