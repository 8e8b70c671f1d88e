/**
 * What a user waits for in the player's window, measured inside the program and printed in milliseconds.
 *
 *   vantoraudio-window open WAV      from SetAudioFile() on a working copy that is there to the complete picture
 *   vantoraudio-window load FILE DIR from LoadFile() to the complete picture, and the longest time between two
 * ticks vantoraudio-window gap WAV OUT   the longest time that the window is frozen while most of the file is
 * exported
 */
#include <vantorAudioEngine/AudioPlayerWidget.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QLibraryInfo>
#include <QtCore/QTimer>
#include <QtCore/QVersionNumber>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;

namespace {

/** Paints the picture of the samples that have just come, as the next turn of the event loop would. */
void WaitForPicture(AudioPlayerWidget& player)
{
    while (player.IsReadingSamples()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QApplication::processEvents();
    player.grab();
}

double Open(AudioPlayerWidget& player, const QString& path)
{
    QElapsedTimer timer;
    timer.start();
    player.SetAudioFile(path);
    WaitForPicture(player);
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/** The longest time between two ticks of the GUI thread, in milliseconds. */
class Ticks
{
public:
    Ticks()
    {
        m_timer.callOnTimeout([this] {
            m_longest = std::max(m_longest, m_sinceTick.nsecsElapsed());
            m_sinceTick.start();
        });
        m_sinceTick.start();
        m_timer.start(0);
    }

    double Longest() const { return static_cast<double>(m_longest) / 1e6; }

private:
    QElapsedTimer m_sinceTick;
    QTimer m_timer;
    qint64 m_longest = 0;
};

double LongestGap(AudioPlayerWidget& player, const QString& outPath)
{
    player.SetSelectedSnippet({0.0, player.GetAudioDuration()});
    bool isDone = false;
    QObject::connect(&player, &AudioPlayerWidget::CreateSnippetFinished, &player, [&] { isDone = true; });
    const Ticks ticks;
    player.CreateSnippet(outPath);
    return QTest::qWaitFor([&] { return isDone; }, 600000) ? ticks.Longest() : -1.0;
}

/** Ticks count until the file is there; the time includes its picture. */
void PrintLoad(AudioPlayerWidget& player, const QString& path)
{
    bool isDone = false;
    QObject::connect(&player, &AudioPlayerWidget::LoadFinished, &player, [&] { isDone = true; });
    QElapsedTimer timer;
    timer.start();
    const Ticks ticks;
    player.LoadFile(path);
    const bool isLoaded = QTest::qWaitFor([&] { return isDone; }, 600000);
    WaitForPicture(player);
    std::printf("%.1f %.1f\n", isLoaded ? static_cast<double>(timer.nsecsElapsed()) / 1e6 : -1.0, ticks.Longest());
}

} // namespace

int main(int argc, char* argv[])
{
    // Qt before 6.5 would choose a backend that needs further plug-ins.
    if (QLibraryInfo::version() < QVersionNumber(6, 5)) {
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    }
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const QString path = arguments.value(2);
    AudioPlayerWidget player;
    // The file is its own working copy, so that no copying is measured.
    player.SetWritableDirectoryPath(QFileInfo(path).path());
    player.resize(1660, 420);
    player.show();
    if (!QTest::qWaitForWindowExposed(&player)) {
        return 1;
    }
    if (arguments.value(1) == u"load"_s) {
        player.SetWritableDirectoryPath(arguments.value(3));
        PrintLoad(player, path);
        return 0;
    }
    const double opened = Open(player, path);
    std::printf("%.1f\n", arguments.value(1) == u"gap"_s ? LongestGap(player, arguments.value(3)) : opened);
    return 0;
}
