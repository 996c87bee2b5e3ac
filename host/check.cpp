// check.cpp: everything that speaks against a set-up, before it is run or put on a device.
#include "host/check.h"

#include <algorithm>
#include <array>
#include <limits>

#include "host/common/failure.h"
#include "host/common/text.h"
#include "host/detector.h"
#include "host/gates/history_gate.h"
#include "host/settings/gate_kinds.h"
#include "host/settings/setting_table.h"
#include "host/settings/weights_file.h"

namespace stopngo {
namespace {

/// A queue that moves up has come to rest and starts again after so long, seconds.
constexpr double kNextDeparture_s = 15;
/// An alarm that comes later after a departure is of no use, seconds.
constexpr double kLatest_s = 3;

/// Luma.
constexpr double kBrightest = 255;

/// What the rules below ask: the set-up, and what follows from it.
struct Facts {
  explicit Facts(const Setup& given) : setup(given), s(given.settings), frames(FramesOf(given)) {
    if (s.block_size > 0) {
      blocks_across = s.roi_width / s.block_size - 2;
      blocks_down = s.roi_height / s.block_size - 2;
    }
  }

  [[nodiscard]] int Count(const FrameCount& time) const { return time.Frames(frames.fps); }
  [[nodiscard]] double Seconds(const FrameCount& time) const { return Count(time) / frames.fps; }

  const Setup& setup;
  const Settings& s;
  FrameFormat frames;
  int blocks_across = 0;  ///< of the grid whose motion is looked at; one that has no room is below 1
  int blocks_down = 0;
  std::string refused;  ///< what the module says against a frame
};

/// One thing that may be wrong. The sentence is empty where it is not.
struct Rule {
  const char* code;
  Severity severity;
  const char* setting;
  const char* remedy;
  std::string (*sentence)(const Facts& facts);
};

std::string When(bool wrong, std::string sentence) { return wrong ? std::move(sentence) : std::string(); }

std::string NegativeTimes(const Facts& f) {
  std::string names;
  for (const auto& [name, time] : {std::pair{"time-beeping", f.s.time_beeping},
                                   {"time-cooling", f.s.time_cooling},
                                   {"time-leaving", f.s.time_leaving},
                                   {"frame-skip", f.s.frame_skip}}) {
    if (time.value < 0) Enlist(names, name);
  }
  return When(!names.empty(), names + ": a time below 0");
}

struct Limit {
  const char* name;
  double value;
  double least;
};

/// Times are at least 0 already: a time is taken as nothing else.
std::string BadGateLimits(const Facts& f) {
  std::string sentence;
  for (const auto& [name, value, least] :
       {Limit{"history-threshold", f.s.history_threshold, 0},
        {"light-rate", f.s.light_rate, 0},
        {"speed-above", f.s.speed_above, 0},
        {"once-calm", static_cast<double>(f.s.once_calm), 0},
        {"once-busy", static_cast<double>(f.s.once_busy), static_cast<double>(f.s.once_calm)},
        {"picture-black", f.s.picture_black, 0}}) {
    if (value < least) Enlist(sentence, Print("%s %.6g is below %.6g", name, value, least));
  }
  if (f.s.history_threshold > 1) Enlist(sentence, "history-threshold: every score is below it");
  if (f.s.picture_black > kBrightest) Enlist(sentence, "picture-black: every picture is darker");
  return sentence;
}

/// Between two frames there is always so much time.
std::string AlwaysLost(const Facts& f) {
  const bool on = (f.s.gates & BitOf(GateKind::kPicture)) != 0;
  const double period_s = 1 / f.frames.fps;
  return When(on && f.s.picture_lost_s < period_s,
              Print("frames are %.6g s apart, and picture-lost is %.6g s", period_s, f.s.picture_lost_s));
}

std::string BadWeights(const Facts& f) {
  if (f.s.weights.empty()) return When(!f.s.no_weights, "no weights are named, and none are installed");
  const auto count = [](int setting) { return std::size_t{static_cast<std::uint32_t>(setting)}; };
  try {
    (void)ReadWeights(f.s.weights, 2 * count(f.s.features), count(f.s.hiddens), "--features, --hiddens");
  } catch (const Failure& failure) {
    return failure.what();
  }
  return {};
}

std::string UnknownScale(const Facts& f) {
  constexpr std::array kScales{0, 2, 4, 5, 6, 7, 8};
  const bool original = OriginalSize(f.frames.width, f.s.input_width).has_value();
  const bool known = std::ranges::count(kScales, f.s.scale) > 0 && (!original || f.s.scale % 2 == 0);
  return When(!known, Print("scale %d: there is no such zoom", f.s.scale) +
                          (original ? " for frames in full resolution" : ""));
}

// The module itself goes by bytes: what hangs over the right edge is read from the next row's start.
std::string OutsideFrame(const Facts& f) {
  const auto leaves = [](std::int64_t start, std::int64_t length, std::int64_t whole) {
    return start < 0 || length < 1 || start + length > whole;
  };
  return When(leaves(f.s.roi_x, f.s.roi_width, f.s.input_width) ||
                  leaves(f.s.roi_y, f.s.roi_height, f.s.input_height),
              Print("a region of %d x %d at %d, %d does not lie inside %d x %d", f.s.roi_width,
                    f.s.roi_height, f.s.roi_x, f.s.roi_y, f.s.input_width, f.s.input_height));
}

std::string Unlike(const Settings& settings, const SettingTexts& trained, const char* what) {
  // What the decision takes from the scores may be chosen later.
  constexpr std::array kTrained{"roi-width", "roi-height", "scale", "block-size", "filter", "rate"};
  std::string differences;
  for (const auto& [name, text] : trained) {
    const std::string own = TextOf(settings, *FindSetting(name));
    if (std::ranges::count(kTrained, name) == 0 || own == text) continue;
    Enlist(differences, name);
    differences.append(" ").append(own).append(" instead of ").append(text);
  }
  return When(!differences.empty(), what + (" were trained for other settings: " + differences));
}

std::string UnlikeWeights(const Facts& f) {
  return f.setup.sidecar ? Unlike(f.s, f.setup.sidecar->settings, "the weights") : std::string();
}

bool HasHistory(const Facts& f) { return (f.s.gates & BitOf(GateKind::kHistory)) != 0; }

std::string BadHistory(const Facts& f) {
  if (!HasHistory(f)) return {};
  try {
    (void)ReadHistoryWeights(HistoryWeightsPath(f.s));
  } catch (const Failure& failure) {
    return failure.what();
  }
  return {};
}

std::string UnlikeHistory(const Facts& f) {
  if (!HasHistory(f) || !BadHistory(f).empty()) return {};
  const std::optional<Sidecar> sidecar = ReadSidecar(HistoryWeightsPath(f.s));
  return sidecar ? Unlike(f.s, sidecar->settings, "the weights of the history gate") : std::string();
}

/// An alarm takes one high score more than time-leaving, and the first frame has none.
std::string BeyondInput(const Facts& f) {
  const int leaving = f.Count(f.s.time_leaving);
  if (!f.setup.length || leaving < *f.setup.length - 1) return {};
  return Print("time-leaving is %d frames, and of %lld that are handed over no count exceeds it", leaving,
               static_cast<long long>(*f.setup.length));
}

std::string UnreachableLeaving(const Facts& f) {
  const int leaving = f.Count(f.s.time_leaving);
  if (leaving == std::numeric_limits<int>::max()) return "no count of high scores exceeds time-leaving";
  return When(f.Seconds(f.s.time_leaving) > kLatest_s, BeyondInput(f));
}

std::string OtherFeatures(const Facts& f) {
  if (f.blocks_across < 1 || f.blocks_down < 1) return {};
  const int features = f.blocks_down / 3 * (f.blocks_across / 4) * 4;
  return When(features != f.s.features,
              Print("a region of %d x %d in blocks of %d gives %d features a frame, "
                    "not the %d of the network",
                    f.s.roi_width, f.s.roi_height, f.s.block_size, features, f.s.features));
}

constexpr Severity kError = Severity::kError;
constexpr Severity kWarning = Severity::kWarning;
constexpr std::array kRules{
    Rule{"frame-size", kError, "input-width", "give the size of the frames, 1 to 16384 a side",
         [](const Facts& f) {
           return When(!IsUsableSize({f.frames.width, f.frames.height}),
                       Print("frames of %d x %d", f.frames.width, f.frames.height));
         }},
    Rule{"block-size", kError, "block-size", "take blocks of 8 pixels or more",
         [](const Facts& f) {
           return When(f.s.block_size < 1, Print("blocks of %d pixels", f.s.block_size));
         }},
    Rule{"scale", kError, "scale", "take 0, 2, 4, 5, 6, 7 or 8; in full resolution 0, 2, 4, 6 or 8",
         UnknownScale},
    Rule{"filter", kError, "filter", "take none, median or gaussian",
         [](const Facts& f) {
           return When(f.s.filter < 0 || f.s.filter > 2,
                       Print("filter %d: there is no such one", f.s.filter));
         }},
    Rule{"negative-time", kError, "time-leaving", "give times of 0 and above", NegativeTimes},
    Rule{"gap-op", kError, "gap-op", "take 0 or more",
         [](const Facts& f) {
           return When(f.s.gap_op < 0,
                       Print("gap-op %d: low scores would count towards an alarm", f.s.gap_op));
         }},
    Rule{"threshold-always", kError, "threshold", "take a threshold between 0 and 1",
         [](const Facts& f) {
           return When(f.s.threshold < 0,
                       "threshold " + NumberText(f.s.threshold) + ": every score exceeds it");
         }},
    Rule{"threshold-never", kError, "threshold", "take a threshold between 0 and 1",
         [](const Facts& f) {
           return When(f.s.threshold >= 1,
                       "threshold " + NumberText(f.s.threshold) + ": no score exceeds it");
         }},
    Rule{"leaving-unreachable", kError, "time-leaving", "take a shorter time, or more frames a second",
         UnreachableLeaving},
    Rule{"weights", kError, "weights", "name a weights file and the network's own counts", BadWeights},
    Rule{"outside-frame", kError, "roi-x", "choose a region inside the frame", OutsideFrame},
    Rule{"frame-refused", kError, "roi-x",
         "choose a region, blocks and a network that fit each other and the frame",
         [](const Facts& f) { return f.refused; }},
    Rule{"gate-limit", kError, "gates", "see docs/gates.md for what the gates' settings mean", BadGateLimits},
    Rule{"history-weights", kError, "history-weights", "name a file that was made for this gate", BadHistory},
    Rule{"always-lost", kError, "picture-lost", "take several times the time between two frames", AlwaysLost},
    Rule{"unlike-weights", kWarning, "weights", "take the weights' own settings, or train for these",
         UnlikeWeights},
    Rule{"unlike-history", kWarning, "history-weights",
         "take the settings that they were trained for, or others", UnlikeHistory},
    Rule{"other-features", kWarning, "roi-width",
         "take the region's size and the blocks that the network was made for", OtherFeatures},
    Rule{"beeping-cooling", kWarning, "time-beeping", "let cooling, which starts with the alarm, last longer",
         [](const Facts& f) {
           return When(f.Count(f.s.time_beeping) > f.Count(f.s.time_cooling),
                       Print("beeping of %d frames is longer than cooling of %d, and ends with it",
                             f.Count(f.s.time_beeping), f.Count(f.s.time_cooling)));
         }},
    Rule{"long-cooling", kWarning, "time-cooling", "take about 5 s",
         [](const Facts& f) {
           return When(f.Seconds(f.s.time_cooling) > kNextDeparture_s,
                       Print("cooling swallows the departures of %.6g s after an alarm",
                             f.Seconds(f.s.time_cooling)));
         }},
    Rule{"long-leaving", kWarning, "time-leaving", "take about half a second",
         [](const Facts& f) {
           return When(f.Seconds(f.s.time_leaving) > kLatest_s,
                       Print("an alarm takes high scores for %.6g s", f.Seconds(f.s.time_leaving)));
         }},
    Rule{"short-input", kWarning, "time-leaving", "take a longer input",
         [](const Facts& f) { return When(f.Seconds(f.s.time_leaving) <= kLatest_s, BeyondInput(f)); }},
    Rule{"part-blocks", kWarning, "roi-width", "take multiples of the block size",
         [](const Facts& f) {
           return When(
               f.s.block_size > 0 &&
                   (f.s.roi_width % f.s.block_size != 0 || f.s.roi_height % f.s.block_size != 0),
               Print("a region of %d x %d is not whole blocks of %d: what is left over is not looked at",
                     f.s.roi_width, f.s.roi_height, f.s.block_size));
         }},
    Rule{"part-cells", kWarning, "roi-height",
         "take two blocks more than a multiple of 4 across and of 3 down",
         [](const Facts& f) {
           return When(f.blocks_across > 0 && f.blocks_down > 0 &&
                           (f.blocks_across % 4 != 0 || f.blocks_down % 3 != 0),
                       Print("%d x %d blocks are not whole cells of 4 x 3: those left over count in none",
                             f.blocks_across, f.blocks_down));
         }},
    Rule{"small-region", kWarning, "roi-width", "take a region of three blocks a side or more",
         [](const Facts& f) {
           return When(f.s.block_size > 0 && (f.blocks_across < 1 || f.blocks_down < 1),
                       Print("a region of %d x %d has no block that could be followed", f.s.roi_width,
                             f.s.roi_height));
         }},
    Rule{"rate", kWarning, "rate", "take the input's rate, or weights that were trained for it",
         [](const Facts& f) {
           constexpr double kSame = 1e-6;
           return When(
               f.setup.frames && f.s.rate > f.frames.fps + kSame,
               Print("%.6g frames a second are wanted, and the input gives %.6g", f.s.rate, f.frames.fps));
         }},
    Rule{"small-framebuffer", kWarning, "lcd-width", "make it as large as the region",
         [](const Facts& f) {
           return When(
               !f.s.debug_fb.empty() && (f.s.lcd_width < f.s.roi_width || f.s.lcd_height < f.s.roi_height),
               Print("a framebuffer of %d x %d does not show a region of %d x %d whole", f.s.lcd_width,
                     f.s.lcd_height, f.s.roi_width, f.s.roi_height));
         }},
    Rule{"times-in-frames", kWarning, "rate", "give times in seconds, such as 1.5s",
         [](const Facts& f) {
           return When(f.setup.frame_counts_given, "a rate was given, and times in frames, which last by it");
         }},
};

// Weights and hold matter to no refusal; the first frame is only cropped, the second one analysed.
std::string RefusalOf(const Module& module, const Facts& f) {
  Settings settings = OnlyLooking(f.s);
  settings.frame_skip = settings.time_cooling = {0, false};
  LumaFrame frame;
  frame.width = f.frames.width;
  frame.height = f.frames.height;
  try {
    Detector detector(module, settings, f.frames);
    frame.pixels.resize(std::size_t{1} * frame.width * frame.height);
    for (; frame.index < 2; ++frame.index) detector.Write(frame);
  } catch (const Failure& failure) {
    return failure.what();
  }
  return {};
}

}  // namespace

FrameFormat FramesOf(const Setup& setup) {
  if (setup.frames) return *setup.frames;
  const Settings& s = setup.settings;
  const FrameSize size = OriginalSize(s.original_size.value_or(s.input_width), s.input_width)
                             .value_or(FrameSize{s.input_width, s.input_height});
  return {size.width, size.height, s.rate > 0 ? s.rate : kUnknownRate};
}

std::string SentenceOf(const Finding& finding) {
  return finding.code + ": " + finding.sentence + "; " + finding.remedy;
}

std::vector<Finding> CheckSetup(const Module& module, const Setup& setup) {
  Facts facts(setup);
  if (IsUsableSize({facts.frames.width, facts.frames.height})) facts.refused = RefusalOf(module, facts);
  std::vector<Finding> findings;
  findings.reserve(kRules.size());
  for (const Rule& rule : kRules) {
    std::string sentence = rule.sentence(facts);
    if (!sentence.empty()) {
      findings.push_back({rule.code, rule.severity, rule.setting, std::move(sentence), rule.remedy});
    }
  }
  return findings;
}

}  // namespace stopngo
