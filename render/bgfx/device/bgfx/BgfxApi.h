#pragma once

// Ours comes first: the real header defines macros with the names of constants in ours.
#include "render/bgfx/Frame.h"

#include <bgfx/c99/bgfx.h>

namespace vantoraudio::bgfx::device {

/** bgfx as a table of functions. Unlike its C++ functions, which every program that links bgfx has a copy of, the
 * table of a running instance can be handed from one library to another. */
using BgfxApi = bgfx_interface_vtbl_t;

} // namespace vantoraudio::bgfx::device
