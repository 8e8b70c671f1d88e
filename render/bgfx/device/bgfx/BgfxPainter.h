#pragma once

#include "render/bgfx/device/bgfx/BgfxApi.h"
#include "render/bgfx/device/bgfx/FramePlan.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace vantoraudio::bgfx::device {

/** Draws plans with a running bgfx, which outlives it. Everything is called on the thread that bgfx belongs to; to
 * count frames is the caller's business. */
class BgfxPainter
{
public:
    /** Null where this bgfx cannot draw pictures and read them back, or has no shaders of ours. */
    static std::unique_ptr<BgfxPainter> Make(const BgfxApi& bgfx);
    ~BgfxPainter();
    BgfxPainter(const BgfxPainter&) = delete;
    BgfxPainter& operator=(const BgfxPainter&) = delete;

    /** Two views of bgfx: one is drawn into, a later one copies what was drawn. */
    struct Views
    {
        ViewId drawing = 0;
        ViewId copying = 1;
    };
    /** Adds a picture to bgfx's next frame. `pixels`, four bytes each and the first row on top, are there when
     * bgfx's frame() has returned the number given back here; they must stay until then. `id` is the same for the
     * pictures of one widget. Empty when bgfx has run out of something. */
    std::optional<std::uint32_t> Submit(std::uint64_t id, const FramePlan& plan, void* pixels, Views views);
    /** Gives back what is kept for the pictures of one widget. */
    void Forget(std::uint64_t id);

private:
    /** What the pictures of one widget are drawn into, and where they are read from. */
    struct Surface
    {
        QSize size;
        bgfx_texture_handle_t drawn{kInvalidHandle};
        bgfx_frame_buffer_handle_t frameBuffer{kInvalidHandle};
        bgfx_texture_handle_t read{kInvalidHandle};
    };

    explicit BgfxPainter(const BgfxApi& bgfx);
    [[nodiscard]] bool CanDraw() const;
    bool CreatePrograms();
    Surface* SurfaceOf(std::uint64_t id, QSize size);
    void Destroy(const Surface& surface);
    bool Submit(const PlannedDraw& draw, QSize picture, ViewId view);
    void SetUniforms(const PlannedDraw& draw);
    [[nodiscard]] bgfx_vertex_layout_t LayoutOf(const VertexLayout& layout) const;

    const BgfxApi& m_bgfx;
    /** Whether the first row of a frame buffer is the lowest: everything is drawn upside down then. */
    bool m_isBottomUp;
    std::array<bgfx_program_handle_t, Programs.size()> m_programs{};
    std::map<std::string, bgfx_uniform_handle_t> m_uniforms;
    std::map<std::uint64_t, Surface> m_surfaces;
};

} // namespace vantoraudio::bgfx::device
