#include "PaintRecorder.h"
#include "WaveformTestAccess.h"

#include <QtGui/QFontMetrics>
#include <QtTest/QtTest>
#include <QtWidgets/QLayout>

#include <algorithm>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;

namespace {

struct Label
{
    QString text;
    QRectF place;
};

QString Describe(const Label& label)
{
    const QRectF& r = label.place;
    return u"\"%1\" at %2,%3 %4x%5"_s.arg(label.text).arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

bool IsAmplitude(const Label& label)
{
    return label.text.endsWith(u' ');
}

struct Bench
{
    Bench()
    {
        widget.SetLabelsFit(true);
        widget.resize(600, 160);
        widget.Initilize({}, 100.0);
        widget.grab(); // lays it out
    }

    void UseFont(int points)
    {
        QFont font = widget.font();
        font.setPointSize(points);
        widget.setFont(font);
        widget.layout()->activate();
    }

    /** What a view as wide as that shows of a file as long as that. */
    void Show(int width, double left, double span)
    {
        widget.resize(width, 160);
        widget.layout()->activate();
        widget.OnSceneRectChangeRequested(QRectF(left, 0.0, span, 1.0));
    }

    /** What the widget itself writes, without its children. */
    [[nodiscard]] QList<Label> Labels()
    {
        PaintRecorder recorder(widget);
        widget.render(&recorder, {}, {}, {});
        static const QRegularExpression pattern(u"^text \"(.*)\" #\\w+ ([^,]+),(.+)$"_s);
        const QFontMetrics metrics(widget.font());
        QList<Label> labels;
        for (const QString& line : recorder.Lines()) {
            if (const auto match = pattern.match(line); match.hasMatch()) {
                const QString text = match.captured(1);
                const QPointF base(match.captured(2).toDouble(), match.captured(3).toDouble());
                labels << Label{text, QRectF(base.x(), base.y() - metrics.ascent(),
                                             metrics.horizontalAdvance(text), metrics.height())};
            }
        }
        return labels;
    }

    [[nodiscard]] QStringList Times()
    {
        QStringList times;
        for (const Label& label : Labels()) {
            if (!IsAmplitude(label)) {
                times << label.text;
            }
        }
        return times;
    }

    BGFXWaveformWidget widget;
};

/** Empty when all is well. Positions are recorded to six digits. */
QString FaultIn(const QList<Label>& labels, const QSize& size)
{
    const QRectF all = QRectF(QPointF(0.0, 0.0), size).adjusted(-0.01, -0.01, 0.01, 0.01);
    for (qsizetype i = 0; i < labels.size(); ++i) {
        if (!all.contains(labels[i].place)) {
            return Describe(labels[i]) + u" is cut off"_s;
        }
        for (qsizetype k = 0; k < i; ++k) {
            if (labels[k].place.intersects(labels[i].place.adjusted(0.01, 0.01, -0.01, -0.01))) {
                return Describe(labels[k]) + u" overprints "_s + Describe(labels[i]);
            }
        }
    }
    return {};
}

} // namespace

class TestWaveformLabels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void overprintAndAreCutOffAtFirst()
    {
        Bench bench;
        QVERIFY(bench.widget.GetLabelsFit());
        bench.widget.SetLabelsFit(false);
        QVERIFY(!bench.widget.GetLabelsFit());
        bench.UseFont(24);
        QVERIFY(!FaultIn(bench.Labels(), bench.widget.size()).isEmpty());
        QCOMPARE(Access::DiagramOf(bench.widget).pos(), QPoint(30, 20));
        BGFXWaveformWidget fresh;
        QVERIFY(!fresh.GetLabelsFit());
    }

    void fitWithAnyFont_data()
    {
        QTest::addColumn<int>("points");
        for (int points = 6; points <= 24; ++points) {
            QTest::addRow("%d points", points) << points;
        }
    }

    void fitWithAnyFont()
    {
        QFETCH(const int, points);
        Bench bench;
        bench.UseFont(points);
        int times = 0;
        for (const double length : {0.4, 2.0, 9.0, 60.0, 100.0, 600.0, 7200.0, 40000.0}) {
            bench.widget.Initilize({}, length);
            for (int width = 150; width <= 1650; width += 125) {
                for (const double left : {0.0, length * 0.33, length * 0.73}) {
                    bench.Show(width, left, left == 0.0 ? length : length * 0.27);
                    const QList<Label> labels = bench.Labels();
                    QCOMPARE(FaultIn(labels, bench.widget.size()), QString());
                    QVERIFY(std::count_if(labels.begin(), labels.end(), &IsAmplitude) >= 2);
                    times += int(labels.size()) - 3;
                }
            }
        }
        QVERIFY(times > 300);
    }

    void theFirstTimeStandsBesideTheAmplitude()
    {
        Bench bench;
        const QList<Label> labels = bench.Labels();
        QCOMPARE(labels.first().text, u"0 sec"_s);
        const auto topmost =
            std::find_if(labels.begin(), labels.end(), [](const Label& l) { return l.text == u"1 "; });
        QVERIFY(topmost != labels.end());
        QVERIFY(labels.first().place.left() >= topmost->place.right());
        QVERIFY(labels.first().place.left() - topmost->place.right() < 1.0);
    }

    void theLastTimeStaysWhole()
    {
        Bench bench;
        // A step of 10 seconds; 60 is on the right border, 20 pixels before the widget's own.
        bench.Show(800, 0.0, 60.0);
        const Label last = bench.Labels().at(6);
        QCOMPARE(last.text, u"1:00.000 min"_s);
        QVERIFY(qAbs(last.place.right() - 800.0) < 0.5);
    }

    void denseTimesKeepTheirPlacesWhileTheViewIsPanned()
    {
        Bench bench;
        bench.Show(420, 0.0, 9.5);
        QCOMPARE(bench.Times(),
                 (QStringList{u"0 sec"_s, u"2.000 sec"_s, u"4.000 sec"_s, u"6.000 sec"_s, u"8.000 sec"_s}));
        bench.Show(420, 0.8, 9.5);
        QCOMPARE(bench.Times(),
                 (QStringList{u"2.000 sec"_s, u"4.000 sec"_s, u"6.000 sec"_s, u"8.000 sec"_s, u"10.000 sec"_s}));
    }

    void bordersGrowWithTheFontAndShrinkAgain()
    {
        Bench bench;
        const QPoint usual = Access::DiagramOf(bench.widget).pos();
        QCOMPARE(usual, QPoint(30, qMax(20, QFontMetrics(bench.widget.font()).height() + 12)));
        bench.UseFont(24);
        const QPoint large = Access::DiagramOf(bench.widget).pos();
        QVERIFY(large.x() > 40);
        QVERIFY(large.y() > 30);
        QVERIFY(large.y() > usual.y() + 10);
        bench.widget.SetLabelsFit(false);
        bench.widget.grab();
        QCOMPARE(Access::DiagramOf(bench.widget).pos(), QPoint(30, 20));
        bench.widget.SetLabelsFit(true);
        bench.widget.grab();
        QCOMPARE(Access::DiagramOf(bench.widget).pos(), large);
        bench.UseFont(9);
        QCOMPARE(Access::DiagramOf(bench.widget).pos(), usual);
    }

    void timesLeaveRoomForTheMarkerOfThePosition()
    {
        Bench bench;
        for (const int points : {6, 9, 24}) {
            bench.UseFont(points);
            QVERIFY(!bench.Times().isEmpty());
            for (const Label& label : bench.Labels()) {
                if (!IsAmplitude(label)) {
                    QVERIFY(label.place.bottom() <= Access::DiagramOf(bench.widget).y() - 12.0 + 0.01);
                }
            }
        }
    }

    void bordersGrowWithTheAmplitudes()
    {
        Bench bench;
        bench.widget.UpdateAudioSampleBuffer({0.0F, 2'000'000.0F});
        bench.widget.Initilize({}, 10.0);
        bench.widget.grab();
        QVERIFY(Access::DiagramOf(bench.widget).x() > 30);
        QCOMPARE(FaultIn(bench.Labels(), bench.widget.size()), QString());
    }

    void aLowDiagramLeavesTheMiddleOut()
    {
        Bench bench;
        bench.UseFont(24);
        bench.widget.resize(600, 120);
        bench.widget.grab();
        QStringList texts;
        for (const Label& label : bench.Labels()) {
            texts << label.text;
        }
        QVERIFY(texts.contains(u"1 "_s));
        QVERIFY(texts.contains(u"-1 "_s));
        QVERIFY(!texts.contains(u"0 "_s));
    }

    void stayWhereTheyWereWithoutAFile()
    {
        Bench bench;
        bench.widget.Reset();
        QCOMPARE(bench.Times(), QStringList{});
        QCOMPARE(bench.Labels().size(), 3);
    }
};

QTEST_MAIN(TestWaveformLabels)
#include "tst_waveformlabels.moc"
