// announced_size.cpp: how large a file is by what it says itself, against what is there of it.
#include "video/announced_size.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

namespace stopngo {
namespace {

// Elements of EBML (RFC 8794): a number that tells what one is, then the number of bytes that follow.
constexpr std::uint64_t kHeader = 0x1A45DFA3;
constexpr std::uint64_t kSegment = 0x18538067;

/// A number whose first byte's leading zeros tell its length. whole: with the bit behind them, as what an element is
/// is told; nothing at the end of the file, and for a size of ones alone, which announces none.
std::optional<std::uint64_t> TakeNumber(std::istream& file, bool whole) {
  const int first = file.get();
  if (first <= 0) return std::nullopt;
  int length = 1;
  while ((first & (0x100 >> length)) == 0) ++length;
  std::uint64_t number = static_cast<std::uint64_t>(whole ? first : first & (0xFF >> length));
  for (int i = 1; i < length; ++i) number = number << 8U | static_cast<std::uint64_t>(file.get());
  const std::uint64_t unknown = (std::uint64_t{1} << (7U * static_cast<unsigned>(length))) - 1;
  if (!file || (!whole && number == unknown)) return std::nullopt;
  return number;
}

}  // namespace

std::uint64_t LackingBytes(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return 0;
  const std::uint64_t there = std::filesystem::file_size(path, error);
  std::ifstream file(path, std::ios::binary);
  if (error || TakeNumber(file, true) != kHeader) return 0;
  const auto header = TakeNumber(file, false);
  if (!header || *header > there) return 0;
  file.seekg(static_cast<std::streamoff>(*header), std::ios::cur);
  if (TakeNumber(file, true) != kSegment) return 0;
  const auto segment = TakeNumber(file, false);
  if (!segment) return 0;
  const std::uint64_t end = static_cast<std::uint64_t>(file.tellg()) + *segment;
  return end > there ? end - there : 0;
}

}  // namespace stopngo
