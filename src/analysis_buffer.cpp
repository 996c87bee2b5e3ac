// analysis_buffer.cpp: the heap buffers that hold the cropped frames.
#include "analysis_buffer.h"

#include <cstdlib>
#include <new>

namespace {

/// As large as malloc's alignment, so that the pixels behind it are aligned as malloc would.
struct alignas(std::max_align_t) Header {
  std::size_t Size;
};

}  // namespace

data_08* AllocateAnalysisBuffer(std::size_t Size) {
  void* Block = std::calloc(1, sizeof(Header) + Size);
  if (Block == nullptr) return nullptr;
  return reinterpret_cast<data_08*>(new (Block) Header{Size} + 1);
}

std::size_t AnalysisBufferSize(const data_08* Buffer) {
  return (reinterpret_cast<const Header*>(Buffer) - 1)->Size;
}

void ReleaseAnalysisBuffer(data_08*& Buffer) {
  if (Buffer == nullptr) return;
  std::free(reinterpret_cast<Header*>(Buffer) - 1);
  Buffer = nullptr;
}
