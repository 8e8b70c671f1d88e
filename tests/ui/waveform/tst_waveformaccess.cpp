#include "WaveformPicture.h"
#include "WaveformTestAccess.h"
#include "ui/waveform/rules/ViewColors.h"

#include <QtGui/QAccessible>
#include <QtTest/QtTest>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <array>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;

namespace {

/** A file of 100 seconds in a window with a field before and one behind it. */
struct Window
{
    Window()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&before);
        layout->addWidget(&view);
        layout->addWidget(&behind);
        window.resize(500, 260);
        view.Initilize({}, 100.0);
    }

    [[nodiscard]] bool Show()
    {
        window.show();
        window.activateWindow();
        before.setFocus();
        return QTest::qWaitForWindowActive(&window) && QTest::qWaitFor([this] { return before.hasFocus(); });
    }

    QWidget window;
    QLineEdit before;
    BGFXWaveformWidget view;
    QLineEdit behind;
};

} // namespace

class TestWaveformAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesNoFocusAtFirst()
    {
        Window window;
        QVERIFY(!window.view.GetTakesFocus());
        QCOMPARE(window.view.focusPolicy(), Qt::NoFocus);
        QVERIFY(window.Show());
        QTest::keyClick(&window.before, Qt::Key_Tab);
        QTRY_VERIFY(window.behind.hasFocus());
        QTest::mouseClick(&Access::DiagramOf(window.view), Qt::LeftButton, {}, {50, 20});
        QVERIFY(window.behind.hasFocus());
    }

    void takesTheFocusByTabAndByAClick()
    {
        Window window;
        window.view.SetTakesFocus(true);
        QVERIFY(window.Show());
        QTest::keyClick(&window.before, Qt::Key_Tab);
        QTRY_VERIFY(window.view.hasFocus());
        QTest::keyClick(&window.view, Qt::Key_Tab);
        QTRY_VERIFY(window.behind.hasFocus());
        QTest::mouseClick(&Access::DiagramOf(window.view), Qt::LeftButton, {}, {50, 20});
        QTRY_VERIFY(window.view.hasFocus());
    }

    void showsTheFocusAsAFrame()
    {
        Window window;
        window.view.SetTakesFocus(true);
        window.view.SetFrameColor(Qt::green);
        QVERIFY(window.Show());
        const QColor accent = AccentOf(window.view.palette());
        const QRect diagram = Access::DiagramOf(window.view).geometry();
        /** Shares of a colour beside the four sides of the waveform. */
        const auto sides = [&](const QColor& color) {
            const WaveformPicture picture(window.view);
            const double left = diagram.left();
            const double top = diagram.top();
            const double right = left + diagram.width();
            const double bottom = top + diagram.height();
            return std::array{picture.ShareInColumn(color, left - 1.5, top + 10.0, bottom - 10.0),
                              picture.ShareInColumn(color, right + 0.5, top + 10.0, bottom - 10.0),
                              picture.ShareInRow(color, top - 1.5, left + 10.0, right - 10.0),
                              picture.ShareInRow(color, bottom + 0.5, left + 10.0, right - 10.0)};
        };
        QVERIFY(std::ranges::max(sides(Qt::green)) > 0.9);
        QVERIFY(std::ranges::max(sides(accent)) < 0.1);
        window.view.setFocus();
        QTRY_VERIFY(window.view.hasFocus());
        QVERIFY(std::ranges::min(sides(accent)) > 0.9);
        QVERIFY(std::ranges::max(sides(Qt::green)) < 0.1);
        window.behind.setFocus();
        QVERIFY(std::ranges::max(sides(Qt::green)) > 0.9);
    }

    void leavesAllKeysToTheParent()
    {
        Window window;
        window.view.SetTakesFocus(true);
        for (const auto key :
             {Qt::Key_Space, Qt::Key_Left, Qt::Key_Home, Qt::Key_Plus, Qt::Key_Z, Qt::Key_Return}) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(&window.view, &event);
            QVERIFY(!event.isAccepted());
        }
    }

    void tellsPositionAndLengthAsAValue()
    {
        BGFXWaveformWidget view;
        view.setAccessibleName(u"Waveform"_s);
        view.Initilize({}, 100.0);
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&view);
        QVERIFY(interface);
        QCOMPARE(interface->role(), QAccessible::Slider);
        QVERIFY(interface->state().readOnly);
        QVERIFY(!interface->state().focusable);
        QCOMPARE(interface->text(QAccessible::Name), u"Waveform"_s);
        QAccessibleValueInterface* value = interface->valueInterface();
        QVERIFY(value);
        QCOMPARE(value->minimumValue(), QVariant(0.0));
        QCOMPARE(value->maximumValue(), QVariant(100.0));
        QCOMPARE(value->currentValue(), QVariant(0.0));
        QCOMPARE(interface->text(QAccessible::Value), u"0 sec of 1:40.000 min"_s);
        view.SetAudioPosition(75.25);
        QCOMPARE(value->currentValue(), QVariant(75.25));
        QCOMPARE(interface->text(QAccessible::Value), u"1:15.250 min of 1:40.000 min"_s);
        value->setCurrentValue(10.0);
        QCOMPARE(view.GetAudioPosition(), 75.25);
        view.SetTakesFocus(true);
        QVERIFY(interface->state().focusable);
        view.SetDelay(20.0);
        QCOMPARE(value->maximumValue(), QVariant(120.0));
    }

    void tellsTheSelectionAsItsDescription()
    {
        BGFXWaveformWidget view;
        view.Initilize({}, 100.0);
        const QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&view);
        QCOMPARE(interface->text(QAccessible::Description), u"Nothing is selected."_s);
        view.SetSelectedSnippet({10.0, 75.25});
        QCOMPARE(interface->text(QAccessible::Description), u"Selected from 10.000 sec to 1:15.250 min."_s);
        view.setAccessibleDescription(u"My file."_s);
        QCOMPARE(interface->text(QAccessible::Description),
                 u"My file. Selected from 10.000 sec to 1:15.250 min."_s);
        view.ClearSelection();
        QCOMPARE(interface->text(QAccessible::Description), u"My file. Nothing is selected."_s);
    }

    void valuesStayWithinTheFile_data()
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
        QTest::addColumn<double>("duration");
        QTest::addColumn<double>("position");
        QTest::addColumn<double>("length");
        QTest::addColumn<double>("value");
        QTest::newRow("behind the end") << 100.0 << 200.0 << 100.0 << 100.0;
        QTest::newRow("before the start") << 100.0 << -5.0 << 100.0 << 0.0;
        QTest::newRow("position not a number") << 100.0 << notANumber << 100.0 << 0.0;
        QTest::newRow("no file") << 0.0 << 5.0 << 0.0 << 0.0;
        QTest::newRow("negative length") << -3.0 << 5.0 << 0.0 << 0.0;
        QTest::newRow("length not a number") << notANumber << 5.0 << 0.0 << 0.0;
        QTest::newRow("infinite length") << infinity << 5.0 << std::numeric_limits<double>::max() << 5.0;
    }

    void valuesStayWithinTheFile()
    {
        QFETCH(const double, duration);
        QFETCH(const double, position);
        BGFXWaveformWidget view;
        view.Initilize({}, duration);
        view.SetFollowsPosition(false);
        view.SetAudioPosition(position);
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&view);
        QTEST(interface->valueInterface()->maximumValue().toDouble(), "length");
        QTEST(interface->valueInterface()->currentValue().toDouble(), "value");
        QVERIFY(!interface->text(QAccessible::Value).isEmpty());
    }

    void derivedViewsAreReadToo()
    {
        class Derived : public BGFXWaveformWidget
        {
        };
        Derived view;
        QVERIFY(QAccessible::queryAccessibleInterface(&view)->valueInterface());
        QVERIFY(!QAccessible::queryAccessibleInterface(&Access::ScrollBarOf(view))
                     ->text(QAccessible::Value)
                     .contains(u"of"_s));
    }

    void theInterfaceGoesWithTheView()
    {
        auto view = std::make_unique<BGFXWaveformWidget>();
        const QAccessible::Id id = QAccessible::uniqueId(QAccessible::queryAccessibleInterface(view.get()));
        view.reset();
        const QAccessibleInterface* interface = QAccessible::accessibleInterface(id);
        QVERIFY(interface == nullptr || !interface->isValid());
    }
};

QTEST_MAIN(TestWaveformAccess)
#include "tst_waveformaccess.moc"
