#include "engine/files/Leftovers.h"
#include "engine/files/PendingFile.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFiles.h"

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTemporaryFile>
#include <QtTest/QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::AudioEngine;

namespace {

/** A name that the library itself would choose. */
QString OwnName(const TemporaryFiles& files, const QString& end)
{
    return QFileInfo(HiddenTemplate(files.Path({}), u"loaded"_s)).fileName().chopped(6) + end;
}

} // namespace

class TestLeftovers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void removesWhatNobodyUses()
    {
        const TemporaryFiles files;
        const QString folder = OwnName(files, u"abcdef"_s);
        files.Write(OwnName(files, u"fedcba"_s), "part");
        QVERIFY(QDir(files.Path({})).mkpath(folder + u"/within"_s));
        QVERIFY(!files.Write(folder + u"/copy.wav"_s, "part").isEmpty());
        files.Write(u"take.wav"_s, "dear");
        RemoveLeftovers(files.Path({}));
        QCOMPARE(files.Names(), QStringList{u"take.wav"_s});
    }

    void anEmptyDirectoryIsTheCurrentOne()
    {
        QVERIFY(QDir::isRelativePath(HiddenTemplate({}, u"loaded"_s)));
        QCOMPARE(QDir::cleanPath(QDir().absoluteFilePath(HiddenTemplate({}, u"loaded"_s))),
                 HiddenTemplate(QDir::currentPath(), u"loaded"_s));
    }

    void leavesWhatIsNotOurs_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addRow("another hidden file") << u".hidden-abcdef"_s;
        QTest::addRow("of another machine") << u".loaded-0123abcd-abcdef"_s;
        QTest::addRow("of the same beginning") << u".loaded-"_s;
    }
    void leavesWhatIsNotOurs()
    {
        QFETCH(const QString, name);
        const TemporaryFiles files;
        files.Write(name, "dear");
        RemoveLeftovers(files.Path({}));
        QCOMPARE(files.Names(), QStringList{name});
    }

    void leavesAFileThatIsBeingWritten()
    {
        const TemporaryFiles files;
        PendingFile pending(files.Path(u"out"_s));
        QVERIFY(pending.Open());
        // From now on it has a name.
        QVERIFY(QFile::exists(pending.File().fileName()));
        QCOMPARE(files.Names().size(), 1);
        RemoveLeftovers(files.Path({}));
        QCOMPARE(files.Names().size(), 1);
        pending.File().write("new");
        QVERIFY(pending.Commit());
        QCOMPARE(TemporaryFiles::Read(files.Path(u"out"_s)), QByteArray("new"));
    }

    void leavesALockedFolder()
    {
        const TemporaryFiles files;
        const QString name = OwnName(files, u"abcdef"_s);
        QVERIFY(QDir(files.Path({})).mkdir(name));
        {
            const FolderLock lock(files.Path(name));
            QVERIFY(lock.IsHeld());
            RemoveLeftovers(files.Path({}));
            QCOMPARE(files.Names(), QStringList{name});
            // Nobody else gets it meanwhile.
            QVERIFY(!FolderLock(files.Path(name)).IsHeld());
        }
        RemoveLeftovers(files.Path({}));
        QCOMPARE(files.Names(), QStringList());
        QVERIFY(!FolderLock(files.Path(name)).IsHeld());
    }

    /** Neither what a link leads to nor what waits behind a pipe is any of our business. */
    void leavesLinksAndPipes()
    {
        const TemporaryFiles files;
        const TemporaryFiles others;
        const QString precious = others.Write(u"precious"_s, "precious");
        QVERIFY(QFile::link(precious, files.Path(OwnName(files, u"aaaaaa"_s))));
        QVERIFY(QFile::link(others.Path({}), files.Path(OwnName(files, u"bbbbbb"_s))));
        QCOMPARE(::mkfifo(QFile::encodeName(files.Path(OwnName(files, u"cccccc"_s))).constData(), 0600), 0);
        RemoveLeftovers(files.Path({}));
        QCOMPARE(files.Names().size(), 3);
        QCOMPARE(others.Names(), QStringList{u"precious"_s});
    }

    void removesNothingThroughALinkInAFolder()
    {
        const TemporaryFiles files;
        const TemporaryFiles others;
        others.Write(u"precious"_s, "precious");
        const QString name = OwnName(files, u"abcdef"_s);
        QVERIFY(QDir(files.Path({})).mkdir(name));
        QVERIFY(QFile::link(others.Path({}), files.Path(name + u"/link"_s)));
        RemoveLeftovers(files.Path({}));
        QCOMPARE(files.Names(), QStringList());
        QCOMPARE(others.Names(), QStringList{u"precious"_s});
    }

    void leavesWhatAnotherUserMade()
    {
        const TemporaryFiles files;
        files.Write(OwnName(files, u"abcdef"_s), "theirs");
        QVERIFY(OrdinaryUser::TakesOver(files.Path({})));
        const OrdinaryUser user;
        if (::geteuid() == QFileInfo(files.Path(OwnName(files, u"abcdef"_s))).ownerId()) {
            QSKIP("There is only one user.");
        }
        RemoveLeftovers(files.Path({}));
        QCOMPARE(files.Names().size(), 1);
    }

    void survivesAFolderThatIsNotThere()
    {
        const TemporaryFiles files;
        RemoveLeftovers(files.Path(u"missing"_s));
        RemoveLeftovers({});
        QCOMPARE(files.Names(), QStringList());
    }
};

QTEST_APPLESS_MAIN(TestLeftovers)
#include "tst_leftovers.moc"
