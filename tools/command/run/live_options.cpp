// live_options.cpp: the options of stopngo run for inputs that do not wait, and for what is to happen at an alarm.
#include "command/run/live_options.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <optional>

#include "command/options/number_checks.h"
#include "host/common/luma.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

constexpr const char* kGroup = "Live inputs";
constexpr const char* kAlarms = "Alarms";

void TakeSize(const std::string& text, SourceOptions& source) {
  const std::optional<FrameSize> size = SizeOf(text);
  if (!size || !IsUsableSize(*size)) {
    throw CLI::ValidationError("--size", Quoted(text) + " is no size such as 1280x720");
  }
  source.asked_size = text;
}

void AddAlarmOptions(CLI::App& app, LiveOptions& options) {
  app.add_option("--on-alarm", options.on_alarm,
                 "command that is run at each alarm, without a shell; the alarm is in its environment "
                 "(STOPNGO_INPUT, "
                 "_TIME, ...) and, as a line of JSON, on its standard input")
      ->type_name("COMMAND")
      ->group(kAlarms);
  app.add_option("--on-alarm-jobs", options.on_alarm_jobs,
                 "how many of these commands may run at once; alarms beyond them are left out")
      ->type_name("N")
      ->check(AboveZero())
      ->capture_default_str()
      ->group(kAlarms);
  app.add_option("--on-alarm-limit", options.on_alarm_limit_s, "seconds that such a command may take")
      ->type_name("SECONDS")
      ->check(Within(0.1, 86400))
      ->capture_default_str()
      ->group(kAlarms);
}

void AddClipOptions(CLI::App& app, ClipOptions& clips) {
  constexpr double kMegabyte = 1e6;
  constexpr double kDay_s = 86400;
  clips.bounds = {static_cast<std::uint64_t>(1000 * kMegabyte), 30 * kDay_s};
  app.add_option(
         "--clips", clips.folder,
         "folder for a video of each alarm of a live input, with its JSON: the packets as they came, or the "
         "frames that were handed over")
      ->type_name("FOLDER")
      ->group(kAlarms);
  const auto seconds = [&app](const char* name, double& value, const char* help) {
    app.add_option(name, value, help)
        ->type_name("SECONDS")
        ->check(Within(0, 300))
        ->capture_default_str()
        ->group(kAlarms);
  };
  seconds("--clips-before", clips.before_s, "how long before the alarm such a video begins");
  seconds("--clips-after", clips.after_s, "how long after it such a video goes on");
  app.add_option_function<double>(
         "--clips-size",
         [&clips](double megabytes) {
           clips.bounds.max_bytes = static_cast<std::uint64_t>(std::llround(megabytes * kMegabyte));
         },
         "megabytes of such videos that are kept, the newest")
      ->type_name("NUMBER")
      ->check(Within(1, 1e6))
      ->default_str("1000")
      ->group(kAlarms);
  app.add_option_function<double>(
         "--clips-age", [&clips](double days) { clips.bounds.max_age_s = days * kDay_s; },
         "days that such videos are kept")
      ->type_name("NUMBER")
      ->check(Within(0.01, 3650))
      ->default_str("30")
      ->group(kAlarms);
}

}  // namespace

void AddLiveOptions(CLI::App& app, LiveOptions& options, SourceOptions& source) {
  app.add_flag(
         "--live", options.live,
         "take every input as it comes, the newest frame first, a recording at its own pace; cameras and "
         "streams are taken so anyway")
      ->group(kGroup);
  app.add_option_function<std::string>(
         "--size", [&source](const std::string& text) { TakeSize(text, source); },
         "what a camera is asked for: its frames' size")
      ->type_name("WxH")
      ->group(kGroup);
  app.add_option("--fps", source.asked_fps, "what a camera is asked for: frames a second")
      ->type_name("NUMBER")
      ->check(Within(0.1, 1000))
      ->group(kGroup);
  app.add_option("--silence", options.limits.silence_s,
                 "seconds without a frame after which a live input is opened anew")
      ->type_name("SECONDS")
      ->check(Within(0.1, 3600))
      ->capture_default_str()
      ->group(kGroup);
  app.add_option(
         "--retries", options.limits.retries,
         "how often in a row a live input that fails is opened anew, after half a second, a whole one, up to "
         "30; without it for ever")
      ->type_name("N")
      ->check(ZeroOrMore())
      ->group(kGroup);
  app.add_option(
         "--status", options.status,
         "file that tells each second how the inputs do, as a line of JSON, replaced as a whole; or - for "
         "lines on standard output")
      ->type_name("FILE")
      ->group(kGroup);
  AddAlarmOptions(app, options);
  AddClipOptions(app, options.clips);
}

}  // namespace stopngo
