#pragma once

#include "render/bgfx/device/StripColumns.h"

#include <cstdint>
#include <optional>

namespace vantoraudio::bgfx::device {

/**
 * The columns of the strip that a target has drawn last. They are worked out anew only when the strip changes or
 * is shown otherwise: many frames show a waveform that stands still under a position that moves.
 */
class LastColumns
{
public:
    LastColumns(int targetWidth, int targetHeight) : m_targetWidth(targetWidth), m_targetHeight(targetHeight) {}

    /** As ToColumns() gives them; valid until the next call. */
    [[nodiscard]] const std::optional<StripColumns>& Of(const DrawCall& call);
    /** Another number whenever the columns are other ones; never 0 when there are some. */
    [[nodiscard]] std::uint64_t Version() const { return m_version; }

private:
    /** All that columns depend on, but for the target's size. The layout goes with the revision. */
    struct Strip
    {
        std::uint64_t revision = 0;
        const std::uint8_t* vertices = nullptr;
        std::uint32_t vertexCount = 0;
        Matrix transform{};
        Rect viewport;

        friend bool operator==(const Strip&, const Strip&) = default;
    };

    int m_targetWidth;
    int m_targetHeight;
    /** Absent when the strip may not be known again. */
    std::optional<Strip> m_strip;
    std::optional<StripColumns> m_columns;
    std::uint64_t m_version = 0;
};

} // namespace vantoraudio::bgfx::device
