#include "render/bgfx/device/bgfx/BgfxShaders.h"

#include <QtCore/QFile>

namespace vantoraudio::bgfx::device {
namespace {

/** The folder that bgfx's build functions put a renderer's shaders in; null for renderers that we have none for.
 */
const char* FolderOf(bgfx_renderer_type_t renderer)
{
    switch (renderer) {
    case BGFX_RENDERER_TYPE_DIRECT3D11:
        return "dxbc";
    case BGFX_RENDERER_TYPE_DIRECT3D12:
        return "dxil";
    case BGFX_RENDERER_TYPE_METAL:
        return "metal";
    case BGFX_RENDERER_TYPE_OPENGLES:
        return "essl";
    case BGFX_RENDERER_TYPE_OPENGL:
        return "glsl";
    case BGFX_RENDERER_TYPE_VULKAN:
        return "spirv";
    default:
        return nullptr;
    }
}

} // namespace

bgfx_shader_handle_t CreateShader(const BgfxApi& bgfx, std::string_view name)
{
    const char* folder = FolderOf(bgfx.get_renderer_type());
    QFile file(QStringLiteral(":/vantoraudio/shaders/%1/%2.sc.bin")
                   .arg(QLatin1String(folder), QLatin1String(name.data(), qsizetype(name.size()))));
    if (!folder || !file.open(QIODevice::ReadOnly)) {
        return {kInvalidHandle};
    }
    const QByteArray code = file.readAll();
    return bgfx.create_shader(bgfx.copy(code.constData(), static_cast<std::uint32_t>(code.size())));
}

} // namespace vantoraudio::bgfx::device
