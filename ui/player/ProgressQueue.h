#pragma once

#include <QtCore/QHash>
#include <QtCore/QMutex>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <atomic>
#include <deque>
#include <functional>
#include <optional>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * Brings what tasks report of their progress to the thread of this object: every report, unchanged and in order,
 * in batches that leave that thread time for other work.
 *
 * Notes stand in the same line as the reports, so that they are heard after everything that was reported before
 * them.
 *
 * What has waited for longer than `patience` may be left out, so that a program that does not listen is not
 * buried: all but the notes and the first and the last report of each task.
 */
class ProgressQueue : public QObject
{
    Q_OBJECT

public:
    /** Milliseconds since any moment. */
    using Clock = std::function<qint64()>;

    static constexpr qint64 patience = 250;
    /** Milliseconds that may be spent on reports in one round of the event loop. */
    static constexpr qint64 timeSlice = 5;

    explicit ProgressQueue(Clock clock = &SteadyTime);

    /** While it exists, the reports of its thread belong to one task. */
    class Task
    {
    public:
        explicit Task(ProgressQueue& queue);
        ~Task();
        Q_DISABLE_COPY_MOVE(Task)

    private:
        ProgressQueue& m_queue;
    };

    // Any thread. The signals come from the event loop, or from PassOnAll().
    void Report(int progress, int min, int max, const QString& text);
    void Leave(int note);

    // The thread of this object.
    /** Drops the notes of this kind that wait. */
    void Forget(int note);
    [[nodiscard]] bool Holds(int note) const;
    /** Passes on all that waits, however long that takes. A receiver may destroy the queue. */
    void PassOnAll();

Q_SIGNALS:
    void Reported(int progress, int min, int max, const QString& text);
    void Reached(int note);

private:
    friend class AudioPlayerWidgetTestAccess;

    enum class Kind
    {
        Report,
        Note,
        Forgotten
    };

    struct Item
    {
        Kind kind;
        int value;
        int min;
        int max;
        QString text;
        qint64 time;
        bool canBeLeftOut = false;
    };

    /** Numbers of reports; below 0 there is none yet. */
    struct Reports
    {
        qint64 first = -1;
        qint64 last = -1;
    };

    static qint64 SteadyTime();

    void Count(Reports& reports);
    void LeaveOutOld(qint64 now);
    void Wake();
    void PassOnForAWhile();
    std::optional<Item> TakeNext();
    void FillBatch();
    void PassOn(const Item& item);

    Clock m_clock;
    std::atomic<bool> m_isAwake = false;
    /** Taken from the line, and next to be passed on. Only of the thread of this object. */
    std::deque<Item> m_batch;

    /** Guards all that follows. */
    mutable QMutex m_mutex;
    std::deque<Item> m_waiting;
    /** The number of the first one that waits. */
    qint64 m_front = 0;
    /** What has waited for too long and cannot be left out. */
    std::deque<Item> m_old;
    /** Of each thread that is at a task. */
    QHash<Qt::HANDLE, Reports> m_tasks;
    /** How often each note waits. */
    QHash<int, int> m_notes;
};

} // namespace vantoraudio::vantorAudioEngine::UI
