#include "render/bgfx/device/LastColumns.h"

namespace vantoraudio::bgfx::device {

const std::optional<StripColumns>& LastColumns::Of(const DrawCall& call)
{
    static const std::optional<StripColumns> none;
    // The other lines of a frame must not make its strip forgotten.
    if (!MayHaveColumns(call)) {
        return none;
    }
    const Strip strip = {.revision = call.revision,
                         .vertices = call.vertices.data(),
                         .vertexCount = call.vertexCount,
                         .transform = call.transform,
                         .viewport = call.viewport};
    if (m_strip != strip) {
        // Forgotten first, in case that memory runs out.
        m_strip.reset();
        m_columns = ToColumns(call, m_targetWidth, m_targetHeight);
        ++m_version;
        if (call.revision != 0) {
            m_strip = strip;
        }
    }
    return m_columns;
}

} // namespace vantoraudio::bgfx::device
