#include "engine/files/FileReplacement.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFiles.h"

#include <QtCore/QDir>
#include <QtTest/QtTest>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::AudioEngine;

class TestFileReplacement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsAFileByEveryName();
    void tellsOtherFilesApart();
    void knowsNoFileThatIsNotThere();
    void putsAFileInThePlaceOfAnother();
    void keepsThePermissionsOfTheFormerFile();
    void givesAFreeName();
    void givesNoNameThatIsTaken_data();
    void givesNoNameThatIsTaken();
    void replacesALinkAndNothingElse();
    void leavesBothFilesWhenItFails();
    void flushesWhatWasWritten();
    void tellsThatAFileCannotBeFlushed();

private:
    TemporaryFiles m_files;
};

void TestFileReplacement::knowsAFileByEveryName()
{
    const QString file = m_files.Write(u"a file # 1.wav"_s, "a");
    const QString link = m_files.Path(u"link"_s);
    const QString secondName = m_files.Path(u"Zweitname ä"_s);
    QVERIFY(QFile::link(file, link));
    QCOMPARE(::link(QFile::encodeName(file).constData(), QFile::encodeName(secondName).constData()), 0);
    QVERIFY(IsSameFile(file, file));
    QVERIFY(IsSameFile(file, link));
    QVERIFY(IsSameFile(link, file));
    QVERIFY(IsSameFile(file, secondName));
    QVERIFY(IsSameFile(file, QDir::current().relativeFilePath(file)));
}

void TestFileReplacement::tellsOtherFilesApart()
{
    QVERIFY(!IsSameFile(m_files.Write(u"one"_s, "a"), m_files.Write(u"two"_s, "a")));
}

void TestFileReplacement::knowsNoFileThatIsNotThere()
{
    const QString file = m_files.Write(u"there"_s, "a");
    const QString missing = m_files.Path(u"missing"_s);
    QVERIFY(!IsSameFile(file, missing));
    QVERIFY(!IsSameFile(missing, file));
    QVERIFY(!IsSameFile(missing, missing));
    QVERIFY(!IsSameFile(file, {}));
    QVERIFY(!IsSameFile({}, {}));
}

void TestFileReplacement::putsAFileInThePlaceOfAnother()
{
    const QString from = m_files.Write(u"from"_s, "new");
    const QString to = m_files.Write(u"to"_s, "old");
    QVERIFY(ReplaceFile(from, to));
    QCOMPARE(TemporaryFiles::Read(to), QByteArray("new"));
    QVERIFY(!QFile::exists(from));
}

void TestFileReplacement::keepsThePermissionsOfTheFormerFile()
{
    const QString from = m_files.Write(u"from"_s, "new");
    const QString to = m_files.Write(u"to"_s, "old");
    QVERIFY(QFile::setPermissions(to, QFile::ReadOwner | QFile::ReadGroup | QFile::WriteOwner));
    const auto permissions = QFile::permissions(to);
    QVERIFY(QFile::permissions(from) != permissions);
    QVERIFY(ReplaceFile(from, to));
    QCOMPARE(QFile::permissions(to), permissions);
}

void TestFileReplacement::givesAFreeName()
{
    const TemporaryFiles files;
    const QString from = files.Write(u"from"_s, "new");
    QVERIFY(MoveToFreeName(from, files.Path(u"to"_s)));
    QCOMPARE(TemporaryFiles::Read(files.Path(u"to"_s)), QByteArray("new"));
    QVERIFY(!QFile::exists(from));
    QVERIFY(!MoveToFreeName(files.Path(u"to"_s), files.Path(u"missing/to"_s)));
    QVERIFY(QFile::exists(files.Path(u"to"_s)));
}

void TestFileReplacement::givesNoNameThatIsTaken_data()
{
    QTest::addColumn<QString>("leadsTo");
    QTest::addRow("by a file") << QString();
    QTest::addRow("by a link") << u"other"_s;
    QTest::addRow("by a link to nothing") << u"missing"_s;
}

void TestFileReplacement::givesNoNameThatIsTaken()
{
    QFETCH(const QString, leadsTo);
    const TemporaryFiles files;
    const QString from = files.Write(u"from"_s, "new");
    const QString to = files.Path(u"to"_s);
    files.Write(u"other"_s, "old");
    if (leadsTo.isEmpty()) {
        QCOMPARE(files.Write(u"to"_s, "old"), to);
    } else {
        QVERIFY(QFile::link(files.Path(leadsTo), to));
    }
    QVERIFY(!MoveToFreeName(from, to));
    QCOMPARE(TemporaryFiles::Read(from), QByteArray("new"));
    QCOMPARE(TemporaryFiles::Read(to), leadsTo == u"missing" ? QByteArray() : QByteArray("old"));
    QCOMPARE(QFileInfo(to).isSymLink(), !leadsTo.isEmpty());
}

void TestFileReplacement::replacesALinkAndNothingElse()
{
    const TemporaryFiles files;
    const QString from = files.Write(u"from"_s, "new");
    const QString other = files.Write(u"other"_s, "old");
    QVERIFY(!ReplaceLink(from, other));
    QVERIFY(!ReplaceLink(from, files.Path(u"missing"_s)));
    QVERIFY(QFile::link(other, files.Path(u"link"_s)));
    QVERIFY(ReplaceLink(from, files.Path(u"link"_s)));
    QVERIFY(!QFileInfo(files.Path(u"link"_s)).isSymLink());
    QCOMPARE(TemporaryFiles::Read(files.Path(u"link"_s)), QByteArray("new"));
    QCOMPARE(TemporaryFiles::Read(other), QByteArray("old"));
}

void TestFileReplacement::leavesBothFilesWhenItFails()
{
    const QString from = m_files.Write(u"from"_s, "new");
    QVERIFY(QDir(m_files.Path({})).mkdir(u"folder"_s));
    QVERIFY(!ReplaceFile(from, m_files.Path(u"folder"_s)));
    QCOMPARE(TemporaryFiles::Read(from), QByteArray("new"));
    const QString to = m_files.Write(u"to"_s, "old");
    QVERIFY(!ReplaceFile(m_files.Path(u"missing"_s), to));
    QCOMPARE(TemporaryFiles::Read(to), QByteArray("old"));
}

void TestFileReplacement::flushesWhatWasWritten()
{
    QFile file(m_files.Path(u"flushed"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("abc"), 3);
    QVERIFY(FlushToDisk(file));
    QCOMPARE(TemporaryFiles::Read(file.fileName()), QByteArray("abc"));
}

void TestFileReplacement::tellsThatAFileCannotBeFlushed()
{
    QFile full(u"/dev/full"_s);
    QVERIFY(full.open(QIODevice::WriteOnly));
    QCOMPARE(full.write("abc"), 3);
    QVERIFY(!FlushToDisk(full));

    // Here the bytes do not even get out of the program, while the disk has nothing to complain of.
    QFile file(m_files.Path(u"limited"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("abc"), 3);
    const FileSizeLimit limit(2);
    QVERIFY(!FlushToDisk(file));
}

QTEST_GUILESS_MAIN(TestFileReplacement)
#include "tst_filereplacement.moc"
