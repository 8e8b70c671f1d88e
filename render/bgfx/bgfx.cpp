#include "render/bgfx/bgfx.h"

#include "render/bgfx/DeviceLifetime.h"
#include "render/bgfx/FrameRecorder.h"
#include "render/bgfx/Resources.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cstring>

namespace vantoraudio::bgfx {
namespace {

struct Context
{
    Resources resources;
    FrameRecorder recorder;
    Stats stats;
    std::uint32_t frameNumber = 0;
    std::uint32_t lastDrawCount = 0;
};

/** Never destroyed: an application object that is never destroyed either may leave the device alive at exit, when
 *  its driver is already gone. */
Context& TheContext()
{
    static Context& context = *new Context;
    return context;
}

Resources& Objects()
{
    return TheContext().resources;
}

FrameRecorder& Recorder()
{
    return TheContext().recorder;
}

/** Keeps Qt from calling into this library once it is unloaded. */
struct ExitHook
{
    ExitHook() { qAddPostRoutine(&shutdown); }
    ~ExitHook() { qRemovePostRoutine(&shutdown); }
};

std::unique_ptr<ExitHook>& TheExitHook()
{
    static std::unique_ptr<ExitHook> hook;
    return hook;
}

View* FindView(ViewId id)
{
    return id < MaxViews ? &Recorder().views[id] : nullptr;
}

device::Matrix ReadMatrix(const void* floats)
{
    device::Matrix matrix = Identity;
    if (floats)
        std::memcpy(matrix.data(), floats, sizeof(matrix));
    return matrix;
}

UniformSnapshot TakeUniforms()
{
    auto values = std::make_shared<std::vector<device::UniformValue>>();
    Objects().uniforms.ForEach([&](const Uniform& uniform) { values->push_back({uniform.name, uniform.values}); });
    return values;
}

std::uint32_t AvailableTransient(std::uint32_t num, std::size_t elementSize)
{
    const std::size_t left = TransientBudget - Recorder().transientBytes;
    return static_cast<std::uint32_t>(std::min<std::size_t>(num, left / std::max<std::size_t>(1, elementSize)));
}

void Carry(Context& context)
{
    Resources& resources = context.resources;
    if (!resources.device || resources.deviceLost)
        return;
    if (!resources.device->BeginFrame()) {
        resources.deviceLost = true;
        return;
    }
    context.lastDrawCount = Execute(resources, context.recorder);
    resources.device->EndFrame();
}

} // namespace

DeviceLifetime& DeviceLifetime::Get()
{
    // As long-lived as the context, for the same reason.
    static DeviceLifetime& lifetime = *new DeviceLifetime;
    return lifetime;
}

bool DeviceLifetime::IsLost()
{
    return Objects().deviceLost;
}

bool DeviceLifetime::Ensure()
{
    if (Objects().deviceLost) {
        shutdown();
        return init({RendererType::Software});
    }
    if (Objects().device)
        return true;
    return QCoreApplication::instance() && !QCoreApplication::closingDown() && init();
}

bool init(const Init& wanted)
{
    if (Objects().device)
        return false;
    auto device = device::MakeDevice(wanted.type);
    if (!device)
        return false;
    Objects().AdoptDevice(std::move(device));
    if (QCoreApplication::instance())
        TheExitHook() = std::make_unique<ExitHook>();
    return true;
}

void shutdown()
{
    if (!Objects().device)
        return;
    Q_EMIT DeviceLifetime::Get().AboutToShutDown();
    Recorder().Clear();
    Objects().ReleaseDevice();
    TheExitHook().reset();
    Q_EMIT DeviceLifetime::Get().HasShutDown();
}

RendererType::Enum getRendererType()
{
    return Objects().caps.rendererType;
}

const char* getRendererName(RendererType::Enum type)
{
    switch (type) {
    case RendererType::OpenGL:
        return "OpenGL";
    case RendererType::Software:
        return "Software";
    default:
        return "Noop";
    }
}

const Caps* getCaps()
{
    return &Objects().caps;
}

const Stats* getStats()
{
    Context& context = TheContext();
    context.stats = context.resources.Count();
    context.stats.numDraw = context.lastDrawCount;
    return &context.stats;
}

std::uint32_t frame(std::uint8_t flags)
{
    Context& context = TheContext();
    context.lastDrawCount = 0;
    if (!(flags & BGFX_FRAME_DISCARD))
        Carry(context);
    context.recorder.Clear();
    return ++context.frameNumber;
}

IndexBufferHandle createIndexBuffer(const Memory* mem, std::uint16_t flags)
{
    const MemoryOwner memory = TakeMemory(mem);
    if (!memory)
        return {};
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
    if (size > UINT32_MAX)
        return {};
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
    if (buffer && memory)
        buffer->Update(startVertex, std::move(memory));
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
    if (!memory)
        return {};
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
    if (!uniform)
        return;
    Recorder().uniforms.reset();
    const std::size_t floats = std::min(uniform->values.size(), std::size_t{num} * 4);
    std::memcpy(uniform->values.data(), value, floats * sizeof(float));
}

TextureHandle createTexture2D(std::uint16_t width, std::uint16_t height, bool, std::uint16_t, TextureFormat::Enum,
                              std::uint64_t flags, const Memory* mem)
{
    const MemoryOwner memory = TakeMemory(mem);
    Texture texture{width, height, flags, std::vector<std::uint8_t>(std::size_t{4} * width * height), {}};
    if (memory)
        std::copy_n(memory->data, std::min<std::size_t>(memory->size, texture.pixels.size()),
                    texture.pixels.data());
    return Objects().textures.Add(std::move(texture));
}

void destroy(TextureHandle handle)
{
    const Texture* texture = Objects().textures.Find(handle);
    if (!texture || isValid(texture->frameBuffer))
        return;
    Recorder().Forget(handle);
    Objects().textures.Remove(handle);
}

std::uint32_t readTexture(TextureHandle handle, void* data, std::uint8_t)
{
    const Texture* texture = Objects().textures.Find(handle);
    if (!texture || !(texture->flags & BGFX_TEXTURE_READ_BACK))
        return 0;
    Recorder().reads.push_back({handle, static_cast<std::uint8_t*>(data)});
    return TheContext().frameNumber + 1;
}

FrameBufferHandle createFrameBuffer(std::uint16_t width, std::uint16_t height, TextureFormat::Enum, std::uint64_t)
{
    return Objects().CreateFrameBuffer(width, height);
}

void destroy(FrameBufferHandle handle)
{
    if (!Objects().frameBuffers.Find(handle))
        return;
    Recorder().Forget(getTexture(handle));
    Recorder().Forget(handle);
    Objects().DestroyFrameBuffer(handle);
}

TextureHandle getTexture(FrameBufferHandle handle, std::uint8_t attachment)
{
    const FrameBuffer* frameBuffer = Objects().frameBuffers.Find(handle);
    return frameBuffer && attachment == 0 ? frameBuffer->texture : TextureHandle{};
}

void setViewMode(ViewId, ViewMode::Enum) {}

void setViewRect(ViewId id, std::uint16_t x, std::uint16_t y, std::uint16_t width, std::uint16_t height)
{
    if (View* view = FindView(id))
        view->rect = {x, y, width, height};
}

void setViewClear(ViewId id, std::uint16_t flags, std::uint32_t rgba, float, std::uint8_t)
{
    if (View* view = FindView(id)) {
        view->clearFlags = flags;
        view->clearRgba = rgba;
    }
}

void setViewTransform(ViewId id, const void* viewMatrix, const void* projection)
{
    if (View* view = FindView(id)) {
        view->view = ReadMatrix(viewMatrix);
        view->projection = ReadMatrix(projection);
    }
}

void setViewFrameBuffer(ViewId id, FrameBufferHandle handle)
{
    if (View* view = FindView(id))
        view->frameBuffer = handle;
}

void resetView(ViewId id)
{
    if (View* view = FindView(id))
        *view = {};
}

void setState(std::uint64_t state, std::uint32_t)
{
    Recorder().next.state = state;
}

std::uint32_t setTransform(const void* mtx, std::uint16_t)
{
    Recorder().next.model = ReadMatrix(mtx);
    return 0;
}

void setIndexBuffer(IndexBufferHandle handle)
{
    Recorder().next.indices = {handle, kInvalidHandle};
}

void setIndexBuffer(const TransientIndexBuffer* buffer)
{
    Recorder().next.indices = {{}, buffer->allocation};
}

void setVertexBuffer(std::uint8_t stream, DynamicVertexBufferHandle handle)
{
    setVertexBuffer(stream, handle, 0, UINT32_MAX);
}

void setVertexBuffer(std::uint8_t, DynamicVertexBufferHandle handle, std::uint32_t startVertex,
                     std::uint32_t numVertices)
{
    Recorder().next.vertices = {handle, startVertex, numVertices, kInvalidHandle};
}

void setVertexBuffer(std::uint8_t, const TransientVertexBuffer* buffer)
{
    Recorder().next.vertices = {{}, 0, 0, buffer->allocation};
}

void touch(ViewId id)
{
    if (id < MaxViews)
        Recorder().touched.set(id);
}

void submit(ViewId id, ProgramHandle program, std::uint32_t, std::uint8_t flags)
{
    FrameRecorder& recorder = Recorder();
    if (id < MaxViews) {
        if (!recorder.uniforms)
            recorder.uniforms = TakeUniforms();
        recorder.draws.push_back({id, program, recorder.next, recorder.uniforms});
        touch(id);
    }
    recorder.Discard(flags);
}

void discard(std::uint8_t flags)
{
    Recorder().Discard(flags);
}

void blit(ViewId id, TextureHandle dst, std::uint16_t dstX, std::uint16_t dstY, TextureHandle src,
          std::uint16_t srcX, std::uint16_t srcY, std::uint16_t width, std::uint16_t height)
{
    const Texture* destination = Objects().textures.Find(dst);
    if (id >= MaxViews || !destination || !(destination->flags & BGFX_TEXTURE_BLIT_DST))
        return;
    Recorder().blits.push_back({id, dst, dstX, dstY, src, {srcX, srcY, width, height}});
    touch(id);
}

} // namespace vantoraudio::bgfx
