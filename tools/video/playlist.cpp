// playlist.cpp: lists of recordings, which are read in a list's stead.
#include "video/playlist.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>

#include "base/file_place.h"

namespace stopngo {
namespace {

/// Longer lists are none that somebody wrote, bytes.
constexpr std::size_t kLongest = std::size_t{1} << 20;
/// Lists in one another, and files in all.
constexpr std::size_t kMost = 10'000;

constexpr std::string_view kM3u = "#EXTM3U";
constexpr std::string_view kConcat = "ffconcat version";

/// Empty where it is no list: of a video only the first bytes are read.
std::string TextOfList(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return {};
  std::ifstream file(path, std::ios::binary);
  std::string text(kConcat.size(), '\0');
  const auto read = [&](std::size_t start) {
    file.read(text.data() + start, static_cast<std::streamsize>(text.size() - start));
    text.resize(start + static_cast<std::size_t>(file.gcount()));
  };
  read(0);
  if (!text.starts_with(kM3u) && text != kConcat) return {};
  text.resize(kLongest);
  read(std::min(kConcat.size(), static_cast<std::size_t>(file.gcount())));
  return text;
}

/// A word as FFmpeg's own lists quote it: in '', or with a backslash before each sign.
std::string Unquoted(std::string_view text) {
  std::string word;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\'') {
      quoted = !quoted;
    } else if (text[i] == '\\' && !quoted && i + 1 < text.size()) {
      word += text[++i];
    } else if (quoted || (text[i] != ' ' && text[i] != '\t')) {
      word += text[i];
    } else {
      break;
    }
  }
  return word;
}

/// The address in an M3U line such as #EXT-X-MAP:URI="head.mp4", or the line itself.
std::optional<std::string> M3uEntry(std::string_view line) {
  if (!line.starts_with('#')) return std::string(line);
  constexpr std::string_view kAddress = "URI=\"";
  const std::size_t start = line.find(kAddress);
  if (start == std::string_view::npos) return std::nullopt;
  line.remove_prefix(start + kAddress.size());
  return std::string(line.substr(0, line.find('"')));
}

std::optional<std::string> ConcatEntry(std::string_view line) {
  constexpr std::string_view kFile = "file";
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  if (!line.starts_with(kFile) || line.size() == kFile.size()) return std::nullopt;
  line.remove_prefix(kFile.size());
  if (line.front() != ' ' && line.front() != '\t') return std::nullopt;
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  return Unquoted(line);
}

std::vector<std::string> EntriesOf(const std::string& path) {
  const std::string text = TextOfList(path);
  const bool m3u = text.starts_with(kM3u);
  std::vector<std::string> entries;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with('\r')) line.pop_back();
    const std::optional<std::string> entry = m3u ? M3uEntry(line) : ConcatEntry(line);
    if (entry && !entry->empty()) entries.push_back((FolderOf(path) / *entry).string());
  }
  return entries;
}

}  // namespace

std::vector<std::string> PlaylistEntries(const std::string& path) {
  std::vector<std::string> all = EntriesOf(path);
  for (std::size_t i = 0; i < all.size() && all.size() < kMost; ++i) {
    const std::vector<std::string> inner = EntriesOf(all[i]);
    all.insert(all.end(), inner.begin(), inner.end());
  }
  return all;
}

}  // namespace stopngo
