#pragma once

#include "render/vantor3D/Line.h"
#include "render/vantor3D/Vertex.h"
#include "render/vantor3DQt/BGFXViewContext.h"
#include "render/vantor3DQt/Stipple.h"

#include <QtGui/QImage>

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace vantoraudio::vantor3DQt {

/** Draws one widget's frames: start a frame, draw into the view contexts, present. GUI thread only. */
class BGFXRenderer
{
public:
    BGFXRenderer() = default;
    ~BGFXRenderer();
    BGFXRenderer(const BGFXRenderer&) = delete;
    BGFXRenderer& operator=(const BGFXRenderer&) = delete;

    /** Lines, one device pixel wide. Colours with an alpha below 1 let shine through what is drawn already; this
     *  holds for all three states. */
    static const std::uint64_t STATE_LINES;
    static const std::uint64_t STATE_LINESTRIP;
    /** Triangles. */
    static const std::uint64_t STATE_TRANSPARENT;

    /** Frames go to `frameBuffer` (RGBA8888), which must stay until the frame is presented. False when that is
     * null or empty or there is no drawing device; it is made here if need be. Forgets what was recorded and never
     *  presented, by anybody. */
    bool StartFrame(QImage* frameBuffer);
    /** With a stipple the dashes begin again at each line's start; pixels count along x or y, whichever the line
     *  covers more of. `view` must have its transform and viewport by now. */
    void DrawLines(const BGFXViewContext& view, std::span<const vantor3D::Line> lines,
                   std::optional<LineStipple> stipple = std::nullopt);
    /** `indices` are three a triangle; triangles with an index or a position out of range are left out. */
    void DrawTriangles(const BGFXViewContext& view, std::span<const vantor3D::Vertex::Pos3fColorRGBA> vertices,
                       std::span<const std::uint16_t> indices, std::uint64_t state);
    /** Lets the following frames show up later than they are presented, see DrawingDevice::DrawInto(). */
    void SetMayLag(bool mayLag) { m_mayLag = mayLag; }
    /** Draws what was submitted since StartFrame() into the frame buffer, at once unless it may lag. A frame that
     * finds the device lost leaves the former picture. */
    void PresentSubmittedFrame(bool waitForVerticalSync);

private:
    void Submit(const BGFXViewContext& view, std::vector<vantor3D::Vertex::Pos3fColorRGBA> vertices,
                std::uint64_t state);

    QImage* m_frameBuffer = nullptr;
    bool m_mayLag = false;
    /** What the recorded draws refer to. */
    std::deque<std::vector<vantor3D::Vertex::Pos3fColorRGBA>> m_vertices;
};

} // namespace vantoraudio::vantor3DQt
