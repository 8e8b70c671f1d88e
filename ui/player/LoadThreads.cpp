#include "ui/player/LoadThreads.h"

#include <QtCore/QThreadPool>

#include <memory>
#include <utility>

namespace vantoraudio::vantorAudioEngine::UI::LoadThreads {
namespace {

/** Loads that were given up may hang on a disk that does not answer, and the next one is not to wait for them. */
constexpr int mostThreads = 16;
constexpr int patienceAtTheEnd = 3000;

class Threads
{
public:
    Threads() { pool->setMaxThreadCount(mostThreads); }
    ~Threads()
    {
        if (!pool->waitForDone(patienceAtTheEnd)) {
            static_cast<void>(pool.release());
        }
    }
    Q_DISABLE_COPY_MOVE(Threads)

    std::unique_ptr<QThreadPool> pool = std::make_unique<QThreadPool>();
};

} // namespace

QThreadPool* Pool()
{
    static const Threads threads;
    return threads.pool.get();
}

void Start(std::function<void()> task)
{
    Pool()->start(std::move(task));
}

} // namespace vantoraudio::vantorAudioEngine::UI::LoadThreads
