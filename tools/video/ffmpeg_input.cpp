// ffmpeg_input.cpp: opens what FFmpeg reads: files, cameras, streams.
#include "video/ffmpeg_input.h"

#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "base/interruption.h"
#include "host/common/failure.h"
#include "host/common/text.h"
#include "video/reader.h"

namespace stopngo {
namespace {

// FFmpeg takes the part of a name before a colon for a protocol, and "-" for a file.
std::string UrlOf(const std::string& input) {
  if (input == "-") return "pipe:0";
  std::error_code ignored;
  return std::filesystem::is_regular_file(input, ignored) ? "file:" + input : input;
}

const AVInputFormat* FormatOf(const SourceOptions& options) {
  const bool camera = options.format.empty() && options.input.starts_with("/dev/video");
  const std::string name = camera ? "v4l2" : options.format;
  if (name.empty()) return nullptr;
  RegisterDevices();
  const AVInputFormat* const format = Ffmpeg().av_find_input_format(name.c_str());
  if (format == nullptr)
    throw Failure("--format: FFmpeg knows no input format '" + name + "'", ExitCode::kUsage);
  return format;
}

bool IsV4l2(const AVInputFormat* format) {
  return format != nullptr && std::strcmp(format->name, "video4linux2,v4l2") == 0;
}

/// What a format is asked for, and, once it is open, what of that it does not know.
class Asked {
 public:
  Asked(const SourceOptions& options, const AVInputFormat* format) {
    // A camera has a size of its own choice unless it is asked; it answers with the nearest that it has.
    std::string size = options.asked_size;
    if (size.empty() && options.original && IsV4l2(format)) size = "1920x1080";
    if (!size.empty()) av_dict_set(&settings_, kSize, size.c_str(), 0);
    if (options.asked_fps > 0) {
      av_dict_set(&settings_, kRate, Print("%.6g", options.asked_fps).c_str(), 0);
    }
  }
  ~Asked() { av_dict_free(&settings_); }
  Asked(const Asked&) = delete;
  Asked& operator=(const Asked&) = delete;

  AVDictionary** Settings() { return &settings_; }

  void RefuseUnknown(const SourceOptions& options) const {
    for (const auto& [setting, option] : {std::pair{kSize, "--size"}, std::pair{kRate, "--fps"}}) {
      if (av_dict_get(settings_, setting, nullptr, 0) != nullptr) throw CannotBeAsked(option, options);
    }
  }

 private:
  static constexpr const char* kSize = "video_size";
  static constexpr const char* kRate = "framerate";
  AVDictionary* settings_ = nullptr;
};

}  // namespace

FfmpegInput OpenFfmpegInput(const SourceOptions& options) {
  av_log_set_level(AV_LOG_QUIET);  // The one sentence of a Failure says what a user needs.
  const AVInputFormat* const format = FormatOf(options);
  Asked asked(options, format);
  AVFormatContext* opened = Ffmpeg().avformat_alloc_context();
  if (opened == nullptr) throw Failure(NameOf(options) + ": " + FfmpegError(AVERROR(ENOMEM)));
  // The library goes on waiting for more of an input, signals or not, unless it is told.
  auto gives_up = std::make_unique<std::function<bool()>>(
      [more = options.gives_up] { return Interrupted() || (more && more()); });
  opened->interrupt_callback.callback = [](void* asks) {
    return (*static_cast<const std::function<bool()>*>(asks))() ? 1 : 0;
  };
  opened->interrupt_callback.opaque = gives_up.get();
  // Else a camera is waited for within the system, for a picture that may never come.
  if (options.live && IsV4l2(format)) opened->flags |= AVFMT_FLAG_NONBLOCK;
  const int error =
      Ffmpeg().avformat_open_input(&opened, UrlOf(options.input).c_str(), format, asked.Settings());
  FfmpegOwned<AVFormatContext> input(opened);
  if (error < 0) throw Failure(NameOf(options) + ": " + FfmpegError(error));
  asked.RefuseUnknown(options);
  AnnouncedEnd end(*input);
  const int unknown = Ffmpeg().avformat_find_stream_info(input.get(), nullptr);
  if (unknown < 0) throw Failure(NameOf(options) + ": " + FfmpegError(unknown));
  end.TakeWhole(*input);
  return {std::move(gives_up), std::move(input), std::move(end)};
}

}  // namespace stopngo
