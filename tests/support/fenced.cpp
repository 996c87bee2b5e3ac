// fenced.cpp: memory that ends, or starts, where mapped memory does.
#include "fenced.h"

#include <sys/mman.h>

#include <algorithm>

namespace test {
namespace {

/// A multiple of every page size in use on the targets.
constexpr std::size_t kPage = 65536;

}  // namespace

Fenced::Fenced(std::size_t size, Side side) : size_(size) {
  const std::size_t body = (size + kPage - 1) / kPage * kPage;
  mapping_size_ = body + 2 * kPage;
  mapping_ = mmap(nullptr, mapping_size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (mapping_ == MAP_FAILED) {
    mapping_ = nullptr;
    return;
  }
  auto* start = static_cast<std::uint8_t*>(mapping_) + kPage;
  if (body > 0 && mprotect(start, body, PROT_READ | PROT_WRITE) != 0) {
    munmap(mapping_, mapping_size_);
    mapping_ = nullptr;
    return;
  }
  data_ = side == Side::kEnd ? start + (body - size) : start;
}

Fenced::Fenced(std::span<const std::uint8_t> bytes, Side side) : Fenced(bytes.size(), side) {
  if (Mapped()) std::ranges::copy(bytes, data_);
}

Fenced::~Fenced() {
  if (mapping_ != nullptr) munmap(mapping_, mapping_size_);
}

}  // namespace test
