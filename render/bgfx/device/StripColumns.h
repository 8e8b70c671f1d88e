#pragma once

#include "render/bgfx/device/Geometry.h"

#include <optional>
#include <vector>

namespace vantoraudio::bgfx::device {

/** Pixels on top of each other, rows counted from the bottom, the upper bound exclusive. */
struct RowSpan
{
    int lower = 0;
    int upper = 0;

    [[nodiscard]] bool IsEmpty() const { return lower >= upper; }
    [[nodiscard]] bool Contains(int row) const { return row >= lower && row < upper; }

    friend bool operator==(const RowSpan&, const RowSpan&) = default;
};

/** What is covered of each pixel column from `box.left` on; nothing lies outside the box. */
struct StripColumns
{
    PixelBox box;
    std::vector<RowSpan> rows;

    /** The box cut back to the lowest and the highest row of all columns; empty when nothing is covered. */
    [[nodiscard]] PixelBox Bounds() const;
};

/**
 * The pixels of a line strip that never turns back, as that of a waveform. It passes each column once, so that one
 * span of rows holds all of its pixels there: filling them costs the same however many lines share the column, and
 * all devices draw the same picture.
 *
 * A column's span are the pixels whose centres lie between the strip's lowest and highest point in the column.
 * Where there are none, it is the pixel in which the strip passes the column's middle: lines so have no gaps, also
 * where they are made of pieces too short to come by any centre. Any coordinates are safe.
 *
 * Empty for all that is no such strip: other topologies, vertices with colours or a third dimension, views that
 * are turned, strips that turn back, and vertices that are not finite.
 */
[[nodiscard]] std::optional<StripColumns> ToColumns(const Draw& draw, const View& view, QSize picture);

} // namespace vantoraudio::bgfx::device
