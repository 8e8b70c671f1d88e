#pragma once

#include "render/vantor3D/Line.h"
#include "render/vantor3DQt/BGFXRenderer.h"
#include "render/vantor3DQt/ViewState.h"

#include <vector>

namespace vantoraudio::vantor3DQt {

/**
 * The parts of a line that a stipple lets through, as lines of the scene, so that a device needs to know solid
 * lines only. Just what can be seen in the viewport is cut, however long the line is: the result has at most one
 * dash for each two pixels of the viewport's longer side. Empty for lines that cannot be seen or are not finite.
 */
std::vector<vantor3D::Line> CutDashes(const vantor3D::Line& line, const LineStipple& stipple,
                                      const ViewState& view);

/** Whether all six coordinates are finite. */
bool IsFinite(const vantor3D::Line& line);

} // namespace vantoraudio::vantor3DQt
