#include "tests/support/SoundServer.h"

#include <vantorAudioEngine/HardwareManager.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaMethod>
#include <QtMultimedia/QMediaDevices>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <type_traits>

namespace vantoraudio::AudioEngine {

/** What the tests see of a manager beyond its public side. */
class HardwareManagerTestAccess
{
public:
    static QAudioDevice& Input(HardwareManager& manager) { return manager.m_inputDevice; }
    static QAudioDevice& Output(HardwareManager& manager) { return manager.m_outputDevice; }
    static QAudioInput& InputObject(HardwareManager& manager) { return manager.m_audioInput; }
    static QAudioOutput& OutputObject(HardwareManager& manager) { return manager.m_audioOutput; }
};

} // namespace vantoraudio::AudioEngine

using vantoraudio::AudioEngine::HardwareManager;
using Access = vantoraudio::AudioEngine::HardwareManagerTestAccess;

class HardwareManagerTest : public QObject
{
    Q_OBJECT

public:
    explicit HardwareManagerTest(SoundServer& server) : m_server(server) {}

private Q_SLOTS:
    void initTestCase();
    void hasOneSignalAndNothingElseInItsMetaObject();
    void startsWithNullDevicesAndObjectsWithoutParent();
    void assignmentCopiesTheTwoDevicesOnly();
    void listsTheOutputsInTheirOrder();
    void listsOutputsAlsoWhenAskedForInputs();
    void listsNothingForAFormatThatNoDeviceTakes();
    void carriesItsSignal();
    void emitsNothingByItself();
    void listsNothingOnAMachineWithoutOutputs();

private:
    SoundServer& m_server;
};

void HardwareManagerTest::initTestCase()
{
    QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::audioOutputs().size(), 2, 30000);
}

void HardwareManagerTest::hasOneSignalAndNothingElseInItsMetaObject()
{
    QVERIFY(QMetaType::fromName("QList<QAudioDevice>").isRegistered());
    const QMetaObject& meta = HardwareManager::staticMetaObject;
    QCOMPARE(meta.className(), "vantoraudio::AudioEngine::HardwareManager");
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod method = meta.method(meta.methodOffset());
    QCOMPARE(method.methodType(), QMetaMethod::Signal);
    QCOMPARE(method.methodSignature(), QByteArray("AudioDeviceListChanged(QList<QAudioDevice>)"));
    QCOMPARE(method.parameterMetaType(0), QMetaType::fromType<QList<QAudioDevice>>());
    static_assert(std::has_virtual_destructor_v<HardwareManager>);
}

void HardwareManagerTest::startsWithNullDevicesAndObjectsWithoutParent()
{
    QObject parent;
    HardwareManager manager(&parent);
    QCOMPARE(manager.parent(), &parent);
    QVERIFY(Access::Input(manager).isNull());
    QVERIFY(Access::Output(manager).isNull());
    QVERIFY(!Access::InputObject(manager).parent());
    QVERIFY(!Access::OutputObject(manager).parent());
}

void HardwareManagerTest::assignmentCopiesTheTwoDevicesOnly()
{
    QObject parent;
    HardwareManager source(&parent);
    HardwareManager target;
    Access::Input(source) = QMediaDevices::audioOutputs().constFirst();
    Access::Output(source) = QMediaDevices::audioOutputs().constLast();
    Access::OutputObject(source).setVolume(0.25F);
    Access::InputObject(source).setMuted(true);
    target = source;
    QCOMPARE(Access::Input(target), QMediaDevices::audioOutputs().constFirst());
    QCOMPARE(Access::Output(target), QMediaDevices::audioOutputs().constLast());
    QCOMPARE(Access::OutputObject(target).volume(), 1.0F);
    QVERIFY(!Access::InputObject(target).isMuted());
    QVERIFY(!target.parent());
}

void HardwareManagerTest::listsTheOutputsInTheirOrder()
{
    HardwareManager manager;
    QCOMPARE(manager.GetAvailableDevices(QAudioDevice::Output), QMediaDevices::audioOutputs());
    QAudioFormat format;
    format.setSampleFormat(QAudioFormat::Float);
    format.setChannelCount(1);
    format.setSampleRate(96000);
    QCOMPARE(manager.GetAvailableDevices(format, QAudioDevice::Output), QMediaDevices::audioOutputs());
}

void HardwareManagerTest::listsOutputsAlsoWhenAskedForInputs()
{
    HardwareManager manager;
    for (const QAudioDevice::Mode mode : {QAudioDevice::Input, QAudioDevice::Null, QAudioDevice::Output}) {
        const QList<QAudioDevice> devices = manager.GetAvailableDevices(mode);
        QCOMPARE(devices, QMediaDevices::audioOutputs());
        for (const QAudioDevice& device : devices) {
            QCOMPARE(device.mode(), QAudioDevice::Output);
        }
    }
}

void HardwareManagerTest::listsNothingForAFormatThatNoDeviceTakes()
{
    HardwareManager manager;
    QAudioFormat format;
    format.setSampleFormat(QAudioFormat::Int16);
    format.setChannelCount(2);
    format.setSampleRate(100000000);
    QCOMPARE(manager.GetAvailableDevices(format, QAudioDevice::Output), {});
}

void HardwareManagerTest::carriesItsSignal()
{
    HardwareManager manager;
    QSignalSpy spy(&manager, &HardwareManager::AudioDeviceListChanged);
    Q_EMIT manager.AudioDeviceListChanged(QMediaDevices::audioOutputs());
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.at(0).at(0).value<QList<QAudioDevice>>(), QMediaDevices::audioOutputs());
}

void HardwareManagerTest::emitsNothingByItself()
{
    HardwareManager manager;
    QSignalSpy spy(&manager, &HardwareManager::AudioDeviceListChanged);
    QVERIFY(m_server.AddSink(QStringLiteral("three")));
    QTRY_COMPARE_WITH_TIMEOUT(manager.GetAvailableDevices(QAudioDevice::Output).size(), 3, 30000);
    QCOMPARE(spy.size(), 0);
}

void HardwareManagerTest::listsNothingOnAMachineWithoutOutputs()
{
    m_server.RemoveAllSinks();
    HardwareManager manager;
    QTRY_COMPARE_WITH_TIMEOUT(manager.GetAvailableDevices(QAudioDevice::Output).size(), 0, 30000);
    QCOMPARE(manager.GetAvailableDevices(QAudioDevice::Output), {});
    QAudioFormat format;
    format.setSampleFormat(QAudioFormat::Int16);
    format.setChannelCount(1);
    format.setSampleRate(8000);
    QCOMPARE(manager.GetAvailableDevices(format, QAudioDevice::Output), {});
}

int main(int argc, char** argv)
{
    SoundServer server({QStringLiteral("one"), QStringLiteral("two")});
    QCoreApplication application(argc, argv);
    HardwareManagerTest test(server);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_hardware_manager.moc"
