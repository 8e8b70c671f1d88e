#include "render/bgfx/device/bgfx/HeadlessBgfx.h"

#include "render/bgfx/device/bgfx/HeadlessOpenGL.h"

#include <QtCore/QtGlobal>

#include <algorithm>
#include <cstdarg>

namespace vantoraudio::bgfx::device {
namespace {

#ifdef Q_OS_LINUX
// bgfx itself would choose Vulkan, and crashes with Mesa's software Vulkan.
constexpr bgfx_renderer_type_t Renderer = BGFX_RENDERER_TYPE_OPENGL;
#else
constexpr bgfx_renderer_type_t Renderer = BGFX_RENDERER_TYPE_COUNT;
#endif

} // namespace

HeadlessBgfx::HeadlessBgfx() : m_api(bgfx_get_interface(BGFX_API_VERSION))
{
    m_callback.base.vtbl = &CallbackFunctions();
}

HeadlessBgfx::~HeadlessBgfx()
{
    if (m_runs) {
        m_api->shutdown();
    }
}

bool HeadlessBgfx::Start()
{
    // Somebody who shares this copy of bgfx runs it. Calling render_frame() then would draw the other's frame.
    const bool isTaken = m_api && m_api->get_internal_data()->caps != nullptr;
    if (!m_api || isTaken || !HasHeadlessOpenGL()) {
        return false;
    }
    // Called before init(), it keeps bgfx from making a thread of its own: we are on one already.
    m_api->render_frame(-1);
    bgfx_init_t settings;
    m_api->init_ctor(&settings);
    settings.type = Renderer;
    settings.fallback = Renderer == BGFX_RENDERER_TYPE_COUNT;
    settings.resolution.width = 0;
    settings.resolution.height = 0;
    settings.callback = &m_callback.base;
    m_runs = m_api->init(&settings);
    return m_runs && !IsLost();
}

bool HeadlessBgfx::IsLost() const
{
    // bgfx puts its renderer that does nothing in the place of one whose device is gone.
    return m_callback.hasFailed || m_api->get_renderer_type() == BGFX_RENDERER_TYPE_NOOP;
}

QString HeadlessBgfx::RendererName() const
{
    return QString::fromUtf8(m_api->get_renderer_name(m_api->get_renderer_type()));
}

int HeadlessBgfx::MaxSide() const
{
    return static_cast<int>(std::min(m_api->get_caps()->limits.maxTextureSize, 65535U));
}

const bgfx_callback_vtbl_t& HeadlessBgfx::CallbackFunctions()
{
    using Interface = bgfx_callback_interface_t;
    static constexpr bgfx_callback_vtbl_t functions{
        .fatal =
            [](Interface* self, const char*, std::uint16_t, bgfx_fatal_t code, const char*) {
                if (code != BGFX_FATAL_DEBUG_CHECK) {
                    reinterpret_cast<Callback*>(self)->hasFailed = true;
                }
            },
        .trace_vargs = [](Interface*, const char*, std::uint16_t, const char*, va_list) {},
        .profiler_begin = [](Interface*, const char*, std::uint32_t, const char*, std::uint16_t) {},
        .profiler_begin_literal = [](Interface*, const char*, std::uint32_t, const char*, std::uint16_t) {},
        .profiler_end = [](Interface*) {},
        .cache_read_size = [](Interface*, std::uint64_t) { return std::uint32_t{0}; },
        .cache_read = [](Interface*, std::uint64_t, void*, std::uint32_t) { return false; },
        .cache_write = [](Interface*, std::uint64_t, const void*, std::uint32_t) {},
        .screen_shot = [](Interface*, const char*, std::uint32_t, std::uint32_t, std::uint32_t,
                          bgfx_texture_format_t, const void*, std::uint32_t, bool) {},
        .capture_begin = [](Interface*, std::uint32_t, std::uint32_t, std::uint32_t, bgfx_texture_format_t,
                            bool) {},
        .capture_end = [](Interface*) {},
        .capture_frame = [](Interface*, const void*, std::uint32_t) {},
    };
    return functions;
}

} // namespace vantoraudio::bgfx::device
