// input.h: what a fuzz target makes of the bytes that it is given, and how it tells what must not be.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace fuzz {

/// Takes values off the front of the bytes. Those that are missing are 0.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : left_(reinterpret_cast<const char*>(data), size) {}

  [[nodiscard]] bool Empty() const { return left_.empty(); }

  template <typename Number>
  Number Take() {
    Number number{};
    const std::string_view bytes = left_.substr(0, sizeof number);
    if (!bytes.empty()) std::memcpy(&number, bytes.data(), bytes.size());
    left_.remove_prefix(bytes.size());
    return number;
  }

  /// 0 … count - 1, of one byte.
  std::size_t Below(std::size_t count) { return Take<std::uint8_t>() % count; }

  /// Mostly small, sometimes any number.
  std::uint32_t Size(std::uint32_t usual) {
    const auto drawn = Take<std::uint16_t>();
    return drawn < 0xFF00U ? drawn % (usual + 1) : Take<std::uint32_t>();
  }

  /// All that is left.
  [[nodiscard]] std::string_view Rest() const { return left_; }

 private:
  std::string_view left_;
};

/// Ends the program, as a finding, when what has to hold does not.
inline void Expect(bool holds, const std::string& what) {
  if (holds) return;
  std::fprintf(stderr, "fuzz: %s\n", what.c_str());
  std::abort();
}

}  // namespace fuzz
