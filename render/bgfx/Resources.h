#pragma once

#include "render/bgfx/HandleTable.h"
#include "render/bgfx/MemoryBlock.h"
#include "render/bgfx/bgfx.h"
#include "render/bgfx/device/Device.h"

#include <memory>
#include <string>
#include <vector>

namespace vantoraudio::bgfx {

struct VertexBuffer
{
    /** Bytes of the application or of our own; own ones are unshared and may be written. */
    std::unique_ptr<const MemoryBlock> memory;
    VertexLayout layout;
    std::uint16_t flags = BGFX_BUFFER_NONE;
    /** Names the bytes: other ones have another number. */
    std::uint64_t revision = NextRevision();

    [[nodiscard]] std::uint32_t VertexCount() const;
    void Update(std::uint32_t startVertex, MemoryOwner source);

    /** Never 0. */
    static std::uint64_t NextRevision();
};

struct IndexBuffer
{
    std::vector<std::uint32_t> indices;
};

struct Shader
{
    std::string text;
};

struct ProgramObject
{
    std::unique_ptr<device::Program> program;
};

struct Uniform
{
    std::string name;
    std::vector<float> values;
    int references = 1;
};

struct Texture
{
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint64_t flags = BGFX_TEXTURE_NONE;
    /** Four bytes a pixel; empty in the texture of a frame buffer, whose picture is the device's. */
    std::vector<std::uint8_t> pixels;
    FrameBufferHandle frameBuffer;
};

struct FrameBuffer
{
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    TextureHandle texture;
    /** Made by the device when first drawn into, and again after a shutdown. */
    std::unique_ptr<device::Target> target;
};

/** All objects that handles stand for, and the device that draws. */
struct Resources
{
    // The device stands first: it must outlive the targets and programs that it made.
    std::unique_ptr<device::Device> device;
    bool deviceLost = false;
    Caps caps;

    HandleTable<DynamicVertexBufferHandle, VertexBuffer> vertexBuffers;
    HandleTable<IndexBufferHandle, IndexBuffer> indexBuffers;
    HandleTable<ShaderHandle, Shader> shaders;
    HandleTable<ProgramHandle, ProgramObject> programs;
    HandleTable<UniformHandle, Uniform> uniforms;
    HandleTable<TextureHandle, Texture> textures;
    HandleTable<FrameBufferHandle, FrameBuffer> frameBuffers;

    void AdoptDevice(std::unique_ptr<device::Device> newDevice);
    /** Leaves every handle in place; what the device held is gone. */
    void ReleaseDevice();

    ProgramHandle CreateProgram(ShaderHandle vertexShader, ShaderHandle fragmentShader);
    UniformHandle CreateUniform(const char* name, std::uint16_t num);
    void ReleaseUniform(UniformHandle handle);
    FrameBufferHandle CreateFrameBuffer(std::uint16_t width, std::uint16_t height);
    void DestroyFrameBuffer(FrameBufferHandle handle);
    [[nodiscard]] Stats Count() const;
};

/** 16- or 32-bit indices, as they lie in memory, widened. */
std::vector<std::uint32_t> WidenIndices(std::span<const std::uint8_t> bytes, bool index16);

} // namespace vantoraudio::bgfx
