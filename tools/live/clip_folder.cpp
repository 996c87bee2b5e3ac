// clip_folder.cpp: the folder that clips are kept in: their names, and how much of them stays.
#include "live/clip_folder.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/time_of_day.h"
#include "base/warning.h"
#include "host/common/failure.h"

namespace stopngo {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestInput = 40;   // letters of an input's name
constexpr std::size_t kLongestNumber = 10;  // a dash and the number of a name that was taken
constexpr std::string_view kTimeForm = "00000000T000000.000Z-";

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

bool IsHarmless(char letter) {
  return IsDigit(letter) || (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
         letter == '.' || letter == '-';
}

/// Of a camera's address the end tells most; who may see a folder need not see a password.
std::string Harmless(std::string_view input) {
  const std::size_t address = input.find("://");
  const std::size_t host_end = address == std::string_view::npos ? 0 : input.find('/', address + 3);
  const std::size_t user_end = input.substr(0, host_end).rfind('@');
  if (user_end != std::string_view::npos) input.remove_prefix(user_end + 1);
  std::string name;
  for (const char letter : input.substr(input.size() - std::min(input.size(), kLongestInput))) {
    name += IsHarmless(letter) ? letter : '-';
  }
  return name.empty() ? "-" : name;
}

bool IsClipName(std::string_view stem) {
  if (stem.size() <= kTimeForm.size() || stem.size() > kTimeForm.size() + kLongestInput + kLongestNumber) {
    return false;
  }
  for (std::size_t i = 0; i < kTimeForm.size(); ++i) {
    if (kTimeForm[i] == '0' ? !IsDigit(stem[i]) : stem[i] != kTimeForm[i]) return false;
  }
  return std::all_of(stem.begin(), stem.end(), IsHarmless);
}

struct KeptClip {
  fs::path video;
  fs::path json;
  std::uint64_t bytes = 0;
  double age_s = 0;
};

bool IsRegular(const fs::path& path) {
  std::error_code none;
  return fs::symlink_status(path, none).type() == fs::file_type::regular;
}

/// Oldest first: their names begin with their times.
std::vector<KeptClip> ClipsIn(const std::string& folder) {
  std::vector<KeptClip> clips;
  std::error_code error;
  const auto now = fs::file_time_type::clock::now();
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const fs::path& video = entry->path();
    const fs::path json = fs::path(video).replace_extension(".json");
    const bool ending = video.extension() == ".mkv" || video.extension() == ".y4m";
    if (!ending || !IsClipName(video.stem().string()) || !IsRegular(video) || !IsRegular(json)) continue;
    std::error_code gone;  // by whoever else keeps the folder tidy
    const auto bytes = fs::file_size(video, gone);
    const auto written = fs::last_write_time(video, gone);
    if (gone) continue;
    clips.push_back({video, json, bytes, std::chrono::duration<double>(now - written).count()});
  }
  if (error) throw Failure(folder + ": " + error.message());
  std::sort(clips.begin(), clips.end(),
            [](const KeptClip& a, const KeptClip& b) { return a.video < b.video; });
  return clips;
}

}  // namespace

std::string FreeClipPath(const std::string& folder, const Alarm& alarm, const std::string& current) {
  std::string time = TimeOfDay(alarm.when);
  std::erase_if(time, [](char letter) { return letter == '-' || letter == ':'; });
  const std::string first = (fs::path(folder) / (time + "-" + Harmless(alarm.input))).string();
  const auto taken = [&current](const std::string& path) {
    std::error_code none;
    return path == current || fs::exists(fs::symlink_status(path + ".mkv", none)) ||
           fs::exists(fs::symlink_status(path + ".y4m", none)) ||
           fs::exists(fs::symlink_status(path + ".json", none));
  };
  std::string path = first;
  for (int number = 2; taken(path); ++number) path = first + "-" + std::to_string(number);
  return path;
}

void MakeRoom(const std::string& folder, const ClipBounds& bounds, std::uint64_t growing) {
  const std::vector<KeptClip> clips = ClipsIn(folder);
  std::uint64_t total = growing;
  for (const KeptClip& clip : clips) total += clip.bytes;
  for (const KeptClip& clip : clips) {
    const bool large = bounds.max_bytes > 0 && total > bounds.max_bytes;
    const bool old = bounds.max_age_s > 0 && clip.age_s > bounds.max_age_s;
    if (!large && !old) continue;
    std::error_code error;
    fs::remove(clip.video, error);
    if (!error) fs::remove(clip.json, error);
    if (error) {
      Report(clip.video.string() + ": cannot be removed to make room: " + error.message());
    } else {
      total -= clip.bytes;
    }
  }
}

}  // namespace stopngo
