#pragma once

#include "render/bgfx/Context.h"
#include "render/bgfx/device/Device.h"

#include <memory>
#include <new>

/** A drawing device that fails where a test wants it to. */
namespace drawing {

using namespace vantoraudio;

/** What a FakeDevice was asked for. */
struct FakeLog
{
    int begun = 0;
    int ended = 0;
};

/** Fails where it is told to. */
class FakeDevice : public bgfx::device::Device
{
public:
    struct Faults
    {
        bool begins = true;
        bool throwsOnClear = false;
        bool losesPrograms = false;
    };

    FakeDevice(FakeLog& log, const Faults& faults) : m_log(log), m_faults(faults) {}

    [[nodiscard]] bgfx::RendererType::Enum Type() const override { return bgfx::RendererType::OpenGL; }
    [[nodiscard]] std::uint32_t MaxTextureSize() const override { return 1024; }
    [[nodiscard]] bool OriginBottomLeft() const override { return false; }
    bool BeginFrame() override
    {
        ++m_log.begun;
        return m_faults.begins;
    }
    void EndFrame() override { ++m_log.ended; }
    [[nodiscard]] bool IsLost() const override { return m_isLost; }
    std::unique_ptr<bgfx::device::Program> CreateProgram(std::string_view, std::string_view) override
    {
        m_isLost = m_faults.losesPrograms;
        return nullptr;
    }
    std::unique_ptr<bgfx::device::Target> CreateTarget(int, int) override
    {
        return std::make_unique<FakeTarget>(m_faults.throwsOnClear);
    }

private:
    class FakeTarget : public bgfx::device::Target
    {
    public:
        explicit FakeTarget(bool throws) : m_throws(throws) {}
        void Clear(const bgfx::device::Rect&, std::uint32_t) override
        {
            if (m_throws) {
                throw std::bad_alloc();
            }
        }
        void Draw(const bgfx::device::Program&, const bgfx::device::DrawCall&) override {}
        void Read(std::span<std::uint8_t>) override {}

    private:
        bool m_throws;
    };

    FakeLog& m_log;
    Faults m_faults;
    bool m_isLost = false;
};

/** Makes a FakeDevice the device that draws. */
inline void Adopt(FakeLog& log, const FakeDevice::Faults& faults)
{
    bgfx::Objects().AdoptDevice(std::make_unique<FakeDevice>(log, faults));
}

} // namespace drawing
