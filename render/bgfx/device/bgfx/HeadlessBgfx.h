#pragma once

#include "render/bgfx/device/bgfx/BgfxApi.h"

#include <QtCore/QString>

#include <atomic>

namespace vantoraudio::bgfx::device {

/** bgfx without a window, from Start() to the destructor. All on one thread. */
class HeadlessBgfx
{
public:
    HeadlessBgfx();
    ~HeadlessBgfx();
    HeadlessBgfx(const HeadlessBgfx&) = delete;
    HeadlessBgfx& operator=(const HeadlessBgfx&) = delete;

    /** False where it cannot be had: there is no graphics device that it can use without a window, or this process
     * runs the same copy of bgfx already. */
    bool Start();
    /** Whether the graphics device is gone, or bgfx has met something that it cannot recover from. */
    [[nodiscard]] bool IsLost() const;

    [[nodiscard]] const BgfxApi& Api() const { return *m_api; }
    [[nodiscard]] QString RendererName() const;
    [[nodiscard]] int MaxSide() const;

private:
    /** What bgfx calls; it starts with bgfx's own structure. */
    struct Callback
    {
        bgfx_callback_interface_t base{};
        /** Some of bgfx's renderers call from a thread of theirs. */
        std::atomic<bool> hasFailed = false;
    };

    static const bgfx_callback_vtbl_t& CallbackFunctions();

    const BgfxApi* m_api = nullptr;
    Callback m_callback;
    bool m_runs = false;
};

} // namespace vantoraudio::bgfx::device
