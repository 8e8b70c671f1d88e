#include "render/vantor3D/ProgramFactory.h"

#include "render/bgfx/DrawingDevice.h"

namespace vantoraudio::vantor3D {

ProgramFactory& ProgramFactory::Get()
{
    static ProgramFactory factory;
    return factory;
}

std::optional<bgfx::ProgramHandle> ProgramFactory::CreateProgram(std::string_view vertexShader,
                                                                 std::string_view fragmentShader)
{
    if (bgfx::DrawingDevice::Get().Kind() == bgfx::device::Kind::None) {
        return std::nullopt;
    }
    for (std::uint16_t i = 0; i < bgfx::Programs.size(); ++i) {
        if (bgfx::Programs[i].vertexShader == vertexShader && bgfx::Programs[i].fragmentShader == fragmentShader) {
            return bgfx::ProgramHandle{i};
        }
    }
    return std::nullopt;
}

} // namespace vantoraudio::vantor3D
