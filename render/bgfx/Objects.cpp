#include "render/bgfx/Context.h"

#include <algorithm>
#include <cstring>

namespace vantoraudio::bgfx {
namespace {

std::uint32_t AvailableTransient(std::uint32_t num, std::size_t elementSize)
{
    const std::size_t left = TransientBudget - Recorder().transientBytes;
    return static_cast<std::uint32_t>(std::min<std::size_t>(num, left / std::max<std::size_t>(1, elementSize)));
}

} // namespace

IndexBufferHandle createIndexBuffer(const Memory* mem, std::uint16_t flags)
{
    const MemoryOwner memory = TakeMemory(mem);
    if (!memory) {
        return {};
    }
    return Objects().indexBuffers.Add({WidenIndices(memory->Bytes(), !(flags & BGFX_BUFFER_INDEX32))});
}

void destroy(IndexBufferHandle handle)
{
    Objects().indexBuffers.Remove(handle);
}

DynamicVertexBufferHandle createDynamicVertexBuffer(std::uint32_t num, const VertexLayout& layout,
                                                    std::uint16_t flags)
{
    const std::uint64_t size = std::uint64_t{num} * layout.getStride();
    if (size > UINT32_MAX) {
        return {};
    }
    auto memory = MakeOwnedMemory(static_cast<std::uint32_t>(size));
    std::fill_n(memory->data, memory->size, std::uint8_t{0});
    return createDynamicVertexBuffer(memory.release(), layout, flags);
}

DynamicVertexBufferHandle createDynamicVertexBuffer(const Memory* mem, const VertexLayout& layout,
                                                    std::uint16_t flags)
{
    return Objects().vertexBuffers.Add({TakeMemory(mem), layout, flags});
}

void update(DynamicVertexBufferHandle handle, std::uint32_t startVertex, const Memory* mem)
{
    MemoryOwner memory = TakeMemory(mem);
    VertexBuffer* buffer = Objects().vertexBuffers.Find(handle);
    if (buffer && memory) {
        buffer->Update(startVertex, std::move(memory));
    }
}

void destroy(DynamicVertexBufferHandle handle)
{
    Recorder().Forget(handle);
    Objects().vertexBuffers.Remove(handle);
}

std::uint32_t getAvailTransientVertexBuffer(std::uint32_t num, const VertexLayout& layout)
{
    return AvailableTransient(num, layout.getStride());
}

std::uint32_t getAvailTransientIndexBuffer(std::uint32_t num, bool index32)
{
    return AvailableTransient(num, index32 ? 4 : 2);
}

void allocTransientVertexBuffer(TransientVertexBuffer* buffer, std::uint32_t num, const VertexLayout& layout)
{
    FrameRecorder& recorder = Recorder();
    const std::size_t size = std::size_t{AvailableTransient(num, layout.getStride())} * layout.getStride();
    recorder.transientVertices.push_back({std::vector<std::uint8_t>(size), layout});
    recorder.transientBytes += size;
    *buffer = {recorder.transientVertices.back().bytes.data(), static_cast<std::uint32_t>(size), 0,
               layout.getStride(), static_cast<std::uint16_t>(recorder.transientVertices.size() - 1)};
}

void allocTransientIndexBuffer(TransientIndexBuffer* buffer, std::uint32_t num, bool index32)
{
    FrameRecorder& recorder = Recorder();
    const std::size_t size = std::size_t{AvailableTransient(num, index32 ? 4 : 2)} * (index32 ? 4 : 2);
    recorder.transientIndices.push_back({std::vector<std::uint8_t>(size), !index32});
    recorder.transientBytes += size;
    *buffer = {recorder.transientIndices.back().bytes.data(), static_cast<std::uint32_t>(size), 0, !index32,
               static_cast<std::uint16_t>(recorder.transientIndices.size() - 1)};
}

ShaderHandle createShader(const Memory* mem)
{
    const MemoryOwner memory = TakeMemory(mem);
    if (!memory) {
        return {};
    }
    const auto bytes = memory->Bytes();
    return Objects().shaders.Add({std::string(bytes.begin(), bytes.end())});
}

void destroy(ShaderHandle handle)
{
    Objects().shaders.Remove(handle);
}

ProgramHandle createProgram(ShaderHandle vertexShader, ShaderHandle fragmentShader, bool destroyShaders)
{
    const ProgramHandle program = Objects().CreateProgram(vertexShader, fragmentShader);
    if (destroyShaders) {
        destroy(vertexShader);
        destroy(fragmentShader);
    }
    return program;
}

void destroy(ProgramHandle handle)
{
    Objects().programs.Remove(handle);
}

UniformHandle createUniform(const char* name, UniformType::Enum, std::uint16_t num)
{
    Recorder().uniforms.reset();
    return Objects().CreateUniform(name, num);
}

void destroy(UniformHandle handle)
{
    Recorder().uniforms.reset();
    Objects().ReleaseUniform(handle);
}

void setUniform(UniformHandle handle, const void* value, std::uint16_t num)
{
    Uniform* uniform = Objects().uniforms.Find(handle);
    if (!uniform) {
        return;
    }
    Recorder().uniforms.reset();
    const std::size_t floats = std::min(uniform->values.size(), std::size_t{num} * 4);
    std::memcpy(uniform->values.data(), value, floats * sizeof(float));
}

TextureHandle createTexture2D(std::uint16_t width, std::uint16_t height, bool, std::uint16_t, TextureFormat::Enum,
                              std::uint64_t flags, const Memory* mem)
{
    const MemoryOwner memory = TakeMemory(mem);
    Texture texture{width, height, flags, std::vector<std::uint8_t>(std::size_t{4} * width * height), {}};
    if (memory) {
        std::copy_n(memory->data, std::min<std::size_t>(memory->size, texture.pixels.size()),
                    texture.pixels.data());
    }
    return Objects().textures.Add(std::move(texture));
}

void destroy(TextureHandle handle)
{
    const Texture* texture = Objects().textures.Find(handle);
    if (!texture || isValid(texture->frameBuffer)) {
        return;
    }
    Recorder().Forget(handle);
    Objects().textures.Remove(handle);
}

std::uint32_t readTexture(TextureHandle handle, void* data, std::uint8_t)
{
    const Texture* texture = Objects().textures.Find(handle);
    if (!texture || !(texture->flags & BGFX_TEXTURE_READ_BACK)) {
        return 0;
    }
    Recorder().reads.push_back({handle, static_cast<std::uint8_t*>(data)});
    return TheContext().frameNumber + 1;
}

FrameBufferHandle createFrameBuffer(std::uint16_t width, std::uint16_t height, TextureFormat::Enum, std::uint64_t)
{
    return Objects().CreateFrameBuffer(width, height);
}

void destroy(FrameBufferHandle handle)
{
    if (!Objects().frameBuffers.Find(handle)) {
        return;
    }
    Recorder().Forget(getTexture(handle));
    Recorder().Forget(handle);
    Objects().DestroyFrameBuffer(handle);
}

TextureHandle getTexture(FrameBufferHandle handle, std::uint8_t attachment)
{
    const FrameBuffer* frameBuffer = Objects().frameBuffers.Find(handle);
    return frameBuffer && attachment == 0 ? frameBuffer->texture : TextureHandle{};
}

} // namespace vantoraudio::bgfx
