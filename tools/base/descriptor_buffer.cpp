// descriptor_buffer.cpp: writing to an open file, with the reason where that fails.
#include "base/descriptor_buffer.h"

#include <unistd.h>

#include <cerrno>

#include "base/interruption.h"

namespace stopngo {

int WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR || Interrupted()) {
      return errno;
    }
  }
  return 0;
}

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type byte) {
  if (sync() != 0) return traits_type::eof();
  if (!traits_type::eq_int_type(byte, traits_type::eof())) sputc(traits_type::to_char_type(byte));
  return traits_type::not_eof(byte);
}

int DescriptorBuffer::sync() {
  const std::string_view waiting(pbase(), static_cast<std::size_t>(pptr() - pbase()));
  if (error_ == 0) error_ = WriteAll(descriptor_, waiting);
  setp(bytes_.data(), bytes_.data() + bytes_.size());
  return error_ == 0 ? 0 : -1;
}

}  // namespace stopngo
