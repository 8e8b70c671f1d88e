#pragma once

#include "render/bgfx/bgfx.h"

#include <QtCore/QRect>
#include <QtGui/QMatrix4x4>

namespace vantoraudio::vantor3DQt {

/** What a view was last told, for those who must know where a line will lie on the picture. */
struct ViewState
{
    /** From the scene to normalised device coordinates. */
    QMatrix4x4 transform;
    /** Device pixels. */
    QRect viewport;
};

/** Views are numbers shared by all that draw, so there is one state for each number. */
ViewState& StateOfView(bgfx::ViewId id);

} // namespace vantoraudio::vantor3DQt
