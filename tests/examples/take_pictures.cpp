/**
 * Leads the host program through what a user does and takes a picture of the screen at each station.
 *
 *   vantoraudio-pictures FOLDER STEREO-FILE LONG-FILE
 */
#include "HostPlayer.h"
#include "PlayerWindow.h"
#include "TaskProgress.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QLibraryInfo>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVersionNumber>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <functional>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {

using Condition = std::function<bool()>;

class Photographer
{
public:
    explicit Photographer(const QString& folder) : m_folder(folder) {}

    /** Takes a picture as soon as the condition holds. */
    void Take(PlayerWindow& window, const QString& name, const Condition& isReady)
    {
        const bool isThere = QTest::qWaitFor(isReady, 30000);
        QApplication::processEvents();
        const QPixmap picture = window.screen()->grabWindow(window.winId());
        const bool isSaved = isThere && picture.save(m_folder.filePath(name + u".png"_s));
        m_hasAll = m_hasAll && isSaved;
        std::printf("%s: %s\n", qPrintable(name), isSaved ? "taken" : "FAILED");
    }

    /** Without which the pictures would show something else. */
    void Expect(bool isTrue) { m_hasAll = m_hasAll && isTrue; }

    bool HasAll() const { return m_hasAll; }

private:
    QDir m_folder;
    bool m_hasAll = true;
};

/** A screen shows what was drawn a moment ago. */
Condition Settled(Condition condition, int milliseconds = 300)
{
    auto since = std::make_shared<QElapsedTimer>();
    return [=] {
        if (!condition()) {
            since->invalidate();
            return false;
        }
        if (!since->isValid()) {
            since->start();
        }
        return since->elapsed() > milliseconds;
    };
}

/** Waits until the window has shown the file or refused it; false when it does neither. */
bool Open(PlayerWindow& window, const QString& path)
{
    bool hasEnded = false;
    QObject context;
    const auto end = [&hasEnded] { hasEnded = true; };
    QObject::connect(&window, &PlayerWindow::Opened, &context, end);
    QObject::connect(&window, &PlayerWindow::OpenFailed, &context, end);
    window.OpenFile(path);
    return QTest::qWaitFor([&hasEnded] { return hasEnded; }, 30000);
}

bool TakeAll(const QString& folder, const QString& stereoFile, const QString& longFile)
{
    Photographer photographer(folder);
    PlayerWindow window;
    window.show();
    photographer.Take(window, u"empty"_s, Settled([&] { return window.isActiveWindow() || window.isVisible(); }));

    const auto isComplete = [&] { return window.IsPictureComplete(); };
    photographer.Expect(Open(window, stereoFile));
    photographer.Take(window, u"loaded"_s, Settled(isComplete));

    const double duration = window.Duration();
    window.ShowRange(duration * 0.1, duration * 0.5);
    window.SelectRange(duration * 0.2, duration * 0.35);
    photographer.Take(window, u"zoomed"_s, Settled(isComplete));

    double position = 0.0;
    QObject::connect(&window, &PlayerWindow::PositionChanged, &window,
                     [&](double seconds) { position = seconds; });
    window.Play();
    photographer.Take(window, u"playing"_s, [&] { return position > duration * 0.25; });

    photographer.Expect(Open(window, longFile));
    window.SelectRange(1.0, window.Duration() - 1.0);
    photographer.Take(window, u"long"_s, Settled(isComplete));
    const QTemporaryDir exports;
    window.ExportSelection(exports.filePath(u"selection.wav"_s));
    const auto* progress = window.findChild<TaskProgress*>();
    photographer.Take(window, u"exporting"_s, Settled([&] { return progress->isVisible(); }, 30));
    window.CancelExport();

    photographer.Expect(Open(window, folder));
    photographer.Take(window, u"error"_s, Settled([&] { return !window.FailureText().isEmpty(); }));

    Appearance dark;
    dark.theme = Appearance::Theme::Dark;
    dark.ApplyTo(*window.findChild<HostPlayer*>());
    photographer.Expect(Open(window, stereoFile));
    window.SelectRange(duration * 0.2, duration * 0.35);
    photographer.Take(window, u"dark"_s, Settled(isComplete));
    return photographer.HasAll();
}

} // namespace

int main(int argc, char* argv[])
{
    const QTemporaryDir home;
    for (const char* name : {"XDG_CACHE_HOME", "XDG_CONFIG_HOME"}) {
        qputenv(name, home.path().toLocal8Bit());
    }
    // Qt before 6.5 would choose a backend that needs further plug-ins.
    if (QLibraryInfo::version() < QVersionNumber(6, 5)) {
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"vantoraudio-player"_s);
    const QStringList arguments = QApplication::arguments();
    return arguments.size() == 4 && TakeAll(arguments[1], arguments[2], arguments[3]) ? 0 : 1;
}
