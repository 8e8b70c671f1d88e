#include "render/vantor3D/ProgramFactory.h"

#include "render/bgfx/DeviceLifetime.h"
#include "render/vantor3D/ShaderTexts.h"

namespace vantoraudio::vantor3D {
namespace {

bgfx::ShaderHandle MakeShader(std::string_view text)
{
    return bgfx::createShader(bgfx::copy(text.data(), static_cast<std::uint32_t>(text.size())));
}

} // namespace

ProgramFactory& ProgramFactory::Get()
{
    // Never destroyed, as the handles that it keeps may be asked for until the very end.
    static ProgramFactory& factory = *new ProgramFactory;
    return factory;
}

ProgramFactory::ProgramFactory()
{
    auto& lifetime = bgfx::DeviceLifetime::Get();
    QObject::connect(&lifetime, &bgfx::DeviceLifetime::HasShutDown, &lifetime, [this] { DropPrograms(); });
}

void ProgramFactory::DropPrograms()
{
    for (const auto& [names, program] : m_programs) {
        bgfx::destroy(program);
    }
    m_programs.clear();
}

std::optional<bgfx::ProgramHandle> ProgramFactory::CreateProgram(std::string_view vertexShader,
                                                                 std::string_view fragmentShader)
{
    std::pair names{std::string(vertexShader), std::string(fragmentShader)};
    if (const auto known = m_programs.find(names); known != m_programs.end()) {
        return known->second;
    }
    const auto vertexText = ShaderText(vertexShader, bgfx::getRendererType());
    const auto fragmentText = ShaderText(fragmentShader, bgfx::getRendererType());
    if (!vertexText || !fragmentText) {
        return std::nullopt;
    }
    const auto program = bgfx::createProgram(MakeShader(*vertexText), MakeShader(*fragmentText), true);
    if (!bgfx::isValid(program)) {
        return std::nullopt;
    }
    m_programs.emplace(std::move(names), program);
    return program;
}

} // namespace vantoraudio::vantor3D
