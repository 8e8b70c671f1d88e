#pragma once

#include "render/bgfx/Frame.h"

#include <QtCore/QRect>
#include <QtGui/QMatrix4x4>

#include <cstdint>
#include <vector>

namespace vantoraudio::bgfx::device {

/** A draw as bgfx takes it: triangles or a list of lines. */
struct PlannedDraw
{
    bool isLines = false;
    /** Replaces what is there, alpha included, instead of coming over it. */
    bool replaces = false;
    ProgramHandle program;
    VertexLayout layout;
    std::vector<std::uint8_t> vertices;
    /** From the vertices to -1..1 on the whole picture, y upwards. */
    QMatrix4x4 transform;
    /** Nothing is drawn outside; pixels of the picture from the top left, never empty. */
    QRect clip;
    std::vector<UniformValue> uniforms;

    friend bool operator==(const PlannedDraw&, const PlannedDraw&) = default;
};

/** All that a picture depends on. It owns what it is made of, so that it can go to another thread; equal plans
 * make equal pictures. */
struct FramePlan
{
    QSize size;
    /** 0xRRGGBBAA, what the picture is filled with first. */
    std::uint32_t clearColor = 0;
    std::vector<PlannedDraw> draws;

    friend bool operator==(const FramePlan&, const FramePlan&) = default;
};

/** Waveforms and lines cover the same pixels as with the other devices: the same arithmetic finds them. */
[[nodiscard]] FramePlan PlanFrame(const Frame& frame, QSize picture);

} // namespace vantoraudio::bgfx::device
