#pragma once

#include "render/bgfx/device/Device.h"

#include <memory>

namespace vantoraudio::bgfx::device {

/** Null where no usable OpenGL context can be made (no such platform, too old, no application object) or none that
 *  can build the programs and draw a picture. */
std::unique_ptr<Device> MakeOpenGLDevice();

} // namespace vantoraudio::bgfx::device
