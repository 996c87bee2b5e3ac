// source_options.cpp: the options of every subcommand that reads frames.
#include "command/options/source_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "base/interruption.h"
#include "command/options/number_checks.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "video/playlist.h"

namespace stopngo {
namespace {

constexpr const char* kInputHelp =
    "video file, image sequence (such as img%04d.png), camera (such as /dev/video0), address of a stream "
    "(such as "
    "rtsp://camera/street), or - for Y4M on standard input";

void TakeRawSize(const std::string& text, SourceOptions& options) {
  const std::optional<FrameSize> size = SizeOf(text);
  if (!size || size->width < 1 || size->height < 1) {
    throw CLI::ValidationError("--raw", Quoted(text) + " is no size such as 800x480");
  }
  options.raw_width = size->width;
  options.raw_height = size->height;
}

/// Whether a name is of an image sequence such as img%04d.png.
bool IsOfSequence(std::string_view name, std::string_view pattern) {
  const std::size_t number = pattern.find('%');
  const std::size_t end = pattern.find('d', number);
  if (end == std::string_view::npos) return false;
  const std::string_view before = pattern.substr(0, number);
  const std::string_view behind = pattern.substr(end + 1);
  if (name.size() <= before.size() + behind.size()) return false;
  if (!name.starts_with(before) || !name.ends_with(behind)) return false;
  name.remove_prefix(before.size());
  name.remove_suffix(behind.size());
  return std::ranges::all_of(name, [](unsigned char c) { return std::isdigit(c) != 0; });
}

}  // namespace

void AddInput(CLI::App& app, std::string& input) {
  app.add_option("INPUT", input, kInputHelp)->required()->type_name("FILE");
}

void AddInput(CLI::App& app, std::vector<std::string>& inputs) {
  app.add_option("INPUT", inputs, kInputHelp)->required()->type_name("FILE");
}

void AddSourceOptions(CLI::App& app, SourceOptions& options) {
  app.add_option("--format", options.format, "FFmpeg's name of the input's format, such as v4l2 or lavfi")
      ->type_name("NAME");
  app.add_flag("--original", options.original, "hand 1920x1080 and 1280x720 frames over as they are");
  app.add_option_function<std::string>(
         "--raw", [&options](const std::string& text) { TakeRawSize(text, options); },
         "the input is raw luma: planes of this size, one after the other")
      ->type_name("WxH");
  app.add_option("--raw-fps", options.raw_fps, "frames a second of raw luma")
      ->type_name("NUMBER")
      ->capture_default_str()
      ->check(AboveZero());
}

void AddAllowDamaged(CLI::App& app, bool& allow_damaged) {
  app.add_flag("--allow-damaged", allow_damaged,
               "take recordings that are damaged or end early as far as they go, with a warning");
}

SourceOptions ForSettings(SourceOptions options, const Settings& settings, DamageRule& damage) {
  options.width = settings.input_width;
  options.height = settings.input_height;
  options.rate = settings.rate;
  options.hear = [&damage](const Remark& remark) {
    // What a signal breaks off looks like an early end.
    if (!Interrupted()) damage(remark);
  };
  return options;
}

void EnterInput(FileRegister& files, const std::string& input, const std::string& what) {
  namespace fs = std::filesystem;
  constexpr std::string_view kProtocol = "file:";  // of FFmpeg's, for names that look like others
  std::error_code error;
  const bool named = fs::exists(input, error);
  const std::string path = !named && input.starts_with(kProtocol) ? input.substr(kProtocol.size()) : input;
  files.Reads(path, what);
  for (const std::string& entry : PlaylistEntries(path)) files.Reads(entry, "what " + what + " lists");
  const fs::path pattern(input);
  if (named || input.find('%') == std::string::npos) return;
  for (const fs::directory_entry& entry : fs::directory_iterator(FolderOf(pattern), error)) {
    if (!IsOfSequence(entry.path().filename().string(), pattern.filename().string())) continue;
    files.Reads(entry.path().string(), "a picture of " + what);
  }
}

bool NextFrame(FrameSource& frames, LumaFrame& frame) {
  if (Interrupted()) return false;
  try {
    return frames.Next(frame);
  } catch (const Failure&) {
    if (Interrupted()) return false;
    throw;
  }
}

}  // namespace stopngo
