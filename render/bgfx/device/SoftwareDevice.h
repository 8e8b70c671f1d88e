#pragma once

#include "render/bgfx/device/Device.h"

namespace vantoraudio::bgfx::device {

/**
 * Draws into memory with the processor, pixel for pixel by OpenGL's rules of coverage: pixel centres, line ends
 * half open, no smoothing. Transforms are affine: w is taken as 1. Vertices that are not finite are skipped with
 * the lines and triangles that they belong to.
 */
class SoftwareDevice final : public Device
{
public:
    [[nodiscard]] RendererType::Enum Type() const override { return RendererType::Software; }
    [[nodiscard]] std::uint32_t MaxTextureSize() const override { return 16384; }
    [[nodiscard]] bool OriginBottomLeft() const override { return false; }
    bool BeginFrame() override { return true; }
    void EndFrame() override {}
    std::unique_ptr<Program> CreateProgram(std::string_view vertexShader,
                                           std::string_view fragmentShader) override;
    std::unique_ptr<Target> CreateTarget(int width, int height) override;
};

} // namespace vantoraudio::bgfx::device
