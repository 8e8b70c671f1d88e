#pragma once

#include "render/bgfx/device/bgfx/BgfxApi.h"

#include <string_view>

namespace vantoraudio::bgfx::device {

/** The shader of this name as it was compiled for the renderer that is running. An invalid handle where there is
 * none for that renderer, or bgfx refuses it. */
[[nodiscard]] bgfx_shader_handle_t CreateShader(const BgfxApi& bgfx, std::string_view name);

} // namespace vantoraudio::bgfx::device
