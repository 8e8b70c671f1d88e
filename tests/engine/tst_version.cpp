#include <vantorAudioEngine/Version.h>

#include <QtTest/QtTest>

using namespace vantoraudio::AudioEngine;

class TestVersion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fillsPatchThenMinorThenMajor()
    {
        int first = 0;
        int second = 0;
        int third = 0;
        libVersion(first, second, third);
        QCOMPARE(first, 2);
        QCOMPARE(second, 122);
        QCOMPARE(third, 1);
    }

    void isOneOneHundredTwentyTwoTwoAsText() { QCOMPARE(libVersionString(), QStringLiteral("1.122.2")); }

    void isTheVersionOfTheProject() { QCOMPARE(libVersionString(), QStringLiteral(VANTOR_PROJECT_VERSION)); }
};

QTEST_APPLESS_MAIN(TestVersion)
#include "tst_version.moc"
