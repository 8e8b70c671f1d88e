#include "ui/player/SelectionSteps.h"

#include <QtTest/QTest>

#include <limits>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

constexpr double dropped = -1.0;
constexpr double duration = 10.0;

/** The new place, or `dropped`. */
double Outcome(const std::optional<double>& moved)
{
    return moved.value_or(dropped);
}

void AddColumns()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::addColumn<double>("step");
    QTest::addColumn<double>("moved");
}

Selection GivenSelection()
{
    QFETCH(double, start);
    QFETCH(double, end);
    return {start, end};
}

double GivenStep()
{
    QFETCH(double, step);
    return step;
}

} // namespace

class SelectionStepsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stepsAHundredthOrAWholeSecond();
    void movesTheStartBack_data();
    void movesTheStartBack();
    void movesTheStartOn_data();
    void movesTheStartOn();
    void movesTheEndBack_data();
    void movesTheEndBack();
    void movesTheEndOn_data();
    void movesTheEndOn();
    void acceptsTimesOfTheFile_data();
    void acceptsTimesOfTheFile();
    void measuresASelection();
};

void SelectionStepsTest::stepsAHundredthOrAWholeSecond()
{
    QCOMPARE(SelectionStep(false), 0.01);
    QCOMPARE(SelectionStep(true), 1.0);
}

void SelectionStepsTest::movesTheStartBack_data()
{
    AddColumns();
    QTest::newRow("within") << 2.5 << 4.0 << 1.0 << 1.5;
    QTest::newRow("to the start of the file") << 1.0 << 4.0 << 1.0 << 0.0;
    QTest::newRow("near the start, dropped whole") << 0.5 << 4.0 << 1.0 << dropped;
    QTest::newRow("at the start") << 0.0 << 4.0 << 0.01 << dropped;
    QTest::newRow("nothing selected") << 0.0 << 0.0 << 1.0 << dropped;
}

void SelectionStepsTest::movesTheStartBack()
{
    QTEST(Outcome(StartMovedBack(GivenSelection(), GivenStep())), "moved");
}

void SelectionStepsTest::movesTheStartOn_data()
{
    AddColumns();
    QTest::newRow("within") << 2.5 << 4.0 << 1.0 << 3.5;
    QTest::newRow("onto the end, dropped") << 3.0 << 4.0 << 1.0 << dropped;
    QTest::newRow("across the end, dropped whole") << 3.5 << 4.0 << 1.0 << dropped;
    QTest::newRow("nothing selected") << 0.0 << 0.0 << 0.01 << dropped;
}

void SelectionStepsTest::movesTheStartOn()
{
    QTEST(Outcome(StartMovedOn(GivenSelection(), GivenStep())), "moved");
}

void SelectionStepsTest::movesTheEndBack_data()
{
    AddColumns();
    QTest::newRow("within") << 2.5 << 4.0 << 1.0 << 3.0;
    QTest::newRow("onto the start, dropped") << 3.0 << 4.0 << 1.0 << dropped;
    QTest::newRow("across the start, dropped whole") << 3.5 << 4.0 << 1.0 << dropped;
    QTest::newRow("nothing selected") << 0.0 << 0.0 << 0.01 << dropped;
}

void SelectionStepsTest::movesTheEndBack()
{
    QTEST(Outcome(EndMovedBack(GivenSelection(), GivenStep())), "moved");
}

void SelectionStepsTest::movesTheEndOn_data()
{
    AddColumns();
    QTest::newRow("within") << 2.5 << 4.0 << 1.0 << 5.0;
    QTest::newRow("to the end of the file") << 2.5 << 9.0 << 1.0 << 10.0;
    QTest::newRow("across the end of the file, dropped whole") << 2.5 << 9.5 << 1.0 << dropped;
    QTest::newRow("at the end of the file") << 2.5 << 10.0 << 0.01 << dropped;
    QTest::newRow("nothing selected") << 0.0 << 0.0 << 1.0 << 1.0;
}

void SelectionStepsTest::movesTheEndOn()
{
    QTEST(Outcome(EndMovedOn(GivenSelection(), GivenStep(), duration)), "moved");
}

void SelectionStepsTest::acceptsTimesOfTheFile_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("its start") << 0.0 << true;
    QTest::newRow("its end") << 10.0 << true;
    QTest::newRow("before it") << -0.001 << false;
    QTest::newRow("behind it") << 10.001 << false;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << false;
}

void SelectionStepsTest::acceptsTimesOfTheFile()
{
    QFETCH(double, time);
    QTEST(LiesInFile(time, duration), "isAccepted");
}

void SelectionStepsTest::measuresASelection()
{
    QCOMPARE(LengthOf({2.0, 5.5}), 3.5);
    QCOMPARE(LengthOf({5.5, 2.0}), 3.5);
    QCOMPARE(LengthOf({}), 0.0);
    QCOMPARE(shortestSelection, 0.00001);
}

QTEST_APPLESS_MAIN(SelectionStepsTest)

#include "tst_selectionsteps.moc"
