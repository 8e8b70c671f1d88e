#include "render/bgfx/device/bgfx/BgfxInstance.h"
#include "render/bgfx/device/bgfx/BgfxPainter.h"
#include "render/bgfx/device/bgfx/HeadlessBgfx.h"
#include "render/bgfx/device/bgfx/Turns.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <new>
#include <set>
#include <thread>
#include <utility>

namespace vantoraudio::bgfx::device {
namespace {

/** All of bgfx lives on one thread: starting it, which takes seconds where the processor plays the graphics card,
 * and reading pictures back never hold up the GUI thread. */
class OwnBgfx final : public BgfxInstance
{
public:
    explicit OwnBgfx(News news) : m_news(std::move(news)), m_thread([this] { Run(); }) {}
    ~OwnBgfx() override
    {
        {
            const std::lock_guard lock(m_mutex);
            m_ends = true;
        }
        m_asked.notify_one();
        m_thread.join();
    }
    OwnBgfx(const OwnBgfx&) = delete;
    OwnBgfx& operator=(const OwnBgfx&) = delete;

    [[nodiscard]] State CurrentState() const override
    {
        const std::lock_guard lock(m_mutex);
        return m_state;
    }
    [[nodiscard]] QString RendererName() const override
    {
        const std::lock_guard lock(m_mutex);
        return m_rendererName;
    }
    [[nodiscard]] int MaxSide() const override
    {
        const std::lock_guard lock(m_mutex);
        return m_maxSide;
    }

    void Ask(std::uint64_t id, FramePlan plan) override
    {
        {
            const std::lock_guard lock(m_mutex);
            m_plans.insert_or_assign(id, std::move(plan));
        }
        m_asked.notify_one();
    }
    void Forget(std::uint64_t id) override
    {
        {
            const std::lock_guard lock(m_mutex);
            m_plans.erase(id);
            m_forgotten.insert(id);
        }
        m_asked.notify_one();
    }
    bool WaitFor(std::uint64_t id) override
    {
        std::unique_lock lock(m_mutex);
        if (m_state == State::Running) {
            m_changed.wait(lock,
                           [&] { return m_state == State::Lost || (!m_plans.contains(id) && m_drawnId != id); });
        }
        return m_state == State::Running;
    }
    bool WaitForStart() override
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_state != State::Starting; });
        return m_state == State::Running;
    }
    [[nodiscard]] std::vector<Picture> TakePictures() override
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_pictures, {});
    }

private:
    void Run()
    {
        try {
            StartAndDraw();
        } catch (const std::bad_alloc&) {
            // Without memory, as without its device, bgfx draws no more.
        }
        Enter(State::Lost);
    }

    void StartAndDraw()
    {
        HeadlessBgfx bgfx;
        if (bgfx.Start()) {
            if (const auto painter = BgfxPainter::Make(bgfx.Api())) {
                {
                    const std::lock_guard lock(m_mutex);
                    m_rendererName = bgfx.RendererName();
                    m_maxSide = bgfx.MaxSide();
                }
                Enter(State::Running);
                DrawUntilTheEnd(bgfx, *painter);
            }
        }
    }

    void DrawUntilTheEnd(HeadlessBgfx& bgfx, BgfxPainter& painter)
    {
        for (std::uint64_t lastId = NoId;;) {
            std::unique_lock lock(m_mutex);
            m_asked.wait(lock, [this] { return m_ends || !m_plans.empty() || !m_forgotten.empty(); });
            if (m_ends) {
                return;
            }
            const std::set<std::uint64_t> forgotten = std::exchange(m_forgotten, {});
            auto next =
                m_plans.empty() ? decltype(m_plans)::node_type() : m_plans.extract(NextInTurn(m_plans, lastId));
            m_drawnId = next ? next.key() : NoId;
            lastId = next ? next.key() : lastId;
            lock.unlock();

            for (const std::uint64_t id : forgotten) {
                painter.Forget(id);
            }
            if (next && !Draw(bgfx, painter, next.key(), next.mapped())) {
                return;
            }
        }
    }

    /** False when bgfx can draw no more. */
    bool Draw(HeadlessBgfx& bgfx, BgfxPainter& painter, std::uint64_t id, const FramePlan& plan)
    {
        QImage image(plan.size, QImage::Format_RGBA8888);
        const auto arrival = image.isNull() ? std::nullopt : painter.Submit(id, plan, image.bits(), {});
        while (arrival && bgfx.Api().frame(BGFX_FRAME_NONE) < *arrival) {
        }
        if (!arrival || bgfx.IsLost()) {
            return false;
        }
        {
            const std::lock_guard lock(m_mutex);
            m_pictures.push_back({id, std::move(image)});
            m_drawnId = NoId;
        }
        m_changed.notify_all();
        m_news();
        return true;
    }

    void Enter(State state)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_state = state;
        }
        m_changed.notify_all();
        m_news();
    }

    static constexpr std::uint64_t NoId = 0;

    const News m_news;
    /** Guards what follows. */
    mutable std::mutex m_mutex;
    /** There is something to do. */
    std::condition_variable m_asked;
    /** Something was done, or the state has changed. */
    std::condition_variable m_changed;
    State m_state = State::Starting;
    bool m_ends = false;
    QString m_rendererName;
    int m_maxSide = 16384;
    std::map<std::uint64_t, FramePlan> m_plans;
    std::set<std::uint64_t> m_forgotten;
    std::uint64_t m_drawnId = NoId;
    std::vector<Picture> m_pictures;
    /** Starts when all the rest is there. */
    std::thread m_thread;
};

} // namespace

std::unique_ptr<BgfxInstance> StartOwnBgfx(BgfxInstance::News news)
{
    return std::make_unique<OwnBgfx>(std::move(news));
}

} // namespace vantoraudio::bgfx::device
