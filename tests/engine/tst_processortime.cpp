#include "engine/ProcessorTime.h"

#include <QtTest/QTest>

#include <chrono>
#include <ctime>
#include <thread>

using namespace std::chrono_literals;
using vantoraudio::AudioEngine::ProcessorTimeOfOtherThreads;
using vantoraudio::AudioEngine::WorkPerPiece;

namespace {

/** Keeps a processor busy until the program has used that much more of it. */
void Work(std::chrono::milliseconds duration)
{
    const auto end = std::clock() + duration.count() * CLOCKS_PER_SEC / 1000;
    while (std::clock() < end) {
    }
}

} // namespace

class ProcessorTimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!ProcessorTimeOfOtherThreads()) {
            QSKIP("this system does not tell");
        }
    }

    void countsWhatOtherThreadsUse()
    {
        const auto before = *ProcessorTimeOfOtherThreads();
        std::thread([] { Work(50ms); }).join();
        const auto used = *ProcessorTimeOfOtherThreads() - before;
        QVERIFY2(used >= 40ms, qPrintable(QString::number(used.count())));
    }

    void leavesOutWhatItsOwnThreadUses()
    {
        const auto before = *ProcessorTimeOfOtherThreads();
        Work(50ms);
        const auto used = *ProcessorTimeOfOtherThreads() - before;
        QVERIFY2(used < 10ms, qPrintable(QString::number(used.count())));
    }

    void sharesTheWorkOutAmongThePieces()
    {
        WorkPerPiece work;
        int measured = 0;
        for (int piece = 0; piece < 6 * 64; ++piece) {
            if (piece == 128) {
                std::thread([] { Work(64ms); }).join();
            }
            if (const auto perPiece = work.OnPiece()) {
                ++measured;
                const bool hasWorked = piece == 191;
                QVERIFY2(hasWorked ? *perPiece > 700us && *perPiece < 2ms : *perPiece < 300us,
                         qPrintable(QStringLiteral("%1: %2 ns").arg(piece).arg(perPiece->count())));
            }
        }
        // The first 64 only tell where to begin.
        QCOMPARE(measured, 5);
    }
};

QTEST_GUILESS_MAIN(ProcessorTimeTest)
#include "tst_processortime.moc"
