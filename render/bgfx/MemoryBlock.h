#pragma once

#include "render/bgfx/bgfx.h"

#include <memory>
#include <span>

namespace vantoraudio::bgfx {

/** What a `const Memory*` really points to: owned bytes, or a reference that is given back in the end. */
struct MemoryBlock : Memory
{
    MemoryBlock() = default;
    MemoryBlock(const MemoryBlock&) = delete;
    MemoryBlock& operator=(const MemoryBlock&) = delete;
    ~MemoryBlock()
    {
        if (release) {
            release(data, userData);
        }
    }

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return {data, size}; }

    std::unique_ptr<std::uint8_t[]> storage;
    ReleaseFn release = nullptr;
    void* userData = nullptr;
};

using MemoryOwner = std::unique_ptr<const MemoryBlock>;

std::unique_ptr<MemoryBlock> MakeOwnedMemory(std::uint32_t size);
/** Takes what alloc(), copy() or makeRef() gave out; null for null. */
MemoryOwner TakeMemory(const Memory* memory);

} // namespace vantoraudio::bgfx
