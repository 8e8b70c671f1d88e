#pragma once

#include "render/vantor3D/Color.h"

#include <array>

namespace vantoraudio::vantor3D {

/** A straight line of one colour between two points of the scene (x, y, z). */
struct Line
{
    std::array<float, 3> start{};
    std::array<float, 3> end{};
    Color color;
};

} // namespace vantoraudio::vantor3D
