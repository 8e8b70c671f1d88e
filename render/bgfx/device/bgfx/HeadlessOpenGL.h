#pragma once

namespace vantoraudio::bgfx::device {

/** Whether bgfx finds the OpenGL that it uses without a window. It must be asked first, where bgfx would end the
 * program otherwise (Linux); true elsewhere. */
[[nodiscard]] bool HasHeadlessOpenGL();

} // namespace vantoraudio::bgfx::device
