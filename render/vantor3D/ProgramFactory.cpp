#include "render/vantor3D/ProgramFactory.h"

#include "render/bgfx/DrawingDevice.h"

#include <algorithm>

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
    const auto* found = std::ranges::find_if(bgfx::Programs, [&](const bgfx::Program& program) {
        return program.vertexShader == vertexShader && program.fragmentShader == fragmentShader;
    });
    if (found == bgfx::Programs.end()) {
        return std::nullopt;
    }
    return bgfx::ProgramHandle{static_cast<std::uint16_t>(found - bgfx::Programs.begin())};
}

} // namespace vantoraudio::vantor3D
