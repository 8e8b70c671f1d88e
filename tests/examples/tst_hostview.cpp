#include "Contrast.h"
#include "LevelMeter.h"
#include "LevelReader.h"
#include "PlayerWindows.h"
#include "PointerLabel.h"
#include "SettingsDialog.h"
#include "SpeedMenu.h"
#include "ThemeMenu.h"
#include "Times.h"
#include "ZoomBar.h"
#include "tests/support/WavBytes.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QScopeGuard>
#include <QtGui/QAccessible>
#include <QtGui/QAction>
#include <QtGui/QWheelEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>

#include <cmath>
#include <limits>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString Recording = QStringLiteral(VANTOR_RECORDING);

void PressInMenu(Qt::Key key, int times = 1)
{
    for (int i = 0; i < times; ++i) {
        QTest::keyClick(QApplication::activePopupWidget(), key);
    }
}

/** An entry of a menu that lies in one of the menu bar, by the keyboard. */
void ChooseInMenu(PlayerWindow& window, Qt::Key menu, Qt::Key subMenu, int entry)
{
    QTest::keyClick(&window, menu, Qt::AltModifier);
    PressInMenu(subMenu);
    PressInMenu(Qt::Key_Home);
    PressInMenu(Qt::Key_Down, entry);
    PressInMenu(Qt::Key_Return);
}

/** Closes the window as a user does, so that it remembers. */
void Close(PlayerWindow& window)
{
    QTest::keyClick(&window, Qt::Key_Q, Qt::ControlModifier);
}

/** One notch away from the user: zooms in, or scrolls without Control. */
void TurnWheel(PlayerWindow& window, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
{
    QWidget* diagram = DiagramOf(window);
    const QPointF middle = diagram->rect().center();
    QWheelEvent event(middle, diagram->mapToGlobal(middle), {}, QPoint(0, 120), Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(diagram, &event);
}

/** As the window system tells of it, wherever the real pointer is. */
void MovePointer(PlayerWindow& window, const QPoint& place)
{
    // By way of its neighbour: it may stand there since the former test.
    for (const QPoint& stop : {place + QPoint(1, 0), place}) {
        QTest::mouseMove(window.windowHandle(), stop);
    }
}

double SpanOf(PlayerWindow& window)
{
    const auto [left, right] = PlayerOf(window)->GetVisibleRange();
    return right - left;
}

/** There are samples all over the view, and the position line shows. */
bool IsFilled(PlayerWindow& window)
{
    const auto* player = PlayerOf(window);
    const QWidget* diagram = DiagramOf(window);
    for (int x = 5; x < diagram->width() - 5; x += diagram->width() / 20) {
        if (std::isnan(player->GetLevelAt(diagram->mapTo(player, QPoint(x, 10))).first)) {
            return false;
        }
    }
    const auto [left, right] = player->GetVisibleRange();
    return left <= player->GetAudioPosition() && player->GetAudioPosition() <= right;
}

QSlider* SliderOf(PlayerWindow& window)
{
    return ChildNamed<QSlider>(window, u"zoom"_s);
}

/** The button for an action of the library's. */
QToolButton* ButtonOf(PlayerWindow& window, const QString& action)
{
    for (auto* button : window.findChild<ZoomBar*>()->findChildren<QToolButton*>()) {
        if (button->defaultAction()->objectName() == action) {
            return button;
        }
    }
    return nullptr;
}

QToolButton* SpeedButtonOf(PlayerWindow& window)
{
    for (auto* button : window.findChild<QToolBar*>()->findChildren<QToolButton*>()) {
        if (button->menu() && button->menu() == window.findChild<SpeedMenu*>()) {
            return button;
        }
    }
    return nullptr;
}

double RateOf(PlayerWindow& window)
{
    return PlayerOf(window)->GetPlaybackRate();
}

/** Stereo, 16 bit: the left channel at half of full scale throughout, the right one silent. */
QString WriteLeftOnly(const QTemporaryDir& folder, int frames)
{
    const QByteArray frame = WavTest::PackS16({16384, 0});
    QFile file(folder.filePath(u"left only.wav"_s));
    const QByteArray bytes = WavTest::WavBytes{.channels = 2, .data = frame.repeated(frames)}.Build();
    return file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName() : QString();
}

} // namespace

class HostViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QSettings().clear(); }

    void theThemeMenuSwitchesAtOnceAndIsRemembered_data()
    {
        QTest::addColumn<int>("theme");
        QTest::addColumn<QRgb>("background");
        QTest::newRow("light") << int(Appearance::Theme::Light) << QRgb(0xfffafafa);
        QTest::newRow("dark") << int(Appearance::Theme::Dark) << QRgb(0xff1c1c1c);
        QTest::newRow("high contrast") << int(Appearance::Theme::HighContrast) << QRgb(0xff000000);
    }

    void theThemeMenuSwitchesAtOnceAndIsRemembered()
    {
        QFETCH(const int, theme);
        QFETCH(const QRgb, background);
        const auto shown = [](PlayerWindow& window) { return DiagramOf(window)->grab().toImage().pixel(3, 3); };
        const auto isChecked = [theme](PlayerWindow& window) {
            return window.findChild<ThemeMenu*>()->actions().at(theme)->isChecked();
        };
        {
            PlayerWindow window;
            QVERIFY(Activate(window));
            QVERIFY(OpenCompletely(window, Recording));
            ChooseInMenu(window, Qt::Key_V, Qt::Key_T, theme);
            QTRY_COMPARE(shown(window), background);
            QVERIFY(isChecked(window));
            Close(window);
        }
        PlayerWindow again;
        QVERIFY(Activate(again));
        QVERIFY(OpenCompletely(again, Recording));
        QTRY_COMPARE(shown(again), background);
        QVERIFY(isChecked(again));
        ChooseInMenu(again, Qt::Key_V, Qt::Key_T, 0);
        QTRY_COMPARE(shown(again), QRgb(0xfffafafa));
        QVERIFY(!isChecked(again));
    }

    void theViewIsFilledWhereverKeysLead_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("the start") << Qt::Key_Home;
        QTest::newRow("the end") << Qt::Key_End;
        QTest::newRow("all") << Qt::Key_0;
        QTest::newRow("a second on") << Qt::Key_Right;
    }

    void theViewIsFilledWhereverKeysLead()
    {
        QFETCH(const Qt::Key, key);
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        PlayerOf(window)->UpdateAudioPosition(8.0);
        QTRY_COMPARE(PlayerOf(window)->GetAudioPosition(), 8.0);
        for (int i = 0; i < 7; ++i) {
            QTest::keyClick(&window, Qt::Key_Plus);
            QTRY_VERIFY(!PlayerOf(window)->IsReadingSamples());
        }
        QVERIFY(SpanOf(window) < 0.2);
        QTRY_VERIFY(IsFilled(window));
        QTest::keyClick(&window, key);
        QTRY_VERIFY(IsFilled(window));
        if (key != Qt::Key_0) {
            QVERIFY(SpanOf(window) < 0.2);
        }
    }

    void theSettingsDialogOffersTheThemesOfTheMenu()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        bool areColorsOffered = true;
        Answers answers;
        answers.Add<SettingsDialog>([&](SettingsDialog& dialog) {
            auto* themes = ChildNamed<QComboBox>(dialog, u"theme"_s);
            themes->setFocus();
            QTest::keyClick(themes, Qt::Key_End);
            QCOMPARE(themes->currentText(), u"High contrast"_s);
            areColorsOffered = ChildNamed<QPushButton>(dialog, u"waveform"_s)->isEnabled();
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        QTest::mouseClick(ChildNamed<QPushButton>(window, u"btnSettings"_s), Qt::LeftButton);
        QVERIFY(answers.AreGiven());
        QVERIFY(!areColorsOffered);
        QCOMPARE(Appearance::Load().theme, Appearance::Theme::HighContrast);
        QVERIFY(window.findChild<ThemeMenu*>()->actions().last()->isChecked());
    }

    void theSettingsDialogShowsTheColoursOfTheNewPaletteOfTheSystem()
    {
        const QPalette before = QApplication::palette();
        SettingsDialog dialog{Appearance()};
        const auto shown = [&dialog] {
            const auto* button = ChildNamed<QPushButton>(dialog, u"background"_s);
            return button->icon().pixmap(button->iconSize()).toImage().pixel(3, 3);
        };
        QApplication::setPalette(QColor(Qt::white));
        QTRY_COMPARE(shown(), QRgb(0xfffafafa));
        QApplication::setPalette(QColor(0x20, 0x20, 0x20));
        QTRY_COMPARE(shown(), QRgb(0xff1c1c1c));
        QApplication::setPalette(before);
    }

    void theProgramsOwnControlsAreReadable_data()
    {
        QTest::addColumn<int>("theme");
        QTest::newRow("light") << int(Appearance::Theme::Light);
        QTest::newRow("dark") << int(Appearance::Theme::Dark);
        QTest::newRow("high contrast") << int(Appearance::Theme::HighContrast);
    }

    void theProgramsOwnControlsAreReadable()
    {
        QFETCH(const int, theme);
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        ChooseInMenu(window, Qt::Key_V, Qt::Key_T, theme);
        QList<QWidget*> controls{window.menuBar(), SpeedButtonOf(window)};
        for (const QString& action : {u"ZoomIn"_s, u"ZoomOut"_s, u"ShowAll"_s, u"ShowSelection"_s}) {
            controls.append(ButtonOf(window, action));
        }
        for (auto* label : window.statusBar()->findChildren<QLabel*>()) {
            if (!label->text().isEmpty()) {
                controls.append(label);
            }
        }
        for (QWidget* control : controls) {
            const QRect inside = control->rect().adjusted(4, 4, -4, -4);
            QTRY_VERIFY2(ContrastIn(control->grab(inside).toImage()) >= 4.5, control->metaObject()->className());
        }
        // The marker of the position, on the border above the diagram.
        const QRect diagram = DiagramOf(window)->geometry();
        QWidget* view = DiagramOf(window)->parentWidget();
        PlayerOf(window)->UpdateAudioPosition(1.0);
        const auto marker = [&] {
            const int x = diagram.left() + int(diagram.width() * 1.0 / window.Duration());
            return view->grab(QRect(x - 8, diagram.top() - 12, 16, 7)).toImage();
        };
        QTRY_VERIFY(ContrastIn(marker()) >= 4.5);
        // What is no text needs less. The slider's handle is the style's own.
        QTest::keyClick(&window, Qt::Key_Plus);
        QTRY_VERIFY(ContrastIn(SliderOf(window)->grab().toImage()) >= 3.0);
        QTRY_VERIFY(ContrastIn(window.findChild<LevelMeter*>()->grab().toImage()) >= 3.0);
    }

    void theSliderFollowsTheWheelAndTheKeys()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(!SliderOf(window)->isEnabled());
        QVERIFY(OpenCompletely(window, Recording));
        QVERIFY(SliderOf(window)->isEnabled());
        QCOMPARE(SliderOf(window)->value(), 0);
        for (int i = 0; i < 3; ++i) {
            TurnWheel(window);
        }
        QVERIFY(std::abs(SpanOf(window) - window.Duration() / 2.0) < 0.001);
        const int half = SliderOf(window)->value();
        // A file of 17 s holds the shortest view, of a tenth of a second, 168 times: halves lie at steps of 135.
        QCOMPARE(half, 135);
        QTest::keyClick(&window, Qt::Key_Plus);
        QCOMPARE(SliderOf(window)->value(), 2 * half);
        QTest::keyClick(&window, Qt::Key_0);
        QCOMPARE(SliderOf(window)->value(), 0);
    }

    void theSliderZoomsByTheKeyboardAndSeeksNot()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        PlayerOf(window)->UpdateAudioPosition(4.0);
        QTRY_COMPARE(PlayerOf(window)->GetAudioPosition(), 4.0);
        QSlider* slider = SliderOf(window);
        slider->setFocus(Qt::TabFocusReason);
        QTest::keyClick(slider, Qt::Key_Right);
        QVERIFY(SpanOf(window) < window.Duration());
        const auto [left, right] = PlayerOf(window)->GetVisibleRange();
        // The position stays where it is on the screen.
        QVERIFY(std::abs((4.0 - left) / (right - left) - 4.0 / window.Duration()) < 0.001);
        QTest::keyClick(slider, Qt::Key_End);
        QVERIFY(SpanOf(window) > 0.1 && SpanOf(window) < 0.102);
        QVERIFY(PlayerOf(window)->GetVisibleRange().first < 4.0 &&
                PlayerOf(window)->GetVisibleRange().second > 4.0);
        QTest::keyClick(slider, Qt::Key_Home);
        QVERIFY(std::abs(SpanOf(window) - window.Duration()) < 0.001);
        QCOMPARE(PlayerOf(window)->GetAudioPosition(), 4.0);
    }

    void theWheelLeavesTheShortestViewOfTheSlider()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        SliderOf(window)->setFocus();
        QTest::keyClick(SliderOf(window), Qt::Key_End);
        const double shortest = SpanOf(window);
        QTest::keyClick(&window, Qt::Key_Minus);
        QVERIFY(SpanOf(window) > 1.5 * shortest);
        for (int i = 0; i < 10; ++i) {
            TurnWheel(window);
        }
        QVERIFY(SpanOf(window) > 0.1);
    }

    void theTimeUnderThePointerFollowsTheView()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        auto* label = window.findChild<PointerLabel*>();
        const QPoint place(100, 100);
        MovePointer(window, DiagramOf(window)->mapTo(&window, place));
        QString former;
        const auto isUpToDate = [&] {
            const double time = PlayerOf(window)->GetTimeAt(DiagramOf(window)->mapTo(PlayerOf(window), place));
            const bool isOther = label->text() != std::exchange(former, label->text());
            return isOther && label->text().startsWith(TextOfTime(time) + u':');
        };
        QTRY_VERIFY(!label->text().isEmpty());
        QVERIFY(isUpToDate());
        TurnWheel(window);
        QVERIFY(isUpToDate());
        window.ShowRange(4.0, 8.0);
        QVERIFY(isUpToDate());
        TurnWheel(window, Qt::NoModifier);
        QVERIFY(isUpToDate());
        QTest::keyClick(&window, Qt::Key_Plus);
        QVERIFY(isUpToDate());
        QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier,
                           DiagramOf(window)->mapTo(&window, place));
        QVERIFY(isUpToDate());
        MovePointer(window, QPoint(1, 1));
        QTRY_COMPARE(label->text(), QString());
        QTest::keyClick(&window, Qt::Key_Plus);
        QCOMPARE(label->text(), QString());
    }

    void theLevelUnderThePointerFollowsTheSamples()
    {
        const QTemporaryDir folder;
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, WriteLeftOnly(folder, 44100)));
        const auto* label = window.findChild<PointerLabel*>();
        MovePointer(window, DiagramOf(window)->mapTo(&window, QPoint(100, 100)));
        QTRY_VERIFY(!label->text().isEmpty());
        PlayerOf(window)->SetSelectedChannel(WavFile::ChannelRight);
        QTRY_VERIFY(!label->text().isEmpty() && !label->text().contains(u"dB"_s));
        PlayerOf(window)->SetSelectedChannel(WavFile::ChannelLeft);
        QTRY_VERIFY(label->text().endsWith(u": %1 dB"_s.arg(QLocale().toString(-6.0, 'f', 1))));
    }

    void theStatusBarWritesNumbersAsTheUserDoes()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        const auto restore = qScopeGuard([] { QLocale::setDefault(QLocale::system()); });
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 11.5);
        MovePointer(window, DiagramOf(window)->mapTo(&window, QPoint(100, 100)));
        QTRY_VERIFY(!window.findChild<PointerLabel*>()->text().isEmpty());
        QStringList texts;
        for (const auto* label : window.statusBar()->findChildren<QLabel*>()) {
            texts.append(label->text());
        }
        QVERIFY2(texts.contains(u"Selected: 10,500 s"_s), qPrintable(texts.join(u'\n')));
        QVERIFY(window.findChild<PointerLabel*>()->text().contains(QRegularExpression(u": -\\d+,\\d dB$"_s)));
    }

    void draggingTheSliderZooms()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        QSlider* slider = SliderOf(window);
        const int y = slider->height() / 2;
        QTest::mousePress(slider, Qt::LeftButton, Qt::NoModifier, QPoint(5, y));
        const QPointF middle(slider->width() / 2.0, y);
        QMouseEvent move(QEvent::MouseMove, middle, slider->mapToGlobal(middle), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(slider, &move);
        QTest::mouseRelease(slider, Qt::LeftButton, Qt::NoModifier, middle.toPoint());
        QVERIFY2(slider->value() > 400 && slider->value() < 600, qPrintable(QString::number(slider->value())));
        QVERIFY(std::abs(SpanOf(window) - ZoomBar::SpanAt(slider->value(), window.Duration())) < 0.001);
    }

    void theButtonsZoom()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        const auto click = [&](const QString& action) {
            QTest::mouseClick(ButtonOf(window, action), Qt::LeftButton);
        };
        click(u"ZoomIn"_s);
        QVERIFY(std::abs(SpanOf(window) - window.Duration() / 2.0) < 0.001);
        click(u"ZoomOut"_s);
        QVERIFY(std::abs(SpanOf(window) - window.Duration()) < 0.001);
        window.SelectRange(2.0, 4.0);
        click(u"ShowSelection"_s);
        QCOMPARE(PlayerOf(window)->GetVisibleRange(), std::make_pair(2.0, 4.0));
        click(u"ShowAll"_s);
        QVERIFY(std::abs(SpanOf(window) - window.Duration()) < 0.001);
    }

    void aFileShorterThanTheShortestViewIsNotZoomed()
    {
        const QTemporaryDir folder;
        const QString path = WriteLeftOnly(folder, 2205);
        PlayerWindow window;
        QVERIFY(Open(window, path));
        QVERIFY(!SliderOf(window)->isEnabled());
        QVERIFY(Open(window, Recording));
        QVERIFY(SliderOf(window)->isEnabled());
    }

    void everyStepOfTheSliderIsFoundAgain_data()
    {
        QTest::addColumn<double>("length");
        for (const double length : {0.11, 0.5, 1.0, 17.0, 3600.0, 1e6, 1e9}) {
            QTest::addRow("%g s", length) << length;
        }
    }
    void everyStepOfTheSliderIsFoundAgain()
    {
        QFETCH(const double, length);
        QCOMPARE(ZoomBar::SpanAt(0, length), length);
        for (int step = 0; step <= ZoomBar::steps; ++step) {
            const double span = ZoomBar::SpanAt(step, length);
            QVERIFY(span > 0.1 && span <= length);
            QCOMPARE(ZoomBar::StepFor(span, length), step);
        }
    }

    void whatIsNoLengthOrSpanIsTheFirstStep()
    {
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        constexpr double infinity = std::numeric_limits<double>::infinity();
        for (const double odd : {0.0, -1.0, 0.05, nan, infinity}) {
            QCOMPARE(ZoomBar::StepFor(1.0, odd), 0);
        }
        for (const double odd : {0.0, -1.0, nan, infinity}) {
            QCOMPARE(ZoomBar::StepFor(odd, 10.0), 0);
        }
        QCOMPARE(ZoomBar::SpanAt(500, 0.05), 0.05);
        QCOMPARE(ZoomBar::StepFor(1e-9, 10.0), ZoomBar::steps);
    }

    void theStepOfTheWheelIsChosenAndRemembered()
    {
        {
            PlayerWindow window;
            QVERIFY(Activate(window));
            QVERIFY(OpenCompletely(window, Recording));
            Answers answers;
            answers.Add<SettingsDialog>([&](SettingsDialog& dialog) {
                auto* notches = ChildNamed<QSpinBox>(dialog, u"notches"_s);
                QCOMPARE(notches->value(), 3);
                notches->setFocus();
                notches->selectAll();
                QTest::keyClicks(notches, u"1"_s);
                QTest::keyClick(&dialog, Qt::Key_Return);
            });
            QTest::mouseClick(ChildNamed<QPushButton>(window, u"btnSettings"_s), Qt::LeftButton);
            QVERIFY(answers.AreGiven());
            TurnWheel(window);
            QVERIFY(std::abs(SpanOf(window) - window.Duration() / 2.0) < 0.001);
            QTest::keyClick(&window, Qt::Key_0);
            Close(window);
        }
        PlayerWindow again;
        QVERIFY(Activate(again));
        QVERIFY(OpenCompletely(again, Recording));
        TurnWheel(again);
        QVERIFY(std::abs(SpanOf(again) - again.Duration() / 2.0) < 0.001);
    }

    void takesNoHarmFromDamagedSettings_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("text") << QVariant(u"nan"_s);
        QTest::newRow("large") << QVariant(1e300);
        QTest::newRow("negative") << QVariant(-7);
    }
    void takesNoHarmFromDamagedSettings()
    {
        QFETCH(const QVariant, value);
        QSettings().setValue(u"theme"_s, value);
        QSettings().setValue(u"zoomNotches"_s, value);
        const Appearance appearance = Appearance::Load();
        QCOMPARE(appearance.theme, Appearance::Theme::System);
        QVERIFY(appearance.zoomNotches >= 1 && appearance.zoomNotches <= 10);
    }

    void theKeysChangeTheSpeed()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        QCOMPARE(RateOf(window), 1.0);
        QTest::keyClick(&window, Qt::Key_Greater);
        QCOMPARE(RateOf(window), 1.25);
        QCOMPARE(SpeedButtonOf(window)->text(), u"%1×"_s.arg(QLocale().toString(1.25)));
        for (int i = 0; i < 5; ++i) {
            QTest::keyClick(&window, Qt::Key_Greater);
        }
        QCOMPARE(RateOf(window), 2.0);
        for (int i = 0; i < 7; ++i) {
            QTest::keyClick(&window, Qt::Key_Less);
        }
        QCOMPARE(RateOf(window), 0.5);
        QTest::keyClick(&window, Qt::Key_1);
        QCOMPARE(RateOf(window), 1.0);
    }

    void theMenuChangesTheSpeed()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        const auto checked = [&] {
            QStringList texts;
            for (const QAction* action : window.findChild<SpeedMenu*>()->actions()) {
                if (action->isChecked()) {
                    texts.append(action->text());
                }
            }
            return texts;
        };
        QCOMPARE(checked(), QStringList(u"1×"_s));
        ChooseInMenu(window, Qt::Key_P, Qt::Key_P, 0);
        QCOMPARE(RateOf(window), 0.5);
        QCOMPARE(checked(), QStringList(u"%1×"_s.arg(QLocale().toString(0.5))));
    }

    void theSpeedStaysForTheNextFileAndNotForTheNextStart()
    {
        const QTemporaryDir folder;
        {
            PlayerWindow window;
            QVERIFY(Activate(window));
            QVERIFY(OpenCompletely(window, Recording));
            QTest::keyClick(&window, Qt::Key_Greater);
            QVERIFY(OpenCompletely(window, WriteLeftOnly(folder, 44100)));
            QCOMPARE(RateOf(window), 1.25);
            QCOMPARE(SpeedButtonOf(window)->text(), u"%1×"_s.arg(QLocale().toString(1.25)));
            Close(window);
        }
        PlayerWindow again;
        QCOMPARE(RateOf(again), 1.0);
        QCOMPARE(SpeedButtonOf(again)->text(), u"1×"_s);
    }

    void theMeterShowsWhatIsPlayed_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("right");
        QTest::newRow("whole file") << 0.0 << 60.0;
        QTest::newRow("far in, elsewhere") << 50.0 << 50.2;
    }
    void theMeterShowsWhatIsPlayed()
    {
        QFETCH(const double, left);
        QFETCH(const double, right);
        const QTemporaryDir folder;
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, WriteLeftOnly(folder, 60 * 44100)));
        PlayerOf(window)->SetFollowsPosition(false);
        window.ShowRange(left, right);
        const auto* meter = window.findChild<LevelMeter*>();
        constexpr double silence = LevelMeter::lowest;
        QCOMPARE(meter->Levels(), QList<double>{silence});

        const auto isLeftOnly = [&] {
            const QList<double> levels = meter->Levels();
            return levels.size() == 2 && std::abs(levels.at(0) + 6.02) < 0.01 && levels.at(1) == silence;
        };
        QTest::keyClick(&window, Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(isLeftOnly(), 15000);
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(window.findChild<LevelMeter*>());
        QCOMPARE(accessible->valueInterface()->currentValue(), QVariant(meter->Loudest()));
        QCOMPARE(accessible->text(QAccessible::Value), u"-6 dB"_s);
        QCOMPARE(accessible->text(QAccessible::Name), u"Level"_s);

        // The silent channel alone; the other one falls.
        PlayerOf(window)->SetSelectedChannel(WavFile::ChannelRight);
        QTRY_COMPARE_WITH_TIMEOUT(meter->Levels(), QList<double>{silence}, 15000);
        QVERIFY(PlayerOf(window)->IsPlaying());
        PlayerOf(window)->SetSelectedChannel(WavFile::ChannelLeftRight);
        QTRY_VERIFY_WITH_TIMEOUT(isLeftOnly(), 15000);
        QTest::keyClick(&window, Qt::Key_Space);
        QTRY_COMPARE(meter->Loudest(), silence);
        QCOMPARE(accessible->text(QAccessible::Value), u"silent"_s);
    }

    void theMeterLeavesOutNothingBetweenTwoLooks()
    {
        constexpr int rate = 44100;
        // One loud sample, a second in.
        QByteArray samples(qsizetype(3) * rate * 2, '\0');
        samples.replace(qsizetype(rate) * 2, 2, WavTest::PackS16({16384}));
        const QTemporaryDir folder;
        QFile file(folder.filePath(u"click.wav"_s));
        const QByteArray bytes = WavTest::WavBytes{.data = samples}.Build();
        QVERIFY(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size() && file.flush());
        PlayerWindow window;
        QVERIFY(Open(window, file.fileName()));
        const auto look = [&](double before, double seconds) {
            LevelReader reader;
            reader.PeaksBefore(before, *PlayerOf(window));
            return reader.PeaksBefore(seconds, *PlayerOf(window)).value(0) > 0.4;
        };
        // 33 ms later, at one and at two times the speed.
        QVERIFY(look(0.995, 1.028));
        QVERIFY(look(0.995, 1.061));
        QVERIFY(look(0.995, 1.19));
        // In the last 50 ms, whatever was before.
        QVERIFY(look(1.02, 1.04));
        QVERIFY(look(2.5, 1.04));
        // A jump is not played.
        QVERIFY(!look(0.1, 1.1));
        QVERIFY(!look(0.5, 0.9));
        QVERIFY(!look(1.01, 1.1));
    }

    void everyToolHasAToolTipAndAName()
    {
        const PlayerWindow window;
        for (const auto* bar : window.findChildren<QToolBar*>()) {
            for (const auto* control : bar->findChildren<QWidget*>()) {
                const bool isTool = qobject_cast<const QSlider*>(control) ||
                                    qobject_cast<const LevelMeter*>(control) ||
                                    qobject_cast<const QToolButton*>(control);
                // Qt's own button for what has no room.
                if (isTool && control->objectName() != "qt_toolbar_ext_button"_L1) {
                    QVERIFY(!control->toolTip().isEmpty());
                    auto* accessible = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(control));
                    QVERIFY(accessible && !accessible->text(QAccessible::Name).isEmpty());
                }
            }
        }
    }

    void theWindowIsNoHigherThanItsWidthNeeds()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QCOMPARE(window.size(), QSize(1000, 480));
    }

    void theWindowBecomesAsNarrowAs480Pixels()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        window.resize(480, 480);
        QTRY_COMPARE(window.width(), 480);
        QVERIFY(SliderOf(window)->isVisible());
    }
};

int main(int argc, char* argv[])
{
    return RunApart<HostViewTest>(argc, argv);
}

#include "tst_hostview.moc"
