#pragma once

namespace vantoraudio::AudioEngine {

/**
 * While it lives, the threads that its own thread starts are started as batch workers: they get as much of the
 * processor as any other, but one that is woken lets the one that runs finish its piece of work first. Threads
 * that hand short pieces to each other are interrupted at every one of them otherwise.
 *
 * Does nothing where there are no such threads, or where its thread is of a special kind itself.
 */
class BatchThreads
{
public:
    BatchThreads();
    BatchThreads(const BatchThreads&) = delete;
    BatchThreads& operator=(const BatchThreads&) = delete;
    ~BatchThreads();

private:
    bool m_isSet = false;
};

} // namespace vantoraudio::AudioEngine
