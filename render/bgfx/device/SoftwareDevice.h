#pragma once

#include "render/bgfx/device/Device.h"

#include <memory>

namespace vantoraudio::bgfx::device {

/**
 * Draws with the processor, pixel for pixel by OpenGL's rules of coverage: pixel centres, line ends half open, no
 * smoothing. Transforms are affine: w is taken as 1. Vertices that are not finite are skipped with the lines and
 * triangles that they belong to.
 */
std::unique_ptr<Device> MakeSoftwareDevice();

} // namespace vantoraudio::bgfx::device
