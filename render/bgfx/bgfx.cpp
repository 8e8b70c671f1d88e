#include "render/bgfx/bgfx.h"

#include "render/bgfx/Frame.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace vantoraudio::bgfx {
namespace {

struct VertexBuffer
{
    std::unique_ptr<const Memory> memory;
    VertexLayout layout;
};

struct Uniform
{
    UniformValue value;
    int references = 1;
};

/** Objects by the number in their handle. */
template<typename Handle, typename Object>
class HandleTable
{
public:
    /** An invalid handle when all numbers are taken. */
    Handle Add(Object object)
    {
        if (m_objects.size() >= kInvalidHandle) {
            return {};
        }
        // Numbers go round, so that a handle that was kept too long does not meet somebody else's object.
        while (m_next == kInvalidHandle || m_objects.contains(m_next)) {
            ++m_next;
        }
        m_objects.emplace(m_next, std::move(object));
        return {m_next++};
    }
    /** Null for handles that are invalid or destroyed. */
    Object* Find(Handle handle)
    {
        const auto found = m_objects.find(handle.idx);
        return found != m_objects.end() ? &found->second : nullptr;
    }
    void Remove(Handle handle) { m_objects.erase(handle.idx); }
    [[nodiscard]] std::size_t Count() const { return m_objects.size(); }
    auto begin() const { return m_objects.begin(); }
    auto end() const { return m_objects.end(); }

private:
    std::map<std::uint16_t, Object> m_objects;
    std::uint16_t m_next = 0;
};

struct Recorder
{
    HandleTable<DynamicVertexBufferHandle, VertexBuffer> vertexBuffers;
    HandleTable<UniformHandle, Uniform> uniforms;
    Frame frame;
    /** What the next submit() draws. */
    DynamicVertexBufferHandle vertices;
    std::uint64_t state = 0;
};

/** Never destroyed: widgets may go after the static objects of this library. */
Recorder& TheRecorder()
{
    static Recorder& recorder = *new Recorder;
    return recorder;
}

Topology TopologyOf(std::uint64_t state)
{
    switch (state & BGFX_STATE_PT_MASK) {
    case BGFX_STATE_PT_LINES:
        return Topology::Lines;
    case BGFX_STATE_PT_LINESTRIP:
        return Topology::LineStrip;
    default:
        return Topology::Triangles;
    }
}

std::vector<UniformValue> UniformValues()
{
    std::vector<UniformValue> values;
    for (const auto& [number, uniform] : TheRecorder().uniforms) {
        values.push_back(uniform.value);
    }
    return values;
}

} // namespace

Frame& RecordedFrame()
{
    return TheRecorder().frame;
}

View& RecordedView(ViewId id)
{
    static View unseen;
    return id < RecordedFrame().size() ? RecordedFrame()[id] : (unseen = {});
}

void ClearFrame()
{
    TheRecorder().frame = {};
    TheRecorder().vertices = {};
    TheRecorder().state = 0;
}

std::size_t LivingObjects()
{
    return TheRecorder().vertexBuffers.Count() + TheRecorder().uniforms.Count();
}

const Memory* makeRef(const void* data, std::uint32_t size)
{
    return new Memory{static_cast<const std::uint8_t*>(data), size};
}

DynamicVertexBufferHandle createDynamicVertexBuffer(const Memory* memory, const VertexLayout& layout,
                                                    std::uint16_t)
{
    return TheRecorder().vertexBuffers.Add({std::unique_ptr<const Memory>(memory), layout});
}

void update(DynamicVertexBufferHandle handle, std::uint32_t, const Memory* memory)
{
    std::unique_ptr<const Memory> owned(memory);
    if (VertexBuffer* buffer = TheRecorder().vertexBuffers.Find(handle)) {
        buffer->memory = std::move(owned);
    }
}

void destroy(DynamicVertexBufferHandle handle)
{
    TheRecorder().vertexBuffers.Remove(handle);
}

UniformHandle createUniform(const char* name, UniformType::Enum, std::uint16_t)
{
    auto& uniforms = TheRecorder().uniforms;
    for (const auto& [number, uniform] : uniforms) {
        if (uniform.value.name == name) {
            ++uniforms.Find({number})->references;
            return {number};
        }
    }
    return uniforms.Add({{name, {}}});
}

void destroy(UniformHandle handle)
{
    Uniform* uniform = TheRecorder().uniforms.Find(handle);
    if (uniform && --uniform->references == 0) {
        TheRecorder().uniforms.Remove(handle);
    }
}

void setUniform(UniformHandle handle, const void* value)
{
    if (Uniform* uniform = TheRecorder().uniforms.Find(handle)) {
        std::copy_n(static_cast<const float*>(value), uniform->value.value.size(), uniform->value.value.begin());
    }
}

void setViewClear(ViewId id, std::uint16_t flags, std::uint32_t rgba, float, std::uint8_t)
{
    RecordedView(id).clearColor = flags & BGFX_CLEAR_COLOR ? std::optional(rgba) : std::nullopt;
}

void setVertexBuffer(std::uint8_t, DynamicVertexBufferHandle handle)
{
    TheRecorder().vertices = handle;
}

void setState(std::uint64_t state, std::uint32_t)
{
    TheRecorder().state = state;
}

void submit(ViewId id, ProgramHandle program, std::uint32_t, std::uint8_t)
{
    Recorder& recorder = TheRecorder();
    const VertexBuffer* buffer = recorder.vertexBuffers.Find(std::exchange(recorder.vertices, {}));
    const std::uint64_t state = std::exchange(recorder.state, 0);
    if (buffer && buffer->memory && program.idx < Programs.size()) {
        RecordedView(id).draws.push_back({TopologyOf(state),
                                          program,
                                          buffer->layout,
                                          {buffer->memory->data, buffer->memory->size},
                                          UniformValues()});
    }
}

} // namespace vantoraudio::bgfx
