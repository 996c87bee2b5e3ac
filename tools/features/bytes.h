// bytes.h: numbers as bytes, lowest first, whatever the machine.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace stopngo {

class ByteWriter {
 public:
  template <std::integral Number>
  void Put(Number number) {
    const auto bits = static_cast<std::make_unsigned_t<Number>>(number);
    for (std::size_t i = 0; i < sizeof bits; ++i)
      bytes_ += static_cast<char>((std::uint64_t{bits} >> (8 * i)) & 0xff);
  }
  void Put(double number) { Put(std::bit_cast<std::uint64_t>(number)); }
  /// Its length before it.
  void PutText(std::string_view text) {
    Put(static_cast<std::uint32_t>(text.size()));
    bytes_ += text;
  }
  void PutRaw(std::string_view bytes) { bytes_ += bytes; }

  [[nodiscard]] const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

/// There are fewer bytes than are asked for, or one that cannot be there.
struct BadBytes {};

/// Throws BadBytes.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : rest_(bytes) {}

  template <typename Number>
  Number Take() {
    if constexpr (std::is_same_v<Number, double>) {
      return std::bit_cast<double>(Take<std::uint64_t>());
    } else {
      std::uint64_t bits = 0;
      const std::string_view bytes = TakeRaw(sizeof(Number));
      for (std::size_t i = 0; i < bytes.size(); ++i) {
        bits |= std::uint64_t{static_cast<std::uint8_t>(bytes[i])} << (8 * i);
      }
      return static_cast<Number>(bits);
    }
  }
  std::string_view TakeText() { return TakeRaw(Take<std::uint32_t>()); }
  std::string_view TakeRaw(std::size_t count) {
    if (count > rest_.size()) throw BadBytes{};
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }
  /// A count of things that have so many bytes at least, and so no more than could be there.
  std::size_t TakeCount(std::size_t bytes_each) {
    const auto count = Take<std::uint32_t>();
    if (count > rest_.size() / bytes_each) throw BadBytes{};
    return count;
  }
  void Expect(std::size_t bytes) const {
    if (bytes > rest_.size()) throw BadBytes{};
  }
  void ExpectEnd() const {
    if (!rest_.empty()) throw BadBytes{};
  }

 private:
  std::string_view rest_;
};

}  // namespace stopngo
