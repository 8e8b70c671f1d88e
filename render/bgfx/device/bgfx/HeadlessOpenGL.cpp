#include "render/bgfx/device/bgfx/HeadlessOpenGL.h"

#include <QtCore/QLibrary>

#include <array>
#include <cstdint>

namespace vantoraudio::bgfx::device {

#ifdef Q_OS_LINUX

// The few steps of bgfx that must not fail, with the functions of EGL that it takes.
bool HasHeadlessOpenGL()
{
    constexpr unsigned OpenGL = 0x30A2;
    constexpr std::array<std::int32_t, 17> Wanted{0x3040, 0x0008, // can draw by desktop OpenGL
                                                  0x3033, 0x0001, // off screen
                                                  0x3022, 8,      // blue,
                                                  0x3023, 8,      // green,
                                                  0x3024, 8,      // red,
                                                  0x3021, 8,      // alpha,
                                                  0x3025, 24,     // depth and
                                                  0x3026, 8,      // stencil: as many bits as bgfx asks for
                                                  0x3038};
    QLibrary egl(QStringLiteral("EGL"), 1);
    const auto getDisplay = reinterpret_cast<void* (*)(void*)>(egl.resolve("eglGetDisplay"));
    const auto initialize =
        reinterpret_cast<unsigned (*)(void*, std::int32_t*, std::int32_t*)>(egl.resolve("eglInitialize"));
    const auto bindApi = reinterpret_cast<unsigned (*)(unsigned)>(egl.resolve("eglBindAPI"));
    const auto chooseConfig =
        reinterpret_cast<unsigned (*)(void*, const std::int32_t*, void**, std::int32_t, std::int32_t*)>(
            egl.resolve("eglChooseConfig"));
    if (!getDisplay || !initialize || !bindApi || !chooseConfig) {
        return false;
    }
    void* const display = getDisplay(nullptr);
    std::int32_t major = 0;
    std::int32_t minor = 0;
    void* config = nullptr;
    std::int32_t configs = 0;
    // The display stays initialised: bgfx takes it, and another part of the program may have it already.
    return display && initialize(display, &major, &minor) != 0 && (major > 1 || minor >= 3) &&
           bindApi(OpenGL) != 0 && chooseConfig(display, Wanted.data(), &config, 1, &configs) != 0 && configs > 0;
}

#else

bool HasHeadlessOpenGL()
{
    return true;
}

#endif

} // namespace vantoraudio::bgfx::device
