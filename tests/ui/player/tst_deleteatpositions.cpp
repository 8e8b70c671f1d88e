#include "tests/ui/player/DeletedPlayers.h"

using namespace DeletedPlayers;

/** Players that a receiver of a position deletes, whatever has moved it. Each row is a program of its own, which
 *  may crash. */
class DeleteAtPositionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(MakeFiles(m_folder)); }

    void aPlayerMayBeDeletedWhereverItReportsAPosition_data()
    {
        QTest::addColumn<int>("thing");
        const Things things = ThingsToDo(m_folder.path());
        for (int i = 0; i < things.size(); ++i) {
            if (things[i].movesPosition) {
                QTest::addRow("%s", things[i].name) << i;
            }
        }
    }
    void aPlayerMayBeDeletedWhereverItReportsAPosition()
    {
        QFETCH(int, thing);
        const int signal = QMetaMethod::fromSignal(&AudioPlayerWidget::AudioPositionChanged).methodIndex();
        RunDeletion(false, signal, m_folder.path(), thing);
    }

private:
    QTemporaryDir m_folder;
};

int main(int argc, char** argv)
{
    return Main<DeleteAtPositionsTest>(argc, argv);
}

#include "tst_deleteatpositions.moc"
