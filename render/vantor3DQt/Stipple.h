#pragma once

#include "render/bgfx/Frame.h"
#include "render/vantor3D/Line.h"

#include <cstdint>
#include <vector>

namespace vantoraudio::vantor3DQt {

/** A dash pattern of 16 bits, lowest first; each bit covers `factor` device pixels of a line. */
struct LineStipple
{
    std::uint16_t pattern = 0xFFFF;
    int factor = 1;
};

/**
 * The parts of a line that a stipple lets through, as lines of the scene, so that a device needs to know solid
 * lines only. Just what can be seen in the viewport is cut, however long the line is: the result has at most one
 * dash for each two pixels of the viewport's longer side. Empty for lines that cannot be seen or are not finite.
 */
[[nodiscard]] std::vector<vantor3D::Line> CutDashes(const vantor3D::Line& line, const LineStipple& stipple,
                                                    const bgfx::View& view);

} // namespace vantoraudio::vantor3DQt
