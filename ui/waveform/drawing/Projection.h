#pragma once

#include <QtCore/QRectF>
#include <QtGui/QMatrix4x4>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * The orthographic projection that shows the scene rect, its times taken relative to `bufferStart`. With the usual
 * scene rect, which begins at amplitude 0, amplitudes run from minus its height at the bottom to plus its height
 * at the top. A scene rect without width or height gives infinite entries, with which nothing is drawn.
 */
[[nodiscard]] QMatrix4x4 ProjectionOf(const QRectF& sceneRect, double bufferStart);

/** A time or an amplitude as a coordinate of the scene: the nearest finite float. Not-a-number stays so: what
 * stands there is not drawn. */
[[nodiscard]] float ToCoordinate(double value);

} // namespace vantoraudio::vantorAudioEngine::UI
