// fenced.cpp: memory that ends, or starts, where mapped memory does.
#include "fenced.h"

#include <sys/mman.h>

#include <algorithm>
#include <map>
#include <mutex>

namespace test {
namespace {

/// A multiple of every page size in use on the targets.
constexpr std::size_t kPage = 65536;
/// Larger ones are seldom touched as a whole: they are given back.
constexpr std::size_t kLargestKept = std::size_t{1} << 22;

/// Accessible bytes between unmapped pages, kept for the next of their size: of a new one every page is a fault.
class Bodies {
 public:
  /// Zeroed; null when nothing can be mapped.
  std::uint8_t* Take(std::size_t size) {
    {
      const std::lock_guard lock(mutex_);
      if (const auto kept = idle_.find(size); kept != idle_.end()) {
        std::uint8_t* const body = kept->second;
        idle_.erase(kept);
        std::fill_n(body, size, std::uint8_t{0});
        return body;
      }
    }
    void* const mapping =
        mmap(nullptr, size + 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapping == MAP_FAILED) return nullptr;
    auto* const body = static_cast<std::uint8_t*>(mapping) + kPage;
    if (size == 0 || mprotect(body, size, PROT_READ | PROT_WRITE) == 0) return body;
    munmap(mapping, size + 2 * kPage);
    return nullptr;
  }

  void GiveBack(std::uint8_t* body, std::size_t size, Fenced::Then then) {
    if (then == Fenced::Then::kUnmapped || size > kLargestKept) {
      munmap(body - kPage, size + 2 * kPage);
      return;
    }
    const std::lock_guard lock(mutex_);
    idle_.emplace(size, body);
  }

 private:
  std::mutex mutex_;
  std::multimap<std::size_t, std::uint8_t*> idle_;
};

Bodies& AllBodies() {
  static Bodies bodies;
  return bodies;
}

}  // namespace

Fenced::Fenced(std::size_t size, Side side, Then then)
    : size_(size),
      body_size_((size + kPage - 1) / kPage * kPage),
      body_(AllBodies().Take(body_size_)),
      then_(then) {
  if (body_ != nullptr) data_ = side == Side::kEnd ? body_ + (body_size_ - size) : body_;
}

Fenced::Fenced(std::span<const std::uint8_t> bytes, Side side) : Fenced(bytes.size(), side) {
  if (Mapped()) std::ranges::copy(bytes, data_);
}

Fenced::~Fenced() {
  if (body_ != nullptr) AllBodies().GiveBack(body_, body_size_, then_);
}

}  // namespace test
