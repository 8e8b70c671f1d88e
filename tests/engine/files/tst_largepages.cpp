#include "engine/files/LargePages.h"
#include "tests/support/MemoryPages.h"
#include "tests/support/OpenedWav.h"
#include "tests/support/WavBytes.h"

#include <QtTest/QtTest>

using namespace WavTest;
using namespace vantoraudio::AudioEngine;

namespace {

constexpr qsizetype mebibyte = qsizetype(1024) * 1024;

} // namespace

/** Large pages behind long lists. */
class TestLargePages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void lieBehindMuchMemory();
    void areNotWishedBehindLittleMemory();
    void leaveTheContents();
    void lieBehindTheSamplesOfALongView();
};

void TestLargePages::initTestCase()
{
    if (!MemoryPages::SystemHasLargePages()) {
        QSKIP("This system has no large pages.");
    }
}

void TestLargePages::lieBehindMuchMemory()
{
    QByteArray bytes;
    bytes.reserve(40 * mebibyte);
    PreferLargePages(bytes.constData(), bytes.capacity());
    QVERIFY(MemoryPages::AreWishedLarge(bytes.constData() + 20 * mebibyte));
}

void TestLargePages::areNotWishedBehindLittleMemory()
{
    QByteArray bytes;
    bytes.reserve(30 * mebibyte);
    PreferLargePages(bytes.constData(), bytes.capacity());
    QVERIFY(!MemoryPages::AreWishedLarge(bytes.constData() + 15 * mebibyte));
}

void TestLargePages::leaveTheContents()
{
    QByteArray bytes(40 * mebibyte, 'x');
    PreferLargePages(bytes.constData(), bytes.size());
    QCOMPARE(bytes.count('x'), 40 * mebibyte);
}

void TestLargePages::lieBehindTheSamplesOfALongView()
{
    constexpr int frames = 9'000'000;
    OpenedWav wav(WavBytes{.sampleRate = 32768, .data = QByteArray(frames * 2, '\1')}.Build());
    wav.file.ReadData(0, wav.file.GetDuration(), 1);
    const QList<float> samples = wav.file.GetSamples();
    QCOMPARE(samples.size(), frames);
    QVERIFY(MemoryPages::AreWishedLarge(samples.constData() + frames / 2));
}

QTEST_GUILESS_MAIN(TestLargePages)
#include "tst_largepages.moc"
