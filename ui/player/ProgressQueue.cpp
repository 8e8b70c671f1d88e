#include "ui/player/ProgressQueue.h"

#include <QtCore/QMutexLocker>
#include <QtCore/QPointer>
#include <QtCore/QThread>

#include <algorithm>
#include <chrono>
#include <utility>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

/** Taken at once, so that tasks and listener seldom wait for each other. */
constexpr std::size_t batchSize = 64;

} // namespace

ProgressQueue::ProgressQueue(Clock clock) : m_clock(std::move(clock)) {}

ProgressQueue::Task::Task(ProgressQueue& queue) : m_queue(queue)
{
    const QMutexLocker lock(&m_queue.m_mutex);
    m_queue.m_tasks.insert(QThread::currentThreadId(), {});
}

ProgressQueue::Task::~Task()
{
    const QMutexLocker lock(&m_queue.m_mutex);
    m_queue.m_tasks.remove(QThread::currentThreadId());
}

void ProgressQueue::Report(int progress, int min, int max, const QString& text)
{
    const qint64 now = m_clock();
    {
        const QMutexLocker lock(&m_mutex);
        LeaveOutOld(now);
        const auto task = m_tasks.find(QThread::currentThreadId());
        if (task != m_tasks.end()) {
            Count(*task);
        }
        m_waiting.push_back({Kind::Report, progress, min, max, text, now});
    }
    Wake();
}

void ProgressQueue::Leave(int note)
{
    const qint64 now = m_clock();
    {
        const QMutexLocker lock(&m_mutex);
        m_waiting.push_back({Kind::Note, note, 0, 0, QString(), now});
        ++m_notes[note];
    }
    Wake();
}

/** Called before each report of a task: the former report is not the last one any more. */
void ProgressQueue::Count(Reports& reports)
{
    if (reports.last > reports.first && reports.last >= m_front) {
        m_waiting[static_cast<std::size_t>(reports.last - m_front)].canBeLeftOut = true;
    }
    reports.last = m_front + static_cast<qint64>(m_waiting.size());
    if (reports.first < 0) {
        reports.first = reports.last;
    }
}

void ProgressQueue::LeaveOutOld(qint64 now)
{
    while (!m_waiting.empty() && now - m_waiting.front().time > patience) {
        if (!m_waiting.front().canBeLeftOut) {
            m_old.push_back(std::move(m_waiting.front()));
        }
        m_waiting.pop_front();
        ++m_front;
    }
}

void ProgressQueue::Forget(int note)
{
    const QMutexLocker lock(&m_mutex);
    if (m_notes.take(note) == 0) {
        return;
    }
    for (std::deque<Item>* items : {&m_batch, &m_old, &m_waiting}) {
        for (Item& item : *items) {
            if (item.kind == Kind::Note && item.value == note) {
                item.kind = Kind::Forgotten;
            }
        }
    }
}

bool ProgressQueue::Holds(int note) const
{
    const QMutexLocker lock(&m_mutex);
    return m_notes.value(note) > 0;
}

void ProgressQueue::Wake()
{
    if (!m_isAwake.exchange(true)) {
        QMetaObject::invokeMethod(this, &ProgressQueue::PassOnForAWhile, Qt::QueuedConnection);
    }
}

void ProgressQueue::PassOnForAWhile()
{
    m_isAwake = false;
    const QPointer<ProgressQueue> self(this);
    const qint64 start = m_clock();
    while (const std::optional<Item> item = TakeNext()) {
        // A receiver may run an event loop, which is to hear the rest.
        Wake();
        PassOn(*item);
        if (!self || m_clock() - start >= timeSlice) {
            return;
        }
    }
}

void ProgressQueue::PassOnAll()
{
    const QPointer<ProgressQueue> self(this);
    while (self) {
        const std::optional<Item> item = TakeNext();
        if (!item) {
            return;
        }
        PassOn(*item);
    }
}

std::optional<ProgressQueue::Item> ProgressQueue::TakeNext()
{
    if (m_batch.empty()) {
        FillBatch();
    }
    if (m_batch.empty()) {
        return std::nullopt;
    }
    std::optional<Item> next = std::move(m_batch.front());
    m_batch.pop_front();
    return next;
}

void ProgressQueue::FillBatch()
{
    const qint64 now = m_clock();
    const QMutexLocker lock(&m_mutex);
    LeaveOutOld(now);
    m_batch.swap(m_old);
    while (m_batch.size() < batchSize && !m_waiting.empty()) {
        m_batch.push_back(std::move(m_waiting.front()));
        m_waiting.pop_front();
        ++m_front;
    }
}

void ProgressQueue::PassOn(const Item& item)
{
    if (item.kind == Kind::Report) {
        Q_EMIT Reported(item.value, item.min, item.max, item.text);
    } else if (item.kind == Kind::Note) {
        {
            const QMutexLocker lock(&m_mutex);
            --m_notes[item.value];
        }
        Q_EMIT Reached(item.value);
    }
}

qint64 ProgressQueue::SteadyTime()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace vantoraudio::vantorAudioEngine::UI
