// analysis_buffer.h: the heap buffers that hold the cropped frames.
//
// A buffer remembers its size, in a header before its first byte: settings may change while a buffer
// lives, and the context record has no field to spare for what was allocated.
#pragma once

#include <cstddef>

#include "bitclip.h"

/// A buffer of Size zeroed bytes, or null when the heap has none.
data_08* AllocateAnalysisBuffer(std::size_t Size);

/// The Size that the buffer was allocated with.
std::size_t AnalysisBufferSize(const data_08* Buffer);

/// Releases the buffer, if there is one, and clears the pointer.
void ReleaseAnalysisBuffer(data_08*& Buffer);
