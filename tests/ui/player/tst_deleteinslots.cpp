#include "tests/ui/player/DeletedPlayers.h"

using namespace DeletedPlayers;

/** Players that a receiver of any of their signals deletes. Each row is a program of its own, which may crash. */
class DeleteInSlotsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(MakeFiles(m_folder)); }

    void aPlayerMayBeDeletedAtEverySignal_data()
    {
        QTest::addColumn<bool>("isOfWaveform");
        QTest::addColumn<int>("signal");
        for (const bool isOfWaveform : {false, true}) {
            const QMetaObject& type =
                isOfWaveform ? BGFXWaveformWidget::staticMetaObject : AudioPlayerWidget::staticMetaObject;
            for (int i = QWidget::staticMetaObject.methodCount(); i < type.methodCount(); ++i) {
                const QMetaMethod method = type.method(i);
                // That one is for the program to emit.
                if (method.methodType() == QMetaMethod::Signal && method.name() != "SceneRectChangeRequested") {
                    QTest::addRow("%s::%s", type.className(), method.methodSignature().constData())
                        << isOfWaveform << i;
                }
            }
        }
    }
    void aPlayerMayBeDeletedAtEverySignal()
    {
        QFETCH(bool, isOfWaveform);
        QFETCH(int, signal);
        RunDeletion(isOfWaveform, signal, m_folder.path(), always);
    }

private:
    QTemporaryDir m_folder;
};

int main(int argc, char** argv)
{
    return Main<DeleteInSlotsTest>(argc, argv);
}

#include "tst_deleteinslots.moc"
