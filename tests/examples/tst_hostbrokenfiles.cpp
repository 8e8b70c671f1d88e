#include "PlayerWindow.h"
#include "tests/support/BrokenFiles.h"
#include "tests/support/TemporaryFiles.h"

#include <QtCore/QStandardPaths>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include <cmath>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using BrokenFiles::Audio;
using BrokenFiles::File;

/** What the host program makes of files that are broken or odd. One window meets them all, one after the other. */
class HostBrokenFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_window.reset(); }
    void showsOrTellsWhyNot_data() { BrokenFiles::AddRows(); }
    void showsOrTellsWhyNot();

private:
    TemporaryFiles m_files;
    std::unique_ptr<PlayerWindow> m_window;
};

void HostBrokenFilesTest::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    m_window = std::make_unique<PlayerWindow>();
    m_window->show();
}

void HostBrokenFilesTest::showsOrTellsWhyNot()
{
    QFETCH(const File, file);
    const QString path = m_files.Write(file.name, file.bytes);
    bool isOpened = false;
    bool isRefused = false;
    const QObject context;
    connect(m_window.get(), &PlayerWindow::Opened, &context, [&] { isOpened = true; });
    connect(m_window.get(), &PlayerWindow::OpenFailed, &context, [&] { isRefused = true; });
    m_window->OpenFile(path);
    QVERIFY(QTest::qWaitFor([&] { return isOpened || isRefused; }, 30000));
    if (file.loaded != Audio::Clear) {
        QCOMPARE(isOpened, file.loaded == Audio::Readable);
    }
    QCOMPARE(isRefused, !isOpened);
    QCOMPARE(m_window->FailureText().contains(path), isRefused);
    QVERIFY(!isOpened || (m_window->Duration() > 0.0 && std::isfinite(m_window->Duration())));
    QVERIFY(QTest::qWaitFor([this] { return m_window->IsPictureComplete(); }, 30000));
    QCOMPARE(TemporaryFiles::Read(path), file.bytes);
}

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setOrganizationName(u"vantoraudio"_s);
    QApplication::setApplicationName(u"tst_hostbrokenfiles"_s);
    HostBrokenFilesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_hostbrokenfiles.moc"
