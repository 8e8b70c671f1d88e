#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"
#include "tests/ui/player/LoadedPlayer.h"
#include "tests/ui/waveform/WaveformTestAccess.h"

#include <QtGui/QWheelEvent>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::vantorAudioEngine::UI;
using Widget = AudioPlayerWidget;

/** What flows between the file, its waveform, the tasks and the host, set going by the controls themselves. */
class PlayerConnectionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void theWaveformGetsTheSamplesThatItAsksFor();
    void theHostHearsOfTheProgressOfReading();
    void theHostHearsOfEveryBlockThatIsRead();
    void theHostHearsOfTheVisibleRange();
    void theHostSetsTheVisibleRange();
    void theHostShowsARange_data();
    void theHostShowsARange();
    void theHostHearsOfAFinishedSnippet();
    void theChannelBoxStartsAFiltering();
    void theSettingsIconIsTheProgramsToBring();

private:
    void ZoomIn();
    BGFXWaveformDiagramWidget& Diagram() { return WaveformTestAccess::DiagramOf(m_loaded->Waveform()); }
    Widget& Shown() { return m_loaded->widget; }

    std::unique_ptr<LoadedPlayer> m_loaded;
};

void PlayerConnectionsTest::init()
{
    m_loaded = std::make_unique<LoadedPlayer>(2);
    QVERIFY(m_loaded->Load());
}

void PlayerConnectionsTest::cleanup()
{
    QCOMPARE(m_loaded->widget.errors.size(), 0);
    m_loaded.reset();
}

void PlayerConnectionsTest::ZoomIn()
{
    const QPoint middle = Diagram().rect().center();
    QWheelEvent turn(middle, Diagram().mapToGlobal(middle), QPoint(), QPoint(0, 120), Qt::NoButton,
                     Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&Diagram(), &turn);
}

void PlayerConnectionsTest::theWaveformGetsTheSamplesThatItAsksFor()
{
    QTRY_VERIFY(WaveformTestAccess::Buffer(Diagram()).end > 1.9);
    m_loaded->Waveform().UpdateAudioSampleBuffer({});
    QVERIFY(WaveformTestAccess::Buffer(Diagram()).end < 0.1);
    QSignalSpy asked(&m_loaded->Waveform(), &BGFXWaveformWidget::GetSamples);
    QTest::mouseDClick(&Diagram(), Qt::LeftButton);
    QCOMPARE(asked.size(), 1);
    QTRY_VERIFY(WaveformTestAccess::Buffer(Diagram()).end > 1.9);
}

void PlayerConnectionsTest::theHostHearsOfTheProgressOfReading()
{
    const QSignalSpy told(&Shown(), &Widget::ProgressChanged);
    QTest::mouseDClick(&Diagram(), Qt::LeftButton);
    QTRY_VERIFY(!told.isEmpty() && told.last() == QVariantList({0, 0, 1, u"Updated"_s}));
}

void PlayerConnectionsTest::theHostHearsOfEveryBlockThatIsRead()
{
    AudioPlayerWidgetTestAccess::StopClock(Shown());
    QStringList told;
    connect(&Shown(), &Widget::ProgressChanged, this, [&](int progress, int min, int max, const QString& text) {
        told.append(u"%1 of %2..%3 %4"_s.arg(progress).arg(min).arg(max).arg(text));
        QVERIFY(Shown().IsReadingSamples());
    });
    // Two seconds of 8,000 frames in blocks of 2,000 frames, 4,000 bytes each behind a header of 44.
    Q_EMIT m_loaded->Waveform().GetSamples(0.0, 2.0, 10);
    QTRY_VERIFY(!Shown().IsReadingSamples());
    QCOMPARE(
        told,
        QStringList({u"0 of 0..100 Updating..."_s, u"12 of 0..100 Updating..."_s, u"25 of 0..100 Updating..."_s,
                     u"37 of 0..100 Updating..."_s, u"50 of 0..100 Updating..."_s, u"62 of 0..100 Updating..."_s,
                     u"75 of 0..100 Updating..."_s, u"87 of 0..100 Updating..."_s, u"0 of 0..1 Updated"_s}));
}

void PlayerConnectionsTest::theHostHearsOfTheVisibleRange()
{
    const QSignalSpy told(&Shown(), &Widget::SceneRectChanged);
    ZoomIn();
    QVERIFY(!told.isEmpty());
    QCOMPARE(told.last()[0].toRectF(), Diagram().GetSceneRect());
    QVERIFY(Diagram().GetSceneRect().width() < 2.0);
}

void PlayerConnectionsTest::theHostSetsTheVisibleRange()
{
    Q_EMIT Shown().SceneRectChangeRequested(QRectF(0.5, 0.0, 1.0, 1.0));
    QCOMPARE(Diagram().GetSceneRect().left(), 0.5);
    QCOMPARE(Diagram().GetSceneRect().right(), 1.5);
}

void PlayerConnectionsTest::theHostShowsARange_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::addColumn<double>("left");
    QTest::addColumn<double>("right");
    QTest::newRow("within the file") << 0.5 << 1.5 << 0.5 << 1.5;
    QTest::newRow("in the other order") << 1.5 << 0.5 << 0.5 << 1.5;
    QTest::newRow("beyond the file") << 1.0 << 5.0 << 1.0 << 2.0;
    QTest::newRow("behind the file") << 20.0 << 30.0 << 0.0 << 2.0;
    QTest::newRow("before the file") << -5.0 << -1.0 << 0.0 << 2.0;
    QTest::newRow("without length") << 1.0 << 1.0 << 0.0 << 2.0;
    QTest::newRow("as long as can be") << 1e308 << -1e308 << 0.0 << 2.0;
    QTest::newRow("start is no number") << qQNaN() << 1.5 << 0.0 << 2.0;
    QTest::newRow("end is endless") << 0.5 << qInf() << 0.0 << 2.0;
}

void PlayerConnectionsTest::theHostShowsARange()
{
    QFETCH(double, start);
    QFETCH(double, end);
    Shown().ShowRange(start, end);
    QTEST(Diagram().GetSceneRect().left(), "left");
    QTEST(Diagram().GetSceneRect().right(), "right");
}

void PlayerConnectionsTest::theHostHearsOfAFinishedSnippet()
{
    QSignalSpy finished(&Shown(), &Widget::CreateSnippetFinished);
    const QSignalSpy busy(&Shown(), &Widget::BusyChanged);
    const QString path = m_loaded->CopyPath(u"snippet.wav"_s);
    Shown().SetSelectedSnippet({0.5, 1.5});
    Shown().CreateSnippet(path);
    QVERIFY(Shown().IsBusy());
    QVERIFY(finished.wait());
    QCOMPARE(finished[0][0].toString(), path);
    QVERIFY(QFile::exists(path));
    QCOMPARE(busy.size(), 2);
    QVERIFY(!Shown().IsBusy());
}

void PlayerConnectionsTest::theChannelBoxStartsAFiltering()
{
    const TemporaryFiles files;
    QVERIFY(WriteToneFile(files.Path(u"tone.wav"_s), {.seconds = 1.0}));
    Shown().SetAudioFile(files.Path(u"tone.wav"_s));
    QVERIFY(m_loaded->IsReady());
    QSignalSpy busy(&Shown(), &Widget::BusyChanged);
    QTest::keyClick(m_loaded->Controls().cmbboxChannelSelector, Qt::Key_Down);
    QCOMPARE(Shown().GetSelectedChannel(), WavFile::ChannelLeft);
    QTRY_COMPARE(busy.size(), 2);
    const QString left = m_loaded->CopyPath(u"tone_Left.wav"_s);
    QVERIFY(QFile::exists(left));
    QCOMPARE(m_loaded->Player().source(), QUrl::fromLocalFile(left));
}

void PlayerConnectionsTest::theSettingsIconIsTheProgramsToBring()
{
    QVERIFY(QFile::exists(u":/Resources/vantoraudioPlayerStop_day.svg"_s));
    QVERIFY(!QFile::exists(u":/Resources/vantoraudioPreferences_day.svg"_s));
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerConnectionsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerconnections.moc"
