#include "render/vantor3D/Vertex.h"

namespace vantoraudio::vantor3D::Vertex {
namespace {

using bgfx::Attrib;
using bgfx::AttribType;

VertexLayout MakeLayout(std::uint8_t coordinates, bool withColor)
{
    VertexLayout layout;
    layout.begin().add(Attrib::Position, coordinates, AttribType::Float);
    if (withColor) {
        layout.add(Attrib::Color0, 4, AttribType::Uint8, true);
    }
    layout.end();
    return layout;
}

} // namespace

const VertexLayout& Pos2f::Layout()
{
    static const VertexLayout layout = MakeLayout(2, false);
    return layout;
}

const VertexLayout& Pos3fColorRGBA::Layout()
{
    static const VertexLayout layout = MakeLayout(3, true);
    return layout;
}

} // namespace vantoraudio::vantor3D::Vertex
