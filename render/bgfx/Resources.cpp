#include "render/bgfx/Resources.h"

#include <algorithm>
#include <cstring>

namespace vantoraudio::bgfx {
namespace {

/** A buffer's bytes as own, writable ones, with at least `size` of them. */
std::unique_ptr<MemoryBlock> OwnedCopy(std::span<const std::uint8_t> bytes, std::uint32_t size)
{
    auto block = MakeOwnedMemory(size);
    const std::size_t kept = std::min<std::size_t>(bytes.size(), size);
    std::ranges::copy(bytes.first(kept), block->data);
    std::fill(block->data + kept, block->data + size, std::uint8_t{0});
    return block;
}

template<typename Index>
std::vector<std::uint32_t> Widen(std::span<const std::uint8_t> bytes)
{
    std::vector<std::uint32_t> indices(bytes.size() / sizeof(Index));
    for (std::size_t i = 0; i < indices.size(); ++i) {
        Index index = 0;
        std::memcpy(&index, bytes.data() + i * sizeof(Index), sizeof(Index));
        indices[i] = index;
    }
    return indices;
}

} // namespace

std::vector<std::uint32_t> WidenIndices(std::span<const std::uint8_t> bytes, bool index16)
{
    return index16 ? Widen<std::uint16_t>(bytes) : Widen<std::uint32_t>(bytes);
}

std::uint32_t VertexBuffer::VertexCount() const
{
    return memory && layout.getStride() > 0 ? memory->size / layout.getStride() : 0;
}

std::uint64_t VertexBuffer::NextRevision()
{
    static std::uint64_t last = 0;
    return ++last;
}

void VertexBuffer::Update(std::uint32_t startVertex, MemoryOwner source)
{
    revision = NextRevision();
    const std::uint32_t oldSize = memory ? memory->size : 0;
    const bool resizable = (flags & BGFX_BUFFER_ALLOW_RESIZE) != 0;
    if (startVertex == 0 && (resizable || source->size == oldSize)) {
        memory = std::move(source);
        return;
    }
    const std::uint64_t offset = std::uint64_t{startVertex} * layout.getStride();
    const std::uint64_t wantedSize = std::max<std::uint64_t>(oldSize, offset + source->size);
    const auto newSize = resizable && wantedSize <= UINT32_MAX ? static_cast<std::uint32_t>(wantedSize) : oldSize;
    if (offset >= newSize) {
        return;
    }
    auto block = OwnedCopy(memory ? memory->Bytes() : std::span<const std::uint8_t>{}, newSize);
    std::copy_n(source->data, std::min<std::uint64_t>(source->size, newSize - offset), block->data + offset);
    memory = std::move(block);
}

void Resources::AdoptDevice(std::unique_ptr<device::Device> newDevice)
{
    device = std::move(newDevice);
    deviceLost = false;
    caps.rendererType = device->Type();
    caps.originBottomLeft = device->OriginBottomLeft();
    // Handles of pictures carry 16-bit sizes.
    caps.limits.maxTextureSize = std::min<std::uint32_t>(device->MaxTextureSize(), UINT16_MAX);
}

void Resources::ReleaseDevice()
{
    frameBuffers.ForEach([](FrameBuffer& frameBuffer) { frameBuffer.target.reset(); });
    programs.ForEach([](ProgramObject& object) { object.program.reset(); });
    device.reset();
    deviceLost = false;
    caps = {};
}

ProgramHandle Resources::CreateProgram(ShaderHandle vertexShader, ShaderHandle fragmentShader)
{
    const Shader* vertex = shaders.Find(vertexShader);
    const Shader* fragment = shaders.Find(fragmentShader);
    if (!device || !vertex || !fragment) {
        return {};
    }
    auto program = device->CreateProgram(vertex->text, fragment->text);
    deviceLost = deviceLost || device->IsLost();
    return program ? programs.Add({std::move(program)}) : ProgramHandle{};
}

UniformHandle Resources::CreateUniform(const char* name, std::uint16_t num)
{
    if (const UniformHandle known = uniforms.FindIf([&](const Uniform& uniform) { return uniform.name == name; });
        isValid(known)) {
        ++uniforms.Find(known)->references;
        return known;
    }
    return uniforms.Add({name, std::vector<float>(std::size_t{num} * 4, 0.0F)});
}

void Resources::ReleaseUniform(UniformHandle handle)
{
    Uniform* uniform = uniforms.Find(handle);
    if (uniform && --uniform->references == 0) {
        uniforms.Remove(handle);
    }
}

FrameBufferHandle Resources::CreateFrameBuffer(std::uint16_t width, std::uint16_t height)
{
    if (!device || width == 0 || height == 0 || std::max(width, height) > caps.limits.maxTextureSize) {
        return {};
    }
    const FrameBufferHandle handle = frameBuffers.Add({width, height, {}, nullptr});
    if (isValid(handle)) {
        frameBuffers.Find(handle)->texture = textures.Add({width, height, BGFX_TEXTURE_RT, {}, handle});
    }
    return handle;
}

void Resources::DestroyFrameBuffer(FrameBufferHandle handle)
{
    if (const FrameBuffer* frameBuffer = frameBuffers.Find(handle)) {
        textures.Remove(frameBuffer->texture);
        frameBuffers.Remove(handle);
    }
}

Stats Resources::Count() const
{
    Stats stats;
    stats.numDynamicVertexBuffers = vertexBuffers.Count();
    stats.numFrameBuffers = frameBuffers.Count();
    stats.numIndexBuffers = indexBuffers.Count();
    stats.numPrograms = programs.Count();
    stats.numShaders = shaders.Count();
    stats.numTextures = textures.Count();
    stats.numUniforms = uniforms.Count();
    return stats;
}

} // namespace vantoraudio::bgfx
