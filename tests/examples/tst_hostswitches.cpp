#include "PlayerWindows.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QFile>
#include <QtGui/QMouseEvent>
#include <QtGui/QWindow>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QSlider>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString Recording = QStringLiteral(VANTOR_RECORDING);

using Range = std::pair<double, double>;

void TypeInto(QLineEdit& field, const QString& digits)
{
    QTest::mouseClick(&field, Qt::LeftButton);
    QTest::keyClick(&field, Qt::Key_Home);
    QTest::keyClicks(&field, digits);
}

} // namespace

/** What the program switches on in its player: each of these fails where one is off. */
class HostSwitchesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QSettings().clear();
        m_window = std::make_unique<PlayerWindow>();
        QVERIFY(Activate(*m_window));
        QVERIFY(OpenCompletely(*m_window, Recording));
        // Newer versions of Qt load in the background.
        QTRY_COMPARE(m_window->findChild<AudioPlayer*>()->mediaStatus(), QMediaPlayer::LoadedMedia);
    }
    void cleanup() { m_window.reset(); }

    void aTypedPositionMovesThePlayer()
    {
        auto& field = *ChildNamed<QLineEdit>(*m_window, u"edCurrentPosition"_s);
        TypeInto(field, u"000005250"_s);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(Player().GetAudioPosition(), 5.25);
    }

    void aPositionThatIsBeingTypedIsNotWrittenOver()
    {
        auto& field = *ChildNamed<QLineEdit>(*m_window, u"edCurrentPosition"_s);
        TypeInto(field, u"000005250"_s);
        m_window->findChild<AudioPlayer*>()->setPosition(2000);
        QTRY_COMPARE(Waveform().GetAudioPosition(), 2.0);
        QCOMPARE(field.text(), u"00:00:05.250"_s);
    }

    void anotherChannelKeepsTheView()
    {
        m_window->ShowRange(4.0, 6.0);
        auto* channels = Player().findChild<QComboBox*>();
        channels->setFocus();
        const WavFile::ChannelFormat before = Player().GetSelectedChannel();
        QTest::keyClick(channels, channels->currentIndex() == 0 ? Qt::Key_Down : Qt::Key_Up);
        QTRY_VERIFY(Player().GetSelectedChannel() != before && !Player().IsBusy());
        QTRY_VERIFY(m_window->IsPictureComplete());
        QCOMPARE(Player().GetVisibleRange(), Range(4.0, 6.0));
    }

    void playingReturnsToTheSelection()
    {
        m_window->SelectRange(2.0, 4.0);
        QTest::keyClick(m_window.get(), Qt::Key_Home);
        QTRY_COMPARE(Player().GetAudioPosition(), 0.0);
        const QSignalSpy positions(m_window.get(), &PlayerWindow::PositionChanged);
        QTest::keyClick(m_window.get(), Qt::Key_Space);
        const auto last = [&] { return positions.isEmpty() ? 0.0 : positions.last().first().toDouble(); };
        QTRY_VERIFY_WITH_TIMEOUT(last() > 0.0, 15000);
        QVERIFY(last() >= 2.0);
    }

    void everyPeakOfALongFileShows()
    {
        constexpr int rate = 8000;
        QByteArray samples(qsizetype(400) * rate * 2, '\0');
        // In a frame that no step of some frames hits.
        samples.replace(qsizetype(1600033) * 2, 2, WavTest::LittleEndian(qint16(29000)));
        const QTemporaryDir folder;
        QFile file(folder.filePath(u"click.wav"_s));
        const QByteArray bytes = WavTest::WavBytes{.sampleRate = rate, .data = samples}.Build();
        QVERIFY(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size() && file.flush());
        QVERIFY(OpenCompletely(*m_window, file.fileName()));
        double highest = 0.0;
        for (int x = 0; x < Diagram().width(); ++x) {
            // Not-a-number beside the waveform.
            highest = std::fmax(highest, Player().GetLevelAt(Diagram().mapTo(&Player(), QPoint(x, 10))).second);
        }
        QCOMPARE(highest, double(29000.0F / 32767.0F));
    }

    void aClickGivesTheWaveformTheFocus()
    {
        ChildNamed<QSlider>(*m_window, u"zoom"_s)->setFocus();
        QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, OnWindow(3.0));
        QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(&Waveform()));
    }

    void aDragInsideTheSelectionMovesIt()
    {
        m_window->SelectRange(4.0, 8.0);
        Drag(6.0, 7.0);
        QVERIFY(IsSelected({5.0, 9.0}));
    }

    void shiftAndAClickExtendTheSelection()
    {
        m_window->SelectRange(4.0, 8.0);
        QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::ShiftModifier, OnWindow(10.0));
        QVERIFY(IsSelected({4.0, 10.0}));
    }

    void aClearedSelectionIsForgotten()
    {
        m_window->SelectRange(4.0, 8.0);
        QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, OnWindow(12.0));
        QVERIFY(IsSelected({0.0, 0.0}));
        auto& field = *ChildNamed<QLineEdit>(*m_window, u"edSelectionEnd"_s);
        TypeInto(field, u"000006000"_s);
        QTest::keyClick(&field, Qt::Key_Return);
        const auto [start, end] = Player().GetSelectedSnippet();
        QCOMPARE(end, start);
    }

    void aDoubleClickOnlyZooms()
    {
        m_window->ShowRange(2.0, 6.0);
        QTest::mouseDClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, OnWindow(3.0));
        QCOMPARE(Player().GetVisibleRange(), Range(0.0, m_window->Duration()));
        QVERIFY(std::abs(Player().GetAudioPosition() - 3.0) < 0.05);
    }

private:
    HostPlayer& Player() { return *PlayerOf(*m_window); }
    QWidget& Diagram() { return *DiagramOf(*m_window); }
    vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget& Waveform()
    {
        return *m_window->findChild<vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget*>();
    }

    /** Where the waveform shows this time. */
    QPoint OnDiagram(double time)
    {
        const auto [left, right] = Player().GetVisibleRange();
        return {int((time - left) / (right - left) * Diagram().width()), Diagram().height() / 2};
    }
    QPoint OnWindow(double time) { return Diagram().mapTo(m_window.get(), OnDiagram(time)); }

    void Drag(double from, double to)
    {
        QTest::mousePress(&Diagram(), Qt::LeftButton, Qt::NoModifier, OnDiagram(from));
        const QPointF place = OnDiagram(to);
        QMouseEvent move(QEvent::MouseMove, place, Diagram().mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(&Diagram(), &move);
        QTest::mouseRelease(&Diagram(), Qt::LeftButton, Qt::NoModifier, place.toPoint());
    }
    /** As exactly as a pixel of the whole file is. */
    bool IsSelected(const Range& range)
    {
        const auto [start, end] = Player().GetSelectedSnippet();
        return std::abs(start - range.first) < 0.05 && std::abs(end - range.second) < 0.05;
    }

    std::unique_ptr<PlayerWindow> m_window;
};

int main(int argc, char* argv[])
{
    return RunApart<HostSwitchesTest>(argc, argv);
}

#include "tst_hostswitches.moc"
