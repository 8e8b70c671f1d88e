#pragma once

#include "render/bgfx/device/Device.h"

#include <algorithm>

namespace vantoraudio::bgfx::device {

/** Accepts everything and draws nothing. */
class NoopDevice final : public Device
{
public:
    [[nodiscard]] RendererType::Enum Type() const override { return RendererType::Noop; }
    [[nodiscard]] std::uint32_t MaxTextureSize() const override { return 16384; }
    [[nodiscard]] bool OriginBottomLeft() const override { return false; }
    bool BeginFrame() override { return true; }
    void EndFrame() override {}
    std::unique_ptr<Program> CreateProgram(std::string_view, std::string_view) override
    {
        return std::make_unique<Program>();
    }
    std::unique_ptr<Target> CreateTarget(int, int) override { return std::make_unique<EmptyTarget>(); }

private:
    class EmptyTarget final : public Target
    {
    public:
        void Clear(const Rect&, std::uint32_t) override {}
        void Draw(const Program&, const DrawCall&) override {}
        void Read(std::span<std::uint8_t> pixels) override { std::ranges::fill(pixels, std::uint8_t{0}); }
    };
};

} // namespace vantoraudio::bgfx::device
