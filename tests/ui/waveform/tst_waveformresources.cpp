#include <QtCore/QFile>
#include <QtCore/QMetaType>
#include <QtSvg/QSvgRenderer>
#include <QtTest/QtTest>

using namespace Qt::Literals::StringLiterals;

/** Knows nothing of the classes: whoever loads the library finds these by name. */
class TestWaveformResources : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheSelectionTypeByItsName()
    {
        const QMetaType type = QMetaType::fromName("std::pair<double,double>");
        QVERIFY(type.isValid());
        QCOMPARE(type.sizeOf(), qsizetype(2 * sizeof(double)));
    }

    void embedsAnIconForThePosition()
    {
        const QString name = u":/Resources/vantoraudioArrowDownLightBlue.svg"_s;
        QVERIFY(QFile::exists(name));
        QSvgRenderer icon(name);
        QVERIFY(icon.isValid());
        QCOMPARE(icon.defaultSize(), QSize(10, 6));
    }
};

QTEST_MAIN(TestWaveformResources)
#include "tst_waveformresources.moc"
