#include "render/bgfx/device/bgfx/BgfxInstance.h"
#include "render/bgfx/device/bgfx/BgfxPainter.h"
#include "render/bgfx/device/bgfx/Turns.h"

#include <algorithm>
#include <map>
#include <utility>

namespace vantoraudio::bgfx::device {
namespace {

/** What bgfx writes to. */
struct CopiedImage
{
    /** When frame() returns this number, all of it is written. */
    std::uint32_t frame = 0;
    QImage image;
};

/** Images that nobody waits for any more, but that bgfx may still write to, also when its user here is gone. */
std::vector<CopiedImage>& AbandonedImages()
{
    static auto& images = *new std::vector<CopiedImage>;
    return images;
}

/** On the GUI thread only, which is that of the host's bgfx. */
class HostBgfx final : public BgfxInstance
{
public:
    HostBgfx(const HostRenderer& host, News news)
        : m_bgfx(*static_cast<const BgfxApi*>(host.functions))
        , m_host(host)
        , m_news(std::move(news))
        , m_painter(BgfxPainter::Make(m_bgfx))
    {
    }
    ~HostBgfx() override;
    HostBgfx(const HostBgfx&) = delete;
    HostBgfx& operator=(const HostBgfx&) = delete;

    [[nodiscard]] bool CanDraw() const { return m_painter != nullptr; }

    [[nodiscard]] State CurrentState() const override { return m_state; }
    [[nodiscard]] QString RendererName() const override;
    [[nodiscard]] int MaxSide() const override;
    void Ask(std::uint64_t id, FramePlan plan) override;
    void Forget(std::uint64_t id) override;
    bool WaitFor(std::uint64_t) override { return false; }
    bool WaitForStart() override { return m_state == State::Running; }
    [[nodiscard]] std::vector<Picture> TakePictures() override;
    void OnHostFrame(std::uint32_t number) override;

private:
    void SubmitPlans();
    void Submit(std::uint64_t id, const FramePlan& plan);

    const BgfxApi& m_bgfx;
    const HostRenderer m_host;
    const News m_news;
    std::unique_ptr<BgfxPainter> m_painter;
    State m_state = State::Running;
    /** Views that pictures of the host's coming frame have taken. */
    std::uint16_t m_usedViews = 0;
    std::map<std::uint64_t, FramePlan> m_plans;
    /** Whose turn it was last. */
    std::uint64_t m_lastId = 0;
    std::map<std::uint64_t, CopiedImage> m_copying;
    std::vector<Picture> m_pictures;
};

HostBgfx::~HostBgfx()
{
    for (auto& [id, copying] : m_copying) {
        AbandonedImages().push_back(std::move(copying));
    }
}

QString HostBgfx::RendererName() const
{
    return QString::fromUtf8(m_bgfx.get_renderer_name(m_bgfx.get_renderer_type()));
}

int HostBgfx::MaxSide() const
{
    return static_cast<int>(std::min(m_bgfx.get_caps()->limits.maxTextureSize, 65535U));
}

void HostBgfx::Ask(std::uint64_t id, FramePlan plan)
{
    m_plans.insert_or_assign(id, std::move(plan));
    SubmitPlans();
}

void HostBgfx::Forget(std::uint64_t id)
{
    m_plans.erase(id);
    if (const auto found = m_copying.find(id); found != m_copying.end()) {
        AbandonedImages().push_back(std::move(found->second));
        m_copying.erase(found);
    }
    m_painter->Forget(id);
}

void HostBgfx::OnHostFrame(std::uint32_t number)
{
    if (m_bgfx.get_renderer_type() == BGFX_RENDERER_TYPE_NOOP) {
        // bgfx puts its renderer that does nothing in the place of one whose device is gone.
        m_state = State::Lost;
    }
    std::erase_if(AbandonedImages(), [&](const CopiedImage& copied) { return number >= copied.frame; });
    for (auto copying = m_copying.begin(); m_state == State::Running && copying != m_copying.end();) {
        if (number < copying->second.frame) {
            ++copying;
            continue;
        }
        m_pictures.push_back({copying->first, std::move(copying->second.image)});
        copying = m_copying.erase(copying);
    }
    m_usedViews = 0;
    SubmitPlans();
    if (m_state == State::Lost || !m_pictures.empty()) {
        m_news();
    }
}

void HostBgfx::SubmitPlans()
{
    for (auto left = m_plans.size(); left > 0 && m_usedViews + 2 <= m_host.viewCount; --left) {
        const auto plan = NextInTurn(m_plans, m_lastId);
        m_lastId = plan->first;
        if (!m_copying.contains(plan->first)) {
            Submit(plan->first, plan->second);
            m_plans.erase(plan);
        }
    }
}

void HostBgfx::Submit(std::uint64_t id, const FramePlan& plan)
{
    QImage image(plan.size, QImage::Format_RGBA8888);
    const auto drawing = static_cast<ViewId>(m_host.firstView + m_usedViews);
    m_usedViews = static_cast<std::uint16_t>(m_usedViews + 2);
    const auto frame =
        image.isNull() ? std::nullopt
                       : m_painter->Submit(id, plan, image.bits(), {drawing, static_cast<ViewId>(drawing + 1)});
    if (frame) {
        m_copying.emplace(id, CopiedImage{*frame, std::move(image)});
    } else {
        m_state = State::Lost;
        m_news();
    }
}

std::vector<BgfxInstance::Picture> HostBgfx::TakePictures()
{
    return std::exchange(m_pictures, {});
}

/** Null where it does not run, or is another version: the functions' places in the table change. */
const BgfxApi* RunningBgfx(const HostRenderer& host)
{
    const auto* bgfx = static_cast<const BgfxApi*>(host.functions);
    return bgfx && host.version == BGFX_API_VERSION && bgfx->get_internal_data()->caps ? bgfx : nullptr;
}

/** bgfx itself does not look whether it has a view. */
bool HasViews(const BgfxApi& bgfx, const HostRenderer& host)
{
    return host.viewCount >= 2 &&
           std::uint32_t(host.firstView) + host.viewCount <= bgfx.get_caps()->limits.maxViews;
}

} // namespace

std::unique_ptr<BgfxInstance> JoinHostBgfx(const HostRenderer& host, BgfxInstance::News news)
{
    const BgfxApi* bgfx = RunningBgfx(host);
    if (!bgfx || !HasViews(*bgfx, host)) {
        return nullptr;
    }
    auto instance = std::make_unique<HostBgfx>(host, std::move(news));
    return instance->CanDraw() ? std::move(instance) : nullptr;
}

} // namespace vantoraudio::bgfx::device
