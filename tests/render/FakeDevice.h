#pragma once

#include "render/bgfx/DrawingDevice.h"

#include <memory>
#include <new>

/** A drawing device that fails where a test wants it to. */
namespace drawing {

using namespace vantoraudio;

enum class Fault
{
    None,
    IsLost,
    RunsOutOfMemory
};

class FakeDevice : public bgfx::device::Device
{
public:
    /** `drawn` counts the frames, those that fail included, and outlives the device. */
    FakeDevice(int& drawn, Fault fault) : m_drawn(drawn), m_fault(fault) {}

    [[nodiscard]] bgfx::device::Kind Kind() const override { return bgfx::device::Kind::OpenGL; }
    [[nodiscard]] int MaxSide() const override { return 1024; }
    bool Draw(const bgfx::Frame&, QImage&) override
    {
        ++m_drawn;
        if (m_fault == Fault::RunsOutOfMemory) {
            throw std::bad_alloc();
        }
        return m_fault != Fault::IsLost;
    }

private:
    int& m_drawn;
    Fault m_fault;
};

/** Makes a FakeDevice the device that draws. */
inline void Adopt(int& drawn, Fault fault)
{
    bgfx::DrawingDevice::Get().Adopt(std::make_unique<FakeDevice>(drawn, fault));
}

} // namespace drawing
