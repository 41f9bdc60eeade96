// SPDX-License-Identifier: MIT
// Halves held whole in memory, read or mapped, so that a probe is one array access. The engine's
// start-up uses none of this; it serves tools and machines with memory to spare. Only plain halves
// that have been registered can be held; for others nothing happens. A fault ends the program with
// exit code 1 and a message.
#pragma once

#include <cstdint>

#include "platform/mapped_file.h"

/// Reads a half into `buffer`, which has room for its `size` and outlives its use, or, where that
/// is null, into memory from TbAlloc. A half whose `size` is 0 holds nothing.
void TbLoadHalf(std::int32_t id, std::int32_t half, std::uint8_t* buffer);

/// Maps a half for the rest of the run.
void TbMapHalf(std::int32_t id, std::int32_t half);

/// Maps a half and gives the handles that TbUnmapHalf takes; they are untouched for a half that
/// cannot be held.
void TbMapHalfHandles(std::int32_t id, std::int32_t half, SystemHandle& file,
                      SystemHandle& mapping);

/// Ends a mapping of TbMapHalfHandles and closes its handles.
void TbUnmapHalf(std::int32_t id, std::int32_t half, SystemHandle file, SystemHandle mapping);
