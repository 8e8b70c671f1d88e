#pragma once

#include <functional>
#include <vector>

namespace vantoraudio::AudioEngine {

/**
 * Threads that hand short pieces of work to each other, scheduled as batch workers: they get as much of the
 * processors as any others, but one that is woken lets the one that runs finish its piece first. Otherwise they
 * interrupt each other at every piece.
 *
 * Where other work keeps all processors busy that turns against them, since they then wait for that, too. Ordinary
 * threads they remain where the system knows no such thing, and where the thread that starts them is of a special
 * kind itself.
 *
 * Belongs to one thread.
 */
class BatchThreads
{
public:
    /** Calls `start`; the threads that it starts on this one become batch workers. */
    void Start(const std::function<void()>& start);
    /** Makes them ordinary ones again. Only while they exist. */
    void MakeOrdinary();

private:
    std::vector<int> m_threads;
};

} // namespace vantoraudio::AudioEngine
