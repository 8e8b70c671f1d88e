#pragma once

#include "HostPlayer.h"
#include "PlayerWindow.h"

#include <QtCore/QSemaphore>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThreadPool>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>

#include <chrono>
#include <functional>
#include <memory>

/** What a window has told since this was made. */
class WindowLog
{
public:
    explicit WindowLog(PlayerWindow& window)
    {
        QObject::connect(&window, &PlayerWindow::Opened, &m_context, [this] {
            isOpened = true;
            // One that was completed before is of the former file.
            isCompleted = false;
        });
        QObject::connect(&window, &PlayerWindow::OpenFailed, &m_context, [this] { isRefused = true; });
        QObject::connect(&window, &PlayerWindow::OpenCancelled, &m_context, [this] { isCancelled = true; });
        QObject::connect(&window, &PlayerWindow::PictureCompleted, &m_context, [this] { isCompleted = true; });
    }

    bool HasEnded() const
    {
        return QTest::qWaitFor([this] { return isOpened || isRefused || isCancelled; }, 20000);
    }
    bool HasCompleted() const
    {
        return QTest::qWaitFor([this] { return isOpened && isCompleted; }, 10000);
    }

    bool isOpened = false;
    bool isRefused = false;
    bool isCancelled = false;
    bool isCompleted = false;

private:
    QObject m_context;
};

/** False when the window refuses the file. */
inline bool Open(PlayerWindow& window, const QString& path)
{
    const WindowLog log(window);
    window.OpenFile(path);
    return log.HasEnded() && log.isOpened;
}

inline bool OpenCompletely(PlayerWindow& window, const QString& path)
{
    const WindowLog log(window);
    window.OpenFile(path);
    return log.HasEnded() && log.isOpened && log.HasCompleted();
}

/** Keys reach an active window only; without a window manager one request for that can get lost. */
inline bool Activate(PlayerWindow& window)
{
    window.show();
    return QTest::qWaitFor([&] {
        window.activateWindow();
        return window.isActiveWindow();
    });
}

inline QWidget* DiagramOf(PlayerWindow& window)
{
    return window.findChild<QWidget*>(QStringLiteral("BGFXWaveformDiagramWidget"));
}

template<typename Widget>
Widget* ChildNamed(QWidget& window, const QString& name)
{
    return window.findChild<Widget*>(name);
}

inline HostPlayer* PlayerOf(PlayerWindow& window)
{
    return window.findChild<HostPlayer*>();
}

/** Keeps every thread of the global pool busy, so that what is started meanwhile waits for its turn. */
class BusyPool
{
public:
    BusyPool()
    {
        for (int i = 0; i < m_threads; ++i) {
            QThreadPool::globalInstance()->start([gate = m_gate] { gate->acquire(); });
        }
    }
    ~BusyPool() { Release(); }
    Q_DISABLE_COPY_MOVE(BusyPool)

    void Release() const { m_gate->release(m_threads); }

private:
    const int m_threads = QThreadPool::globalInstance()->maxThreadCount();
    const std::shared_ptr<QSemaphore> m_gate = std::make_shared<QSemaphore>();
};

/** Answers dialogs that wait for the user, each function the next dialog of its kind. */
class Answers
{
public:
    /** What nobody answers is closed after a while, so that a test fails instead of standing still. */
    Answers()
    {
        m_patience.callOnTimeout([] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                dialog->reject();
            }
        });
        m_patience.start(std::chrono::seconds(20));
    }

    template<typename Dialog>
    void Add(const std::function<void(Dialog&)>& answer)
    {
        auto* look = new QTimer(&m_context);
        look->callOnTimeout(&m_context, [=, this, turn = m_added++] {
            auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            if (turn == m_given && dialog && IsActive(*dialog)) {
                // Both first: the answer may open the next dialog.
                look->stop();
                ++m_given;
                answer(*dialog);
            }
        });
        look->start(std::chrono::milliseconds(5));
    }

    bool AreGiven() const { return m_given == m_added; }

private:
    /** Without a window manager, a dialog does not become so by itself. */
    static bool IsActive(QWidget& dialog)
    {
        dialog.activateWindow();
        return dialog.isActiveWindow();
    }

    int m_added = 0;
    int m_given = 0;
    QTimer m_patience;
    QObject m_context;
};

/** Runs a test in English whose windows touch neither the settings nor the cache of the user, which is none of a
 *  test's business. Programs that it starts inherit this. */
template<typename Test>
int RunApart(int argc, char* argv[])
{
    const QTemporaryDir home;
    for (const char* name : {"XDG_CACHE_HOME", "XDG_CONFIG_HOME", "TMPDIR"}) {
        qputenv(name, home.path().toLocal8Bit());
    }
    qputenv("LANGUAGE", "en");
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vantoraudio-player"));
    Test test;
    return QTest::qExec(&test, argc, argv);
}
