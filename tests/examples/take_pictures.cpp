/**
 * Leads the host program through what a user does, in every theme and in the smallest and the largest font, and
 * takes a picture of each state.
 *
 *   vantoraudio-pictures FOLDER STEREO-FILE LONG-FILE
 */
#include "HostPlayer.h"
#include "PlayerWindow.h"
#include "TaskProgress.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QLibraryInfo>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtCore/QVersionNumber>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace {

using Condition = std::function<bool()>;

/** What is drawn once the program has had some time to react. */
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

class Photographer
{
public:
    Photographer(const QString& folder, const QString& set) : m_folder(folder + u'/' + set), m_set(set)
    {
        m_hasAll = QDir().mkpath(m_folder.path());
    }

    /** Takes a picture as soon as the condition holds. */
    void Take(QWidget& widget, const QString& name, const Condition& isReady)
    {
        const bool isThere = QTest::qWaitFor(isReady, 30000);
        QApplication::processEvents();
        // Not of the screen, which may be smaller than a scaled window.
        const bool isSaved = isThere && widget.grab().save(m_folder.filePath(name + u".png"_s));
        m_hasAll = m_hasAll && isSaved;
        std::printf("%s, %s: %s\n", qPrintable(m_set), qPrintable(name), isSaved ? "taken" : "FAILED");
    }

    /** Of the dialog that `open` opens and waits for. */
    void TakeDialog(const QString& name, const std::function<void()>& open)
    {
        bool hasTaken = false;
        QTimer look;
        look.callOnTimeout([&] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                look.stop();
                Take(*dialog, name, Settled([] { return true; }));
                hasTaken = true;
                dialog->reject();
            }
        });
        look.start(20ms);
        open();
        Expect(hasTaken);
    }

    /** Without which the pictures would show something else. */
    void Expect(bool isTrue) { m_hasAll = m_hasAll && isTrue; }

    bool HasAll() const { return m_hasAll; }

private:
    QDir m_folder;
    QString m_set;
    bool m_hasAll = false;
};

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

void ShowKeys(PlayerWindow& window)
{
    for (QAction* action : window.findChildren<QAction*>()) {
        if (action->shortcut() == QKeySequence(QKeySequence::HelpContents)) {
            action->trigger();
        }
    }
}

void TakeDialogs(Photographer& photographer, PlayerWindow& window)
{
    photographer.TakeDialog(u"settings"_s, [&] { window.findChild<QPushButton*>(u"btnSettings"_s)->click(); });
    photographer.TakeDialog(u"keys"_s, [&] { ShowKeys(window); });
}

void TakeMenus(Photographer& photographer, PlayerWindow& window)
{
    for (const auto& [title, name] :
         {std::pair(u"&View"_s, u"menu view"_s), {u"&Playback"_s, u"menu playback"_s}}) {
        for (QMenu* menu : window.findChildren<QMenu*>()) {
            if (menu->title() == title) {
                menu->popup(window.pos());
                menu->setActiveAction(menu->actions().constFirst());
                photographer.Take(*menu, name, Settled([] { return true; }));
                menu->close();
            }
        }
    }
}

void TakeLoaded(Photographer& photographer, PlayerWindow& window, const QString& file)
{
    photographer.Expect(Open(window, file));
    photographer.Take(window, u"loaded"_s, Settled([&] { return window.IsPictureComplete(); }));
}

void TakePlaying(Photographer& photographer, PlayerWindow& window)
{
    const auto isComplete = [&] { return window.IsPictureComplete(); };
    const double duration = window.Duration();
    window.ShowRange(duration * 0.1, duration * 0.5);
    window.SelectRange(duration * 0.2, duration * 0.35);
    photographer.Take(window, u"selection"_s, Settled(isComplete));
    double position = 0.0;
    QObject context;
    QObject::connect(&window, &PlayerWindow::PositionChanged, &context,
                     [&](double seconds) { position = seconds; });
    window.Play();
    photographer.Take(window, u"playing"_s, [&] { return position > duration * 0.25; });
}

void TakeExport(Photographer& photographer, PlayerWindow& window, const QString& longFile)
{
    photographer.Expect(Open(window, longFile));
    window.SelectRange(1.0, window.Duration() - 1.0);
    photographer.Take(window, u"long"_s, Settled([&] { return window.IsPictureComplete(); }));
    const QTemporaryDir exports;
    window.ExportSelection(exports.filePath(u"selection.wav"_s));
    const auto* progress = window.findChild<TaskProgress*>();
    photographer.Take(window, u"exporting"_s, Settled([&] { return progress->isVisible(); }, 30));
    window.CancelExport();
}

bool TakeTheme(const QStringList& arguments, Appearance::Theme theme, const QString& name)
{
    Appearance appearance;
    appearance.theme = theme;
    appearance.Save();
    Photographer photographer(arguments[1], name);
    PlayerWindow window;
    window.show();
    photographer.Take(window, u"empty"_s, Settled([&] { return window.isVisible(); }));
    TakeLoaded(photographer, window, arguments[2]);
    TakePlaying(photographer, window);
    TakeDialogs(photographer, window);
    TakeMenus(photographer, window);
    TakeExport(photographer, window, arguments[3]);
    photographer.Expect(Open(window, arguments[1]));
    photographer.Take(window, u"error"_s, Settled([&] { return !window.FailureText().isEmpty(); }));
    return photographer.HasAll();
}

bool TakeFont(const QStringList& arguments, int points)
{
    const QFont former = QApplication::font();
    QFont font = former;
    font.setPointSize(points);
    QApplication::setFont(font);
    QSettings().clear();
    Photographer photographer(arguments[1], u"%1 points"_s.arg(points));
    PlayerWindow window;
    window.show();
    TakeLoaded(photographer, window, arguments[2]);
    TakeDialogs(photographer, window);
    TakeMenus(photographer, window);
    window.resize(480, 480);
    photographer.Take(window, u"narrow"_s, Settled([&] { return window.IsPictureComplete(); }));
    QApplication::setFont(former);
    return photographer.HasAll();
}

bool TakeAll(const QStringList& arguments)
{
    bool hasAll = TakeTheme(arguments, Appearance::Theme::Light, u"light"_s);
    hasAll = TakeTheme(arguments, Appearance::Theme::Dark, u"dark"_s) && hasAll;
    hasAll = TakeTheme(arguments, Appearance::Theme::HighContrast, u"high contrast"_s) && hasAll;
    for (const int points : {6, 10, 24}) {
        hasAll = TakeFont(arguments, points) && hasAll;
    }
    return hasAll;
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
    return arguments.size() == 4 && TakeAll(arguments) ? 0 : 1;
}
