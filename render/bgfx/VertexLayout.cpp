#include "render/bgfx/bgfx.h"

namespace vantoraudio::bgfx {

VertexLayout& VertexLayout::begin(RendererType::Enum) noexcept
{
    *this = {};
    return *this;
}

VertexLayout& VertexLayout::add(Attrib::Enum attrib, std::uint8_t num, AttribType::Enum type,
                                bool normalized) noexcept
{
    m_attributes[attrib] = {m_stride, num, type, normalized};
    const int bytes = num * (type == AttribType::Float ? 4 : 1);
    m_stride = static_cast<std::uint16_t>(m_stride + bytes);
    return *this;
}

void VertexLayout::end() noexcept {}

void VertexLayout::decode(Attrib::Enum attrib, std::uint8_t& num, AttribType::Enum& type, bool& normalized,
                          bool& asInt) const noexcept
{
    const Attribute& attribute = m_attributes[attrib];
    num = attribute.num;
    type = attribute.type;
    normalized = attribute.normalized;
    asInt = false;
}

} // namespace vantoraudio::bgfx
