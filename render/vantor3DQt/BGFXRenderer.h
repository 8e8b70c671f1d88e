#pragma once

#include "render/bgfx/bgfx.h"
#include "render/vantor3D/Line.h"
#include "render/vantor3D/Vertex.h"
#include "render/vantor3DQt/BGFXViewContext.h"

#include <QtCore/QSize>
#include <QtGui/QImage>

#include <cstdint>
#include <optional>
#include <span>

namespace vantoraudio::vantor3DQt {

/** A dash pattern of 16 bits, lowest first; each bit covers `factor` device pixels of a line. */
struct LineStipple
{
    std::uint16_t pattern = 0xFFFF;
    int factor = 1;
};

/** Draws one widget's frames: start a frame, draw into view contexts, present. GUI thread only. */
class BGFXRenderer
{
public:
    /** Lines, one device pixel wide, in their own colours. Colours with an alpha below 1 let shine through what is
     *  drawn already; this holds for all three states. */
    static const std::uint64_t STATE_LINES;
    static const std::uint64_t STATE_LINESTRIP;
    /** Triangles. */
    static const std::uint64_t STATE_TRANSPARENT;

    BGFXRenderer() = default;
    BGFXRenderer(const BGFXRenderer&) = delete;
    BGFXRenderer& operator=(const BGFXRenderer&) = delete;
    ~BGFXRenderer();

    /** The size of the frame buffers that StartFrame() will get, device pixels. An empty size also gives back what
     *  fetching pictures takes; the last picture stays. */
    void SetFrameSize(const QSize& size);

    /** False when there is nothing to draw into (an invalid frame buffer, an empty frame size) or no drawing
     *  device; it is made here if need be. Drops what was submitted to any view and never presented. */
    bool StartFrame(bgfx::FrameBufferHandle frameBuffer);
    /** With a stipple the dashes begin anew at each line's start; pixels count along x or y, whichever the line
     *  covers more of. `view` must have its transform and viewport by now. */
    void DrawLines(const BGFXViewContext& view, std::span<const vantor3D::Line> lines,
                   std::optional<LineStipple> stipple = std::nullopt);
    /** `indices` are three a triangle; triangles with an index or a position out of range are left out. */
    void DrawTriangles(const BGFXViewContext& view, std::span<const vantor3D::Vertex::Pos3fColorRGBA> vertices,
                       std::span<const std::uint16_t> indices, std::uint64_t state);
    /** Lets the device draw what was submitted since StartFrame() and fetches the picture. */
    void PresentSubmittedFrame(bool waitForVerticalSync);
    /** The scale that the last picture is shown at. */
    void SetPixelRatio(double ratio) { m_picture.setDevicePixelRatio(ratio); }
    /** The last presented picture, first row on top; null before the first. A frame that finds the device lost
     *  leaves it. */
    [[nodiscard]] const QImage& Picture() const { return m_picture; }

private:
    bgfx::FrameBufferHandle m_frameBuffer;
    bgfx::TextureHandle m_readBack;
    QSize m_size;
    QImage m_picture;
};

} // namespace vantoraudio::vantor3DQt
