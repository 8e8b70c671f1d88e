#pragma once

#include "render/bgfx/bx.h"

#include <QtCore/QRectF>
#include <QtGui/QMatrix4x4>

#include <algorithm>
#include <limits>

namespace vantoraudio::vantorAudioEngine::UI {

/** A time or an amplitude as a coordinate of the scene: the nearest finite float. Not-a-number stays so: what
 * stands there is not drawn. */
[[nodiscard]] inline float ToCoordinate(double value)
{
    constexpr double highest = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -highest, highest));
}

/**
 * The orthographic projection that shows the scene rect, its times taken relative to `bufferStart`. With the usual
 * scene rect, which begins at amplitude 0, amplitudes run from minus its height at the bottom to plus its height
 * at the top. A scene rect without width or height gives infinite entries, with which nothing is drawn.
 */
[[nodiscard]] inline QMatrix4x4 ProjectionOf(const QRectF& sceneRect, double bufferStart)
{
    QMatrix4x4 projection;
    bx::mtxOrtho(projection.data(), ToCoordinate(sceneRect.left() - bufferStart),
                 ToCoordinate(sceneRect.right() - bufferStart), ToCoordinate(sceneRect.top() - sceneRect.height()),
                 ToCoordinate(sceneRect.height() - sceneRect.top()), -0.01F, 100.0F, 0.0F, false,
                 bx::Handedness::Left);
    return projection;
}

} // namespace vantoraudio::vantorAudioEngine::UI
