#pragma once

#include "render/bgfx/FrameRecorder.h"
#include "render/bgfx/Resources.h"

namespace vantoraudio::bgfx {

/** All that stands behind the functions of bgfx.h. */
struct Context
{
    Resources resources;
    FrameRecorder recorder;
    Stats stats;
    std::uint32_t frameNumber = 0;
    std::uint32_t lastDrawCount = 0;
};

/** Never destroyed: an application object that is never destroyed either may leave the device alive at exit, when
 *  its driver is already gone. */
Context& TheContext();

inline Resources& Objects()
{
    return TheContext().resources;
}

inline FrameRecorder& Recorder()
{
    return TheContext().recorder;
}

} // namespace vantoraudio::bgfx
