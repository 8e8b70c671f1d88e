#include "render/bgfx/device/bgfx/BgfxPainter.h"

#include "render/bgfx/device/bgfx/BgfxShaders.h"

namespace vantoraudio::bgfx::device {
namespace {

constexpr std::uint64_t Over =
    BGFX_STATE_WRITE_RGB | BGFX_STATE_WRITE_A |
    BGFX_STATE_BLEND_FUNC_SEPARATE(BGFX_STATE_BLEND_SRC_ALPHA, BGFX_STATE_BLEND_INV_SRC_ALPHA,
                                   BGFX_STATE_BLEND_ONE, BGFX_STATE_BLEND_INV_SRC_ALPHA);
constexpr std::uint64_t Replacing = BGFX_STATE_WRITE_RGB | BGFX_STATE_WRITE_A;

std::uint16_t ToU16(int value)
{
    return static_cast<std::uint16_t>(value);
}

} // namespace

std::unique_ptr<BgfxPainter> BgfxPainter::Make(const BgfxApi& bgfx)
{
    std::unique_ptr<BgfxPainter> painter(new BgfxPainter(bgfx));
    return painter->CanDraw() && painter->CreatePrograms() ? std::move(painter) : nullptr;
}

BgfxPainter::BgfxPainter(const BgfxApi& bgfx) : m_bgfx(bgfx), m_isBottomUp(bgfx.get_caps()->originBottomLeft)
{
    m_programs.fill({kInvalidHandle});
}

BgfxPainter::~BgfxPainter()
{
    for (const auto& [id, surface] : m_surfaces) {
        Destroy(surface);
    }
    for (const auto& [name, uniform] : m_uniforms) {
        m_bgfx.destroy_uniform(uniform);
    }
    for (const bgfx_program_handle_t program : m_programs) {
        if (isValid(program)) {
            m_bgfx.destroy_program(program);
        }
    }
}

bool BgfxPainter::CanDraw() const
{
    constexpr std::uint64_t Needed = BGFX_CAPS_TEXTURE_BLIT | BGFX_CAPS_TEXTURE_READ_BACK;
    const bgfx_caps_t& caps = *m_bgfx.get_caps();
    return (caps.supported & Needed) == Needed &&
           (caps.formats[BGFX_TEXTURE_FORMAT_RGBA8] & BGFX_CAPS_FORMAT_TEXTURE_FRAMEBUFFER) != 0;
}

bool BgfxPainter::CreatePrograms()
{
    for (std::size_t i = 0; i < Programs.size(); ++i) {
        const bgfx_shader_handle_t vertexShader = CreateShader(m_bgfx, Programs[i].vertexShader);
        const bgfx_shader_handle_t fragmentShader = CreateShader(m_bgfx, Programs[i].fragmentShader);
        if (!isValid(vertexShader) || !isValid(fragmentShader)) {
            return false;
        }
        m_programs[i] = m_bgfx.create_program(vertexShader, fragmentShader, true);
        if (!isValid(m_programs[i])) {
            return false;
        }
    }
    return true;
}

std::optional<std::uint32_t> BgfxPainter::Submit(std::uint64_t id, const FramePlan& plan, void* pixels,
                                                 Views views)
{
    const Surface* surface = SurfaceOf(id, plan.size);
    if (!surface) {
        return std::nullopt;
    }
    const std::uint16_t width = ToU16(plan.size.width());
    const std::uint16_t height = ToU16(plan.size.height());
    m_bgfx.set_view_frame_buffer(views.drawing, surface->frameBuffer);
    m_bgfx.set_view_rect(views.drawing, 0, 0, width, height);
    m_bgfx.set_view_clear(views.drawing, BGFX_CLEAR_COLOR, plan.clearColor, 1.0F, 0);
    m_bgfx.set_view_mode(views.drawing, BGFX_VIEW_MODE_SEQUENTIAL);
    const QMatrix4x4 identity;
    m_bgfx.set_view_transform(views.drawing, identity.constData(), identity.constData());
    // Also what draws nothing is cleared.
    m_bgfx.touch(views.drawing);
    for (const PlannedDraw& draw : plan.draws) {
        if (!Submit(draw, plan.size, views.drawing)) {
            return std::nullopt;
        }
    }
    m_bgfx.blit(views.copying, surface->read, 0, 0, 0, 0, surface->drawn, 0, 0, 0, 0, width, height, 0);
    return m_bgfx.read_texture(surface->read, pixels, 0, 0);
}

bool BgfxPainter::Submit(const PlannedDraw& draw, QSize picture, ViewId view)
{
    const bgfx_vertex_layout_t layout = LayoutOf(draw.layout);
    const auto size = static_cast<std::uint32_t>(draw.vertices.size());
    const bgfx_vertex_buffer_handle_t buffer =
        m_bgfx.create_vertex_buffer(m_bgfx.copy(draw.vertices.data(), size), &layout, BGFX_BUFFER_NONE);
    if (!isValid(buffer)) {
        return false;
    }
    QMatrix4x4 transform = draw.transform;
    QRect clip = draw.clip;
    if (m_isBottomUp) {
        QMatrix4x4 upsideDown;
        upsideDown(1, 1) = -1.0F;
        transform = upsideDown * transform;
        // bgfx turns it over itself, for pictures that are not upside down.
        clip.moveTop(picture.height() - clip.top() - clip.height());
    }
    m_bgfx.set_transform(transform.constData(), 1);
    m_bgfx.set_scissor(ToU16(clip.x()), ToU16(clip.y()), ToU16(clip.width()), ToU16(clip.height()));
    m_bgfx.set_vertex_buffer(0, buffer, 0, size / draw.layout.getStride());
    SetUniforms(draw);
    m_bgfx.set_state((draw.replaces ? Replacing : Over) | (draw.isLines ? BGFX_STATE_PT_LINES : 0), 0);
    m_bgfx.submit(view, m_programs[draw.program.idx], 0, BGFX_DISCARD_ALL);
    // The frame at hand keeps it.
    m_bgfx.destroy_vertex_buffer(buffer);
    return true;
}

void BgfxPainter::SetUniforms(const PlannedDraw& draw)
{
    for (const UniformValue& uniform : draw.uniforms) {
        auto found = m_uniforms.find(uniform.name);
        if (found == m_uniforms.end()) {
            const auto handle = m_bgfx.create_uniform(uniform.name.c_str(), BGFX_UNIFORM_TYPE_VEC4, 1);
            found = m_uniforms.emplace(uniform.name, handle).first;
        }
        m_bgfx.set_uniform(found->second, uniform.value.data(), 1);
    }
}

bgfx_vertex_layout_t BgfxPainter::LayoutOf(const VertexLayout& layout) const
{
    bgfx_vertex_layout_t result;
    m_bgfx.vertex_layout_begin(&result, m_bgfx.get_renderer_type());
    m_bgfx.vertex_layout_add(&result, BGFX_ATTRIB_POSITION, layout.coordinates, BGFX_ATTRIB_TYPE_FLOAT, false,
                             false);
    if (layout.hasColor) {
        m_bgfx.vertex_layout_add(&result, BGFX_ATTRIB_COLOR0, 4, BGFX_ATTRIB_TYPE_UINT8, true, false);
    }
    m_bgfx.vertex_layout_end(&result);
    return result;
}

BgfxPainter::Surface* BgfxPainter::SurfaceOf(std::uint64_t id, QSize size)
{
    if (const auto found = m_surfaces.find(id); found != m_surfaces.end()) {
        if (found->second.size == size) {
            return &found->second;
        }
        Forget(id);
    }
    const auto texture = [&](std::uint64_t flags) {
        return m_bgfx.create_texture_2d(ToU16(size.width()), ToU16(size.height()), false, 1,
                                        BGFX_TEXTURE_FORMAT_RGBA8, flags, nullptr, 0);
    };
    Surface surface{
        size, texture(BGFX_TEXTURE_RT), {kInvalidHandle}, texture(BGFX_TEXTURE_BLIT_DST | BGFX_TEXTURE_READ_BACK)};
    if (isValid(surface.drawn)) {
        surface.frameBuffer = m_bgfx.create_frame_buffer_from_handles(1, &surface.drawn, false);
    }
    if (!isValid(surface.frameBuffer) || !isValid(surface.read)) {
        Destroy(surface);
        return nullptr;
    }
    return &m_surfaces.emplace(id, surface).first->second;
}

void BgfxPainter::Forget(std::uint64_t id)
{
    if (const auto found = m_surfaces.find(id); found != m_surfaces.end()) {
        Destroy(found->second);
        m_surfaces.erase(found);
    }
}

void BgfxPainter::Destroy(const Surface& surface)
{
    if (isValid(surface.frameBuffer)) {
        m_bgfx.destroy_frame_buffer(surface.frameBuffer);
    }
    for (const bgfx_texture_handle_t texture : {surface.drawn, surface.read}) {
        if (isValid(texture)) {
            m_bgfx.destroy_texture(texture);
        }
    }
}

} // namespace vantoraudio::bgfx::device
