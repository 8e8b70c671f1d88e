#pragma once

#include "render/bgfx/device/Geometry.h"

#include <cstdint>
#include <vector>

namespace vantoraudio::bgfx::device {

struct StripPoint
{
    float x = 0.0F;
    float y = 0.0F;
};

/** A line strip in the window coordinates of a target, in one or more runs. */
struct ReducedStrip
{
    std::vector<StripPoint> points;
    /** Index of each run's first point, ascending; empty when there are no points. */
    std::vector<std::size_t> runStarts;
};

/** Whether x and y of a point depend on nothing but its own x and y, each on one, as in a plain two-dimensional
 *  orthographic view. Only such strips can be reduced. */
bool IsReducible(const DrawCall& call);

/**
 * Shortens a strip that has many vertices in one pixel column to at most four vertices for each time that it
 * passes a column, covering the same pixels: a file of millions of samples costs one pass through its vertices,
 * however slow the device draws lines. Vertices that are not finite end a run, so that both lines at them are left
 * out. Coordinates far outside the target are cut back to a range in which drawing is safe.
 */
ReducedStrip ReduceStrip(const DrawCall& call, int targetHeight);

} // namespace vantoraudio::bgfx::device
