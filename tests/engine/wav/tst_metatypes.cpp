#include <QtCore/QMetaType>
#include <QtTest/QtTest>

/** Does not know the class: whoever loads the library finds its type by name. */
class TestMetaTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheChannelFormatByItsNameWithoutTouchingTheClass()
    {
        const QMetaType type = QMetaType::fromName("WavFile::ChannelFormat");
        QVERIFY(type.isValid());
        QCOMPARE(type.name(), "WavFile::ChannelFormat");
        QCOMPARE(type.sizeOf(), qsizetype(sizeof(int)));
        QVERIFY(type.flags().testFlag(QMetaType::IsEnumeration));
    }
};

QTEST_APPLESS_MAIN(TestMetaTypes)
#include "tst_metatypes.moc"
