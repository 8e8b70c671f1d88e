#include "ui/waveform/drawing/Projection.h"

#include "render/bgfx/bx.h"

#include <algorithm>
#include <limits>

namespace vantoraudio::vantorAudioEngine::UI {

QMatrix4x4 ProjectionOf(const QRectF& sceneRect, double bufferStart)
{
    QMatrix4x4 projection;
    bx::mtxOrtho(projection.data(), ToCoordinate(sceneRect.left() - bufferStart),
                 ToCoordinate(sceneRect.right() - bufferStart), ToCoordinate(sceneRect.top() - sceneRect.height()),
                 ToCoordinate(sceneRect.height() - sceneRect.top()), -0.01F, 100.0F, 0.0F, false,
                 bx::Handedness::Left);
    return projection;
}

float ToCoordinate(double value)
{
    constexpr double highest = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -highest, highest));
}

} // namespace vantoraudio::vantorAudioEngine::UI
