#include "playback/SoundSettling.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QLibraryInfo>
#include <QtCore/QVersionNumber>
#include <QtTest/QTest>

#include <memory>

using vantoraudio::AudioEngine::LetSoundSettleBeforeTheEnd;

namespace {

/** Makes an application that ends just after `count` players, and tells how long both took. In milliseconds. */
qint64 TimeToEndAfterPlayers(int count)
{
    int argc = 1;
    char name[] = "program";
    char* argv[] = {name, nullptr};
    auto application = std::make_unique<QCoreApplication>(argc, argv);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        LetSoundSettleBeforeTheEnd();
    }
    application.reset();
    return timer.elapsed();
}

} // namespace

/** In real time, because the wait is all that there is; at least so long, however busy the machine is. */
class SoundSettlingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theApplicationEndsAMomentAfterTheLastPlayer()
    {
#ifdef Q_OS_LINUX
        if (QLibraryInfo::version() < QVersionNumber(6, 8)) {
            QVERIFY(TimeToEndAfterPlayers(1) >= 29);
            // Every application of a program, and once however many players there were.
            QVERIFY(TimeToEndAfterPlayers(1000) >= 29);
            return;
        }
#endif
        QSKIP("Qt's connection to the sound server ends safely here.");
    }
};

QTEST_APPLESS_MAIN(SoundSettlingTest)
#include "tst_sound_settling.moc"
