#include "engine/samples/S24Samples.h"
#include "tests/support/WavBytes.h"

#include <QtTest/QtTest>

using namespace WavTest;
using namespace vantoraudio::AudioEngine;

class S24SamplesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void widensSamples()
    {
        const QByteArray block = PackS24({0, 1, -1, 8388607, -8388608, 0x123456, -2, 3});
        QCOMPARE(WidenS24Block(block), PackS32({0, 256, -256, 2147483392, -2147483648LL, 0x12345600, -512, 768}));
    }

    void dropsASampleCutOff()
    {
        QCOMPARE(WidenS24Block(QByteArray(PackS24({5, 6}) + "xy")), PackS32({5 * 256, 6 * 256}));
        QCOMPARE(WidenS24Block(QByteArray("xy")), QByteArray());
    }
};

QTEST_GUILESS_MAIN(S24SamplesTest)
#include "tst_s24samples.moc"
