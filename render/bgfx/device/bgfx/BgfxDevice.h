#pragma once

#include "render/bgfx/device/Device.h"
#include "render/bgfx/device/bgfx/BgfxInstance.h"

#include <QtCore/QObject>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace vantoraudio::bgfx::device {

/** Shows what a bgfx has drawn. Where there is no picture yet and none can be waited for, the processor draws it.
 */
class BgfxDevice final : public Device
{
public:
    /** Called on the GUI thread: it is worth drawing this picture's frame again. */
    using Arrived = std::function<void(const QImage* picture)>;

    explicit BgfxDevice(Arrived arrived);

    /** What the instance is to be made with. */
    [[nodiscard]] BgfxInstance::News News();
    /** False when there is none. To be called before anything else. */
    bool Use(std::unique_ptr<BgfxInstance> instance);

    [[nodiscard]] device::Kind Kind() const override { return device::Kind::Bgfx; }
    [[nodiscard]] QString RendererName() const override { return m_instance->RendererName(); }
    [[nodiscard]] int MaxSide() const override { return m_instance->MaxSide(); }
    bool WaitUntilReady() override { return m_instance->WaitForStart(); }
    void OnHostFrame(std::uint32_t number) override { m_instance->OnHostFrame(number); }
    bool Draw(const Frame& frame, QImage& picture) override;
    bool DrawSoon(const Frame& frame, QImage& picture) override;
    void Forget(const QImage* picture) override;

private:
    /** What is known of a widget's picture. */
    struct Known
    {
        std::uint64_t id = 0;
        FramePlan asked;
        /** The last one that has come. */
        QImage image;
        bool isNew = false;
    };

    Known& Ask(const Frame& frame, const QImage& picture);
    /** What a lost device does with its last frame. False, as Draw() gives back then. */
    bool DrawInstead(const Frame& frame, QImage& picture);
    static bool Show(Known& known, QImage& picture);
    void TakePictures();
    [[nodiscard]] bool IsLost() const { return m_instance->CurrentState() == BgfxInstance::State::Lost; }
    void OnNews();

    const Arrived m_arrived;
    const std::unique_ptr<Device> m_processor;
    std::map<const QImage*, Known> m_known;
    std::uint64_t m_lastId = 0;
    /** News from other threads that comes too late goes with it. */
    QObject m_here;
    std::unique_ptr<BgfxInstance> m_instance;
};

} // namespace vantoraudio::bgfx::device
