#include "ui/waveform/rules/ViewColors.h"

#include <QtGui/QPalette>
#include <QtTest/QtTest>

#include <random>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;

namespace {

/** Window, its text, base, its text, highlight. */
QPalette PaletteOf(QRgb window, QRgb windowText, QRgb base, QRgb text, QRgb highlight)
{
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, windowText);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Highlight, highlight);
    return palette;
}

/** Empty when all is readable. */
QString FaultIn(const ViewColors& colors, const QColor& window)
{
    const std::tuple<const char*, QColor, QColor, double> rules[] = {
        {"scale", colors.scale, window, 4.5},
        {"tick", colors.positionTick, window, 3.0},
        {"waveform", colors.waveform, colors.background, 3.0},
        {"selection", colors.selection, colors.background, 3.0},
        {"line", colors.positionLine, colors.background, 3.0},
    };
    for (const auto& [name, color, background, least] : rules) {
        if (ContrastBetween(color, background) < least || color.alpha() != 255) {
            return QString::fromLatin1(name) + u' ' + color.name() + u" on "_s + background.name();
        }
    }
    return {};
}

} // namespace

class TestViewColors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reckonsContrast_data()
    {
        QTest::addColumn<QColor>("a");
        QTest::addColumn<QColor>("b");
        QTest::addColumn<double>("contrast");
        QTest::newRow("the most") << QColor(Qt::black) << QColor(Qt::white) << 21.0;
        QTest::newRow("none") << QColor(80, 90, 100) << QColor(80, 90, 100) << 1.0;
        QTest::newRow("the grey that just suffices for text")
            << QColor(0x76, 0x76, 0x76) << QColor(Qt::white) << 4.54;
        QTest::newRow("red") << QColor(255, 0, 0) << QColor(Qt::white) << 4.0;
        QTest::newRow("blue") << QColor(0, 0, 255) << QColor(Qt::white) << 8.59;
        QTest::newRow("transparent counts as opaque") << QColor(0, 0, 0, 0) << QColor(Qt::white) << 21.0;
        QTest::newRow("other ways to write a colour") << QColor::fromHsv(0, 255, 255) << QColor(Qt::white) << 4.0;
    }

    void reckonsContrast()
    {
        QFETCH(const QColor, a);
        QFETCH(const QColor, b);
        QFETCH(const double, contrast);
        QVERIFY2(qAbs(ContrastBetween(a, b) - contrast) < 0.005,
                 qPrintable(QString::number(ContrastBetween(a, b))));
        QCOMPARE(ContrastBetween(a, b), ContrastBetween(b, a));
    }

    void replacesWhatCannotBeRead()
    {
        const QColor fair(0, 90, 160);
        QCOMPARE(Readable(fair, Qt::white, 4.5), fair);
        QCOMPARE(Readable(QColor(250, 250, 200), Qt::white, 4.5), QColor(0, 0, 0));
        QCOMPARE(Readable(QColor(20, 20, 20), Qt::black, 4.5), QColor(255, 255, 255));
    }

    void isReadableInAnyPalette_data()
    {
        QTest::addColumn<QPalette>("palette");
        QTest::newRow("light") << PaletteOf(0xffefefef, 0xff000000, 0xffffffff, 0xff000000, 0xff308cc6);
        QTest::newRow("dark") << PaletteOf(0xff2b2b2b, 0xffe6e6e6, 0xff202020, 0xffe6e6e6, 0xff3589cd);
        QTest::newRow("high contrast, black")
            << PaletteOf(0xff000000, 0xffffffff, 0xff000000, 0xffffffff, 0xff1aebff);
        QTest::newRow("high contrast, white")
            << PaletteOf(0xffffffff, 0xff000000, 0xffffffff, 0xff000000, 0xff37006e);
        QTest::newRow("highlight as the background")
            << PaletteOf(0xffffffff, 0xff000000, 0xffffffff, 0xff000000, 0xffffffff);
        QTest::newRow("all grey") << PaletteOf(0xff808080, 0xff808080, 0xff808080, 0xff808080, 0xff808080);
        QTest::newRow("transparent text") << PaletteOf(0xffefefef, 0x80000000, 0xffffffff, 0x80000000, 0x80308cc6);
        QTest::newRow("Qt's own") << QPalette();
    }

    void isReadableInAnyPalette()
    {
        QFETCH(const QPalette, palette);
        const ViewColors colors = ColorsOf(palette);
        QCOMPARE(FaultIn(colors, palette.color(QPalette::Window)), QString());
        QVERIFY(ContrastBetween(colors.grid, colors.background) > 1.05);
        QVERIFY(ContrastBetween(colors.grid, colors.background) <
                ContrastBetween(colors.waveform, colors.background));
    }

    void isReadableInRandomPalettes()
    {
        std::mt19937 random(20261122);
        const auto any = [&] { return QRgb(random()); };
        for (int round = 0; round < 2000; ++round) {
            const QPalette palette = PaletteOf(any(), any(), any(), any(), any());
            QCOMPARE(FaultIn(ColorsOf(palette), palette.color(QPalette::Window)), QString());
        }
    }

    void theLineStandsOutFromTheWaveformToo_data()
    {
        QTest::addColumn<QRgb>("text");
        QTest::addColumn<QRgb>("base");
        QTest::addColumn<QRgb>("highlight");
        QTest::newRow("yellow on black") << 0xffffffff << 0xff000000 << 0xffffff00;
        QTest::newRow("purple on white") << 0xff000000 << 0xffffffff << 0xff37006e;
        QTest::newRow("light blue on dark grey") << 0xffe6e6e6 << 0xff202020 << 0xff9cc4e6;
        QTest::newRow("blue on dark grey") << 0xffe6e6e6 << 0xff202020 << 0xff3589cd;
    }

    void theLineStandsOutFromTheWaveformToo()
    {
        QFETCH(const QRgb, text);
        QFETCH(const QRgb, base);
        QFETCH(const QRgb, highlight);
        const ViewColors colors = ColorsOf(PaletteOf(base, text, base, text, highlight));
        QVERIFY(ContrastBetween(colors.positionLine, colors.waveform) >= 2.0);
        QVERIFY(ContrastBetween(colors.positionLine, colors.background) >= 3.0);
    }

    void takesWhatThePaletteNames()
    {
        const ViewColors colors = ColorsOf(PaletteOf(0xffefefef, 0xff101010, 0xfffefefe, 0xff202020, 0xff0060a0));
        QCOMPARE(colors.background, QColor(0xfefefe));
        QCOMPARE(colors.waveform, QColor(0x202020));
        QCOMPARE(colors.scale, QColor(0x101010));
        QCOMPARE(colors.selection, QColor(0x0060a0));
        QCOMPARE(colors.positionLine, QColor(0x0060a0));
        QCOMPARE(colors.positionTick, QColor(0x0060a0));
    }

    void takesTheColoursOfActiveWindows()
    {
        QPalette palette = PaletteOf(0xffefefef, 0xff000000, 0xffffffff, 0xff000000, 0xff308cc6);
        const ViewColors active = ColorsOf(palette);
        palette.setColor(QPalette::Inactive, QPalette::Highlight, Qt::gray);
        palette.setCurrentColorGroup(QPalette::Inactive);
        QCOMPARE(ColorsOf(palette), active);
    }
};

QTEST_GUILESS_MAIN(TestViewColors)
#include "tst_viewcolors.moc"
