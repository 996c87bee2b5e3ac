// fenced.h: memory that ends, or starts, where mapped memory does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace test {

/// Size bytes, zeroed, between unmapped pages, right against one of them: there one byte too many is a
/// fault. An empty one has no memory. Large ones take address space only, until they are touched.
class Fenced {
 public:
  enum class Side {
    kEnd,    ///< its end is the start of an unmapped page
    kStart,  ///< its start is the end of an unmapped page
  };

  /// What becomes of the memory in the end.
  enum class Then {
    kKept,      ///< for the next of its size, which is much faster
    kUnmapped,  ///< what still uses it is a fault
  };

  explicit Fenced(std::size_t size, Side side = Side::kEnd, Then then = Then::kKept);
  /// A copy of bytes.
  Fenced(std::span<const std::uint8_t> bytes, Side side);
  ~Fenced();
  Fenced(const Fenced&) = delete;
  Fenced& operator=(const Fenced&) = delete;

  [[nodiscard]] bool Mapped() const { return body_ != nullptr; }
  [[nodiscard]] std::uint8_t* Data() const { return data_; }
  [[nodiscard]] std::span<std::uint8_t> Bytes() const { return {data_, size_}; }

 private:
  std::size_t size_;
  std::size_t body_size_;  ///< in whole pages
  std::uint8_t* body_;
  Then then_;
  std::uint8_t* data_ = nullptr;
};

}  // namespace test
