#include "LongFile.h"
#include "PlayerWindows.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtWidgets/QMenu>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {

void Begin(PlayerWindow& window, const QString& work, const QString& outPath)
{
    if (work == u"play"_s) {
        window.Play();
    } else if (work == u"convert"_s) {
        QAudioFormat format;
        format.setSampleFormat(QAudioFormat::Float);
        format.setSampleRate(96000);
        format.setChannelCount(2);
        window.ConvertFile(outPath, format);
    } else if (work == u"convert a part"_s) {
        window.SelectRange(1.0, window.Duration() - 1.0);
        window.ExportSelection(outPath);
    } else if (work == u"prepare a channel"_s) {
        PlayerOf(window)->SetSelectedChannel(WavFile::ChannelLeft);
    }
}

bool IsAtWork(PlayerWindow& window, const QString& work)
{
    const HostPlayer* player = PlayerOf(window);
    return work == u"rest"_s || (work == u"load"_s && player->IsLoading()) ||
           (work == u"play"_s && player->IsPlaying()) || (work == u"prepare a channel"_s && player->IsBusy()) ||
           // A second export is not offered while one runs.
           (work.contains(u"convert"_s) && !ChildNamed<QMenu>(window, u"export"_s)->isEnabled());
}

/** Tells its parent when it is told to quit. */
void QuitSoon(PlayerWindow& window, const QString& work)
{
    QTimer::singleShot(std::chrono::milliseconds(20), &window, [&window, work] {
        if (!IsAtWork(window, work)) {
            return QApplication::exit(2);
        }
        std::puts("quitting");
        std::fflush(stdout);
        window.close();
    });
}

/** The host program, which quits by itself in the middle of some work. */
int RunProgram(const QString& work, const QString& source, const QString& outPath)
{
    PlayerWindow window;
    window.show();
    if (work == u"load"_s) {
        window.OpenFile(source);
    } else if (OpenCompletely(window, source)) {
        Begin(window, work, outPath);
    }
    QuitSoon(window, work);
    return QApplication::exec();
}

} // namespace

class HostQuitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void quitsAtOnceAndLeavesNothing_data()
    {
        QTest::addColumn<QString>("work");
        QTest::addColumn<int>("minutes");
        QTest::addRow("rest") << u"rest"_s << 1;
        QTest::addRow("load") << u"load"_s << 100;
        QTest::addRow("play") << u"play"_s << 1;
        QTest::addRow("convert") << u"convert"_s << 10;
        QTest::addRow("convert a part") << u"convert a part"_s << 20;
        QTest::addRow("prepare a channel") << u"prepare a channel"_s << 20;
    }
    void quitsAtOnceAndLeavesNothing()
    {
        QFETCH(const QString, work);
        QFETCH(const int, minutes);
        const QTemporaryDir folder;
        const QString source = folder.filePath(u"long.wav"_s);
        // What is loaded has to be decoded, which takes a while on every disk: nobody plays 8 bits as they are.
        QVERIFY(WriteSilence(source, minutes, work == u"load"_s ? 8 : 16));
        QProcess program;
        program.start(QApplication::applicationFilePath(),
                      {u"--quit-while"_s, work, source, folder.filePath(u"out.wav"_s)});
        QVERIFY2(program.waitForReadyRead(20000), "it was done with its work already");
        QElapsedTimer watch;
        watch.start();
        QVERIFY2(program.waitForFinished(10000), "hangs");
        qInfo("after %lld ms", watch.elapsed());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList(u"long.wav"_s));
    }
};

int main(int argc, char* argv[])
{
    if (argc == 5 && qstrcmp(argv[1], "--quit-while") == 0) {
        QApplication application(argc, argv);
        QApplication::setApplicationName(u"vantoraudio-player"_s);
        const QStringList arguments = QApplication::arguments();
        return RunProgram(arguments[2], arguments[3], arguments[4]);
    }
    return RunApart<HostQuitTest>(argc, argv);
}

#include "tst_hostquit.moc"
