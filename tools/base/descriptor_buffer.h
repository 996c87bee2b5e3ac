// descriptor_buffer.h: writing to an open file, with the reason where that fails.
#pragma once

#include <array>
#include <cstddef>
#include <streambuf>
#include <string_view>

namespace stopngo {

/// Writes everything; gives 0, or the errno of the write that failed. One that a signal breaks off is taken up
/// again unless the signal is to end the program.
int WriteAll(int descriptor, std::string_view bytes);

/// Behind a stream. After the first write that failed nothing more is written.
class DescriptorBuffer : public std::streambuf {
 public:
  explicit DescriptorBuffer(int descriptor) : descriptor_(descriptor) {
    setp(bytes_.data(), bytes_.data() + bytes_.size());
  }
  /// The errno of the write that failed; 0: none did.
  [[nodiscard]] int Error() const { return error_; }

 protected:
  int_type overflow(int_type byte) override;
  int sync() override;

 private:
  int descriptor_;
  int error_ = 0;
  std::array<char, std::size_t{1} << 16> bytes_{};
};

}  // namespace stopngo
