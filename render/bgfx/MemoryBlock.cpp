#include "render/bgfx/MemoryBlock.h"

#include <algorithm>

namespace vantoraudio::bgfx {

std::unique_ptr<MemoryBlock> MakeOwnedMemory(std::uint32_t size)
{
    auto block = std::make_unique<MemoryBlock>();
    block->storage = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    block->data = block->storage.get();
    block->size = size;
    return block;
}

MemoryOwner TakeMemory(const Memory* memory)
{
    return MemoryOwner(static_cast<const MemoryBlock*>(memory));
}

const Memory* alloc(std::uint32_t size)
{
    return MakeOwnedMemory(size).release();
}

const Memory* copy(const void* data, std::uint32_t size)
{
    auto block = MakeOwnedMemory(size);
    std::copy_n(static_cast<const std::uint8_t*>(data), size, block->data);
    return block.release();
}

const Memory* makeRef(const void* data, std::uint32_t size, ReleaseFn releaseFn, void* userData)
{
    auto block = std::make_unique<MemoryBlock>();
    // Only handed back to the release function in this form; the bytes are never written.
    block->data = static_cast<std::uint8_t*>(const_cast<void*>(data));
    block->size = size;
    block->release = releaseFn;
    block->userData = userData;
    return block.release();
}

} // namespace vantoraudio::bgfx
