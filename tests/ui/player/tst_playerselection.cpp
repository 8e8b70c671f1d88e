#include "tests/playback/AudioPlayerTestAccess.h"
#include "tests/support/SoundServer.h"
#include "tests/ui/player/LoadedPlayer.h"
#include "tests/ui/waveform/WaveformTestAccess.h"

#include <QtTest/QSignalSpy>
#include <QtWidgets/QPushButton>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::vantorAudioEngine::UI;
using Access = AudioPlayerWidgetTestAccess;
using Widget = AudioPlayerWidget;

namespace {

using Range = std::pair<double, double>;

Range RangeOf(const AudioPlayer& player)
{
    return {AudioPlayerTestAccess::SelectionStart(player), AudioPlayerTestAccess::SelectionEnd(player)};
}

bool IsNear(const Range& a, const Range& b)
{
    return std::abs(a.first - b.first) < 1e-9 && std::abs(a.second - b.second) < 1e-9;
}

QString Written(const Range& range)
{
    return u"%1..%2"_s.arg(range.first).arg(range.second);
}

} // namespace

class PlayerSelectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aButtonMovesAnEnd_data();
    void aButtonMovesAnEnd();
    void aHeldButtonGoesOn();
    void buttonsDoNothingOutsideEditMode();

    void aTypedTimeMovesAnEnd_data();
    void aTypedTimeMovesAnEnd();
    void aTypedTimeCountsWhenTheFieldIsLeft();
    void aTimeBeyondTheDurationRestoresTheField_data();
    void aTimeBeyondTheDurationRestoresTheField();
    void aTextThatIsNoTimeCountsAsTheStartOfTheFile_data();
    void aTextThatIsNoTimeCountsAsTheStartOfTheFile();

    void aSelectionThatIsNotFiniteIsIgnored_data();
    void aSelectionThatIsNotFiniteIsIgnored();
    void aSelectionReachesThePlayerThenTheFieldsThenTheHost();
    void changingTheFieldsByCodeIsSilent();
    void aSelectionShorterThanTenMicrosecondsIsNone_data();
    void aSelectionShorterThanTenMicrosecondsIsNone();
    void showsRoundedTimes();

    void aDragSelects();
    void aDragOutsideEditModePlacesThePosition();
    void aClickPlacesThePosition();
    void aSelectionIsCutToTheVisibleRange();
    void aSelectionIsCutToNinetyMinutes();
    void settersAndGettersForwardToTheWaveform();

private:
    QPoint PixelAt(double seconds);
    BGFXWaveformDiagramWidget& Diagram() { return WaveformTestAccess::DiagramOf(m_loaded->Waveform()); }
    const auto& Controls() { return m_loaded->Controls(); }
    QStringList FieldTexts() { return {Controls().edSelectionStart->text(), Controls().edSelectionEnd->text()}; }
    AudioPlayer& Player() { return m_loaded->Player(); }
    Widget& Shown() { return m_loaded->widget; }
    template<typename Class>
    Class* Child(const QString& name)
    {
        return m_loaded->widget.findChild<Class*>(name);
    }

    std::unique_ptr<LoadedPlayer> m_loaded;
};

void PlayerSelectionTest::init()
{
    m_loaded = std::make_unique<LoadedPlayer>(10);
    QVERIFY(m_loaded->Load());
}

void PlayerSelectionTest::cleanup()
{
    m_loaded.reset();
}

QPoint PlayerSelectionTest::PixelAt(double seconds)
{
    const QRectF view = Diagram().GetSceneRect();
    const double x = (seconds - view.left()) / view.width() * Diagram().width() - 0.5;
    return {static_cast<int>(std::lround(x)), Diagram().height() / 2};
}

void PlayerSelectionTest::aButtonMovesAnEnd_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<Range>("before");
    QTest::addColumn<bool>("isCoarse");
    QTest::addColumn<Range>("after");
    const QString decStart = u"btnDecSelectionStart"_s;
    const QString incStart = u"btnIncSelectionStart"_s;
    const QString decEnd = u"btnDecSelectionEnd"_s;
    const QString incEnd = u"btnIncSelectionEnd"_s;
    const Range middle(2.5, 4.5);
    QTest::newRow("start back, fine") << decStart << middle << false << Range(2.49, 4.5);
    QTest::newRow("start back, coarse") << decStart << middle << true << Range(1.5, 4.5);
    QTest::newRow("start back to 0") << decStart << Range(1.0, 4.5) << true << Range(0.0, 4.5);
    QTest::newRow("start back across 0") << decStart << Range(0.5, 4.5) << true << Range(0.5, 4.5);
    QTest::newRow("start on, fine") << incStart << middle << false << Range(2.51, 4.5);
    QTest::newRow("start on, coarse") << incStart << middle << true << Range(3.5, 4.5);
    QTest::newRow("start on to the end") << incStart << Range(3.5, 4.5) << true << Range(3.5, 4.5);
    QTest::newRow("start on across the end") << incStart << Range(4.0, 4.5) << true << Range(4.0, 4.5);
    QTest::newRow("end back, fine") << decEnd << middle << false << Range(2.5, 4.49);
    QTest::newRow("end back, coarse") << decEnd << middle << true << Range(2.5, 3.5);
    QTest::newRow("end back to the start") << decEnd << Range(3.5, 4.5) << true << Range(3.5, 4.5);
    QTest::newRow("end back across the start") << decEnd << Range(4.0, 4.5) << true << Range(4.0, 4.5);
    QTest::newRow("end on, fine") << incEnd << middle << false << Range(2.5, 4.51);
    QTest::newRow("end on, coarse") << incEnd << middle << true << Range(2.5, 5.5);
    QTest::newRow("end on to the duration") << incEnd << Range(2.5, 9.0) << true << Range(2.5, 10.0);
    QTest::newRow("end on across the duration") << incEnd << Range(2.5, 9.5) << true << Range(2.5, 9.5);
}

void PlayerSelectionTest::aButtonMovesAnEnd()
{
    QFETCH(QString, button);
    QFETCH(Range, before);
    QFETCH(bool, isCoarse);
    QFETCH(Range, after);
    Shown().SetSelectedSnippet(before);
    const QSignalSpy told(&Shown(), &Widget::WaveFormSelectionChanged);
    QTest::mouseClick(Child<QPushButton>(button), Qt::LeftButton, isCoarse ? Qt::ControlModifier : Qt::NoModifier);
    QVERIFY2(IsNear(Shown().GetSelectedSnippet(), after), qPrintable(Written(Shown().GetSelectedSnippet())));
    QVERIFY(IsNear(RangeOf(Player()), after));
    QCOMPARE(told.size(), before == after ? 0 : 1);
}

void PlayerSelectionTest::aHeldButtonGoesOn()
{
    QPushButton* button = Controls().btnIncSelectionStart;
    const auto goesOn = [&] {
        // A window of another program lets go of it when it takes the focus away.
        if (!button->isDown()) {
            QTest::mouseRelease(button, Qt::LeftButton);
            Shown().SetSelectedSnippet({2.0, 4.0});
            QTest::mousePress(button, Qt::LeftButton);
        }
        return Shown().GetSelectedSnippet().first > 2.035;
    };
    QTRY_VERIFY(goesOn());
    QTest::mouseRelease(button, Qt::LeftButton);
}

void PlayerSelectionTest::buttonsDoNothingOutsideEditMode()
{
    Shown().SetEditMode(false);
    Shown().Reset();
    Shown().SetAudioFile(m_loaded->WriteFile(u"other.wav"_s));
    Shown().SetSelectedSnippet({2.0, 4.0});
    QTest::mouseClick(Controls().btnIncSelectionEnd, Qt::LeftButton);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(2.0, 4.0));
}

void PlayerSelectionTest::aTypedTimeMovesAnEnd_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("time");
    QTest::addColumn<Range>("after");
    QTest::newRow("start") << u"edSelectionStart"_s << u"000001250"_s << Range(1.25, 5.0);
    QTest::newRow("start at 0") << u"edSelectionStart"_s << u"000000000"_s << Range(0.0, 5.0);
    QTest::newRow("start behind the end takes it along")
        << u"edSelectionStart"_s << u"000007500"_s << Range(7.5, 7.5);
    QTest::newRow("end") << u"edSelectionEnd"_s << u"000008750"_s << Range(2.0, 8.75);
    QTest::newRow("end at the duration") << u"edSelectionEnd"_s << u"000010000"_s << Range(2.0, 10.0);
    QTest::newRow("end before the start collapses both")
        << u"edSelectionEnd"_s << u"000001500"_s << Range(1.5, 1.5);
}

void PlayerSelectionTest::aTypedTimeMovesAnEnd()
{
    QFETCH(QString, field);
    QFETCH(QString, time);
    QFETCH(Range, after);
    Shown().SetSelectedSnippet({2.0, 5.0});
    TypeTime(*Child<QLineEdit>(field), time);
    QCOMPARE(Shown().GetSelectedSnippet(), after);
    QCOMPARE(FieldTexts(), QStringList({Access::ToText(after.first), Access::ToText(after.second)}));
    QCOMPARE(Access::HasSelection(Shown()), after.first != after.second);
    QCOMPARE(RangeOf(Player()), after.first != after.second ? after : Range(0.0, 10.0));
}

void PlayerSelectionTest::aTypedTimeCountsWhenTheFieldIsLeft()
{
    Shown().SetSelectedSnippet({2.0, 5.0});
    for (QLineEdit* field : {Controls().edSelectionStart, Controls().edSelectionEnd}) {
        field->setFocus();
        QTRY_VERIFY(field->hasFocus());
        OverwriteTime(*field, u"000003500"_s);
        Shown().setFocus();
    }
    QCOMPARE(Shown().GetSelectedSnippet(), Range(3.5, 3.5));
}

void PlayerSelectionTest::aTimeBeyondTheDurationRestoresTheField_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("edSelectionStart") << u"00:00:02.000"_s;
    QTest::newRow("edSelectionEnd") << u"00:00:05.000"_s;
}

void PlayerSelectionTest::aTimeBeyondTheDurationRestoresTheField()
{
    Shown().SetSelectedSnippet({2.0, 5.0});
    const QSignalSpy told(&Shown(), &Widget::WaveFormSelectionChanged);
    auto* field = Child<QLineEdit>(QString::fromLatin1(QTest::currentDataTag()));
    OverwriteTime(*field, u"000010001"_s);
    QCOMPARE(field->text(), u"00:00:10.001"_s);
    const QSignalSpy changed(field, &QLineEdit::textChanged);
    QTest::keyClick(field, Qt::Key_Return);
    QTEST(field->text(), "text");
    QCOMPARE(changed.size(), 0);
    QCOMPARE(told.size(), 0);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(2.0, 5.0));
}

void PlayerSelectionTest::aTextThatIsNoTimeCountsAsTheStartOfTheFile_data()
{
    QTest::addColumn<Range>("after");
    QTest::newRow("edSelectionStart") << Range(0.0, 5.0);
    QTest::newRow("edSelectionEnd") << Range(0.0, 0.0);
}

void PlayerSelectionTest::aTextThatIsNoTimeCountsAsTheStartOfTheFile()
{
    Shown().SetSelectedSnippet({2.0, 5.0});
    // Only a program that takes mask and validator away lets such a text through.
    auto* field = Child<QLineEdit>(QString::fromLatin1(QTest::currentDataTag()));
    field->setInputMask(QString());
    field->setValidator(nullptr);
    field->clear();
    TypeTime(*field, u"garbage"_s);
    QTEST(Shown().GetSelectedSnippet(), "after");
    QTEST(Range(Access::FromText(FieldTexts()[0]), Access::FromText(FieldTexts()[1])), "after");
}

void PlayerSelectionTest::aSelectionThatIsNotFiniteIsIgnored_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::newRow("start is no number") << qQNaN() << 3.0;
    QTest::newRow("end is no number") << 1.0 << qQNaN();
    QTest::newRow("from the beginning of time") << -qInf() << 3.0;
    QTest::newRow("to the end of time") << 1.0 << qInf();
}

void PlayerSelectionTest::aSelectionThatIsNotFiniteIsIgnored()
{
    QFETCH(double, start);
    QFETCH(double, end);
    m_loaded->widget.SetSelectedSnippet({4.0, 5.0});
    const QSignalSpy told(&m_loaded->widget, &Widget::WaveFormSelectionChanged);
    m_loaded->widget.SetSelectedSnippet({start, end});
    QVERIFY(told.isEmpty());
    QCOMPARE(m_loaded->widget.GetSelectedSnippet(), Range(4.0, 5.0));
    QCOMPARE(RangeOf(m_loaded->Player()), Range(4.0, 5.0));
}

void PlayerSelectionTest::aSelectionReachesThePlayerThenTheFieldsThenTheHost()
{
    QStringList told;
    connect(&Player(), &QMediaPlayer::positionChanged, this,
            [&](qint64 position) { told << u"player %1 "_s.arg(position) + FieldTexts().join(u' '); });
    connect(&Shown(), &Widget::WaveFormSelectionChanged, this,
            [&](const Range& range) { told << u"host "_s + Written(range) + u' ' + FieldTexts().join(u' '); });
    Shown().SetSelectedSnippet({2.25, 5.5});
    QCOMPARE(told, QStringList({u"player 2250 00:00:00.000 00:00:00.000"_s,
                                u"host 2.25..5.5 00:00:02.250 00:00:05.500"_s}));
    QVERIFY(Access::HasSelection(Shown()));
    QCOMPARE(RangeOf(Player()), Range(2.25, 5.5));
}

void PlayerSelectionTest::changingTheFieldsByCodeIsSilent()
{
    const QSignalSpy start(Controls().edSelectionStart, &QLineEdit::textChanged);
    const QSignalSpy end(Controls().edSelectionEnd, &QLineEdit::textChanged);
    Shown().SetSelectedSnippet({2.25, 5.5});
    QTest::mouseClick(&Diagram(), Qt::LeftButton, {}, PixelAt(3.0));
    QCOMPARE(start.size() + end.size(), 0);
    QVERIFY(!Controls().edSelectionStart->signalsBlocked() && !Controls().edSelectionEnd->signalsBlocked());
}

void PlayerSelectionTest::aSelectionShorterThanTenMicrosecondsIsNone_data()
{
    QTest::addColumn<double>("length");
    QTest::addColumn<bool>("isSelection");
    QTest::newRow("nothing") << 0.0 << false;
    QTest::newRow("shorter") << 0.000009 << false;
    QTest::newRow("longer") << 0.000011 << true;
}

void PlayerSelectionTest::aSelectionShorterThanTenMicrosecondsIsNone()
{
    QFETCH(double, length);
    QFETCH(bool, isSelection);
    Shown().SetSelectedSnippet({1.0, 2.0});
    const Range range(4.0, 4.0 + length);
    const QSignalSpy told(&Shown(), &Widget::WaveFormSelectionChanged);
    Shown().SetSelectedSnippet(range);
    QCOMPARE(Access::HasSelection(Shown()), isSelection);
    QCOMPARE(RangeOf(Player()), isSelection ? range : Range(0.0, 10.0));
    QCOMPARE(told.size(), 1);
    QCOMPARE(told[0][0].value<Range>(), range);
    QCOMPARE(FieldTexts(), QStringList({u"00:00:04.000"_s, u"00:00:04.000"_s}));
}

void PlayerSelectionTest::showsRoundedTimes()
{
    Shown().SetSelectedSnippet({1.0625, 3.4564});
    QCOMPARE(FieldTexts(), QStringList({u"00:00:01.063"_s, u"00:00:03.456"_s}));
}

void PlayerSelectionTest::aDragSelects()
{
    const QSignalSpy told(&Shown(), &Widget::WaveFormSelectionChanged);
    QTest::mousePress(&Diagram(), Qt::LeftButton, {}, PixelAt(2.0));
    QTest::mouseMove(&Diagram(), PixelAt(4.0));
    QMouseEvent move(QEvent::MouseMove, PixelAt(5.0), Diagram().mapToGlobal(PixelAt(5.0)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&Diagram(), &move);
    QTest::mouseRelease(&Diagram(), Qt::LeftButton, {}, PixelAt(5.0));
    const Range selected = Shown().GetSelectedSnippet();
    // A pixel is about a hundredth of a second.
    QVERIFY(std::abs(selected.first - 2.0) < 0.02 && std::abs(selected.second - 5.0) < 0.02);
    QCOMPARE(RangeOf(Player()), selected);
    QVERIFY(told.size() >= 2);
    QCOMPARE(told.last()[0].value<Range>(), selected);
    QCOMPARE(FieldTexts(), QStringList({Access::ToText(selected.first), Access::ToText(selected.second)}));
}

void PlayerSelectionTest::aDragOutsideEditModePlacesThePosition()
{
    Shown().SetEditMode(false);
    QTest::mousePress(&Diagram(), Qt::LeftButton, {}, PixelAt(2.0));
    QTest::mouseRelease(&Diagram(), Qt::LeftButton, {}, PixelAt(5.0));
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 0.0));
    QVERIFY(std::abs(static_cast<double>(Player().position()) - 5000.0) < 20.0);
}

void PlayerSelectionTest::aClickPlacesThePosition()
{
    Shown().SetSelectedSnippet({2.0, 5.0});
    double clicked = 0.0;
    connect(&m_loaded->Waveform(), &BGFXWaveformWidget::AudioPositionChanged, this,
            [&clicked](double position) { clicked = position; });
    const QSignalSpy told(&Shown(), &Widget::WaveFormSelectionChanged);
    QTest::mouseClick(&Diagram(), Qt::LeftButton, {}, PixelAt(7.0));
    QVERIFY(std::abs(clicked - 7.0) < 0.02);
    QCOMPARE(Player().position(), static_cast<qint64>(clicked * 1000.0));
    QCOMPARE(told.size(), 1);
    QCOMPARE(told[0][0].value<Range>(), Range(0.0, 0.0));
    QVERIFY(!Access::HasSelection(Shown()));
    QCOMPARE(RangeOf(Player()), Range(0.0, 10.0));
    QCOMPARE(FieldTexts(), QStringList({u"00:00:00.000"_s, u"00:00:00.000"_s}));
    QCOMPARE(Controls().edCurrentPosition->text(),
             Access::ToText(static_cast<double>(Player().position()) / 1000.0));
}

void PlayerSelectionTest::aSelectionIsCutToTheVisibleRange()
{
    Q_EMIT Shown().SceneRectChangeRequested(QRectF(4.0, 0.0, 4.0, 1.0));
    QCOMPARE(Diagram().GetSceneRect().left(), 4.0);
    QCOMPARE(Diagram().GetSceneRect().right(), 8.0);
    Shown().SetSelectedSnippet({5.0, 6.0});
    TypeTime(*Controls().edSelectionEnd, u"000009500"_s);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(5.0, 8.0));
    QCOMPARE(FieldTexts(), QStringList({u"00:00:05.000"_s, u"00:00:08.000"_s}));
    TypeTime(*Controls().edSelectionStart, u"000001500"_s);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(4.0, 8.0));
    QCOMPARE(RangeOf(Player()), Range(4.0, 8.0));
}

void PlayerSelectionTest::aSelectionIsCutToNinetyMinutes()
{
    // A header alone makes a file as long as it states.
    const TemporaryFiles files;
    constexpr quint32 bytesPerSecond = 16000;
    const QString path = files.Write(
        u"long.wav"_s,
        WavTest::WavBytes{.sampleRate = bytesPerSecond / 2, .statedDataSize = 6000 * bytesPerSecond}.Build());
    QVERIFY(QFile::resize(path, 44 + 6000 * qint64(bytesPerSecond)));
    QCOMPARE(m_loaded->widget.errors.size(), 0);
    Shown().SetAudioFile(path);
    QCOMPARE(Shown().GetAudioDuration(), 6000.0);
    TypeTime(*Controls().edSelectionEnd, u"014000000"_s);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 5400.0));
    QCOMPARE(FieldTexts(), QStringList({u"00:00:00.000"_s, u"01:30:00.000"_s}));
}

void PlayerSelectionTest::settersAndGettersForwardToTheWaveform()
{
    Shown().SetSelectedSnippet({2.0, 5.0});
    QCOMPARE(m_loaded->Waveform().GetSelectedSnippet(), Range(2.0, 5.0));
    m_loaded->Waveform().SetSelectedSnippet({3.0, 6.0});
    QCOMPARE(Shown().GetSelectedSnippet(), Range(3.0, 6.0));
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerSelectionTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerselection.moc"
