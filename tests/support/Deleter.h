#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaMethod>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QProcess>
#include <QtTest/QTest>

/** Deletes an object at a signal, of its own or of one that belongs to it, in the middle of whatever emits it. */
class Deleter : public QObject
{
    Q_OBJECT

public:
    /** What a program ends with that has deleted nothing. */
    static constexpr int neverEmitted = 3;

    Deleter(QObject& object, const QObject& sender, const QMetaMethod& signal) : m_object(&object)
    {
        connect(&sender, signal, this, metaObject()->method(metaObject()->indexOfSlot("Delete()")));
    }
    Deleter(QObject& object, const QMetaMethod& signal) : Deleter(object, object, signal) {}

    /** On at first. */
    void SetArmed(bool armed) { m_isArmed = armed; }
    [[nodiscard]] bool HasDeleted() const { return !m_object; }

public Q_SLOTS:
    void Delete()
    {
        if (m_isArmed) {
            delete m_object.data();
        }
    }

private:
    QPointer<QObject> m_object;
    bool m_isArmed = true;
};

/** What a program means that has deleted nothing. */
enum class Silence
{
    Skips,
    Fails
};

/** Starts this program again, which may crash then, and fails when it does. */
inline void RunAsOwnProgram(const QStringList& arguments, Silence silence)
{
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QCoreApplication::applicationFilePath(), arguments);
    QVERIFY2(program.waitForFinished(60000), "hangs");
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    if (program.exitCode() == Deleter::neverEmitted && silence == Silence::Skips) {
        QSKIP("nothing here makes the player emit it");
    }
    QCOMPARE(program.exitCode(), 0);
}
