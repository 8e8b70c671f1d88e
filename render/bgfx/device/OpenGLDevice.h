#pragma once

#include "render/bgfx/device/Device.h"

namespace vantoraudio::bgfx::device {

/** Null where no usable OpenGL context can be made (no such platform, too old, no application object) or none that
 *  can build a program and a picture. */
std::unique_ptr<Device> MakeOpenGLDevice();

} // namespace vantoraudio::bgfx::device
