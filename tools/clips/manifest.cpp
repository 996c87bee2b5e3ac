// manifest.cpp: reads lists of labelled clips.
#include "clips/manifest.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "clips/twofold.h"
#include "host/common/failure.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

/// What is wrong with a line; the reader of the file adds its name and the line's number.
struct Fault {
  std::string reason;
};

enum Column : std::size_t { kClip, kRegion, kRate, kLabels, kKind, kColumns };
constexpr std::array<std::string_view, kColumns> kColumnNames{"clip", "region", "rate", "labels", "kind"};

constexpr std::string_view kScenePrefix = "synth:";
constexpr std::string_view kRecordingKind = "recording";
/// More clips than this, or a longer line, are a slip of the keyboard.
constexpr std::uint64_t kMostClips = 1'000'000;
constexpr std::size_t kLongestLine = std::size_t{1} << 20;

using Cells = std::array<std::string_view, kColumns>;

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \r";
  const std::size_t first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

bool IsUnset(std::string_view cell) { return cell.empty() || cell == "-"; }

Region RegionOf(std::string_view text) {
  std::array<int, 4> numbers{};
  const std::vector<std::string_view> parts = Split(text, ',');
  bool whole = parts.size() == numbers.size();
  for (std::size_t i = 0; whole && i < numbers.size(); ++i) {
    const std::optional<int> number = NumberOf<int>(Trimmed(parts[i]));
    whole = number.has_value();
    numbers.at(i) = number.value_or(0);
  }
  if (!whole) throw Fault{"region: " + Quoted(text) + " is not X,Y,WIDTH,HEIGHT, such as 290,260,220,140"};
  const auto [x, y, width, height] = numbers;
  // Differences, since sums of what somebody wrote might overflow.
  const bool inside = x >= 0 && y >= 0 && width >= 1 && height >= 1 && width <= kPictureWidth &&
                      height <= kPictureHeight && x <= kPictureWidth - width && y <= kPictureHeight - height;
  if (!inside) {
    throw Fault{"region: " + Quoted(text) + " lies outside the picture of " + std::to_string(kPictureWidth) +
                " x " + std::to_string(kPictureHeight)};
  }
  return {x, y, width, height};
}

/// Whether a cell moves a region instead of telling one.
bool IsMove(std::string_view text) {
  return text.size() > 1 && (text.front() == '+' || text.front() == '-') && text.find(',') == text.rfind(',');
}

RegionMove MoveOf(std::string_view text) {
  const std::vector<std::string_view> parts = Split(text, ',');
  std::array<std::optional<int>, 2> by;
  for (std::size_t i = 0; parts.size() == by.size() && i < by.size(); ++i) {
    // With a sign each, as a number alone is a place.
    const std::string_view part = Trimmed(parts[i]);
    if (!part.starts_with('+') && !part.starts_with('-')) continue;
    by.at(i) = NumberOf<int>(part.substr(part.front() == '+' ? 1 : 0));
  }
  const auto small = [](const std::optional<int>& pixels, int most) {
    return pixels && *pixels >= -most && *pixels <= most;
  };
  if (small(by[0], kPictureWidth) && small(by[1], kPictureHeight)) return {*by[0], *by[1]};
  throw Fault{"region: " + Quoted(text) + " is not a move of up to " + std::to_string(kPictureWidth) + ", " +
              std::to_string(kPictureHeight) + " pixels, such as +20,-20"};
}

double RateOf(std::string_view text) {
  const std::optional<double> rate = FiniteOf(text);
  if (!rate || *rate < kLowestRate) {
    throw Fault{"rate: " + Quoted(text) + " is no number of frames a second, or below 0.01"};
  }
  return *rate;
}

LabelSpan SpanOf(std::string_view text) {
  std::vector<std::string_view> words = Split(Trimmed(text), ' ');
  std::erase_if(words, [](std::string_view word) { return word.empty(); });
  const std::optional<double> start = words.size() == 3 ? FiniteOf(words[0]) : std::nullopt;
  const std::optional<double> end = words.size() == 3 ? FiniteOf(words[1]) : std::nullopt;
  if (!start || !end) {
    throw Fault{"labels: " + Quoted(text) + " is not START END NAME, such as 2.5 5 lead_departs"};
  }
  const std::optional<Activity> activity = ActivityOf(words[2]);
  if (!activity) throw Fault{"labels: " + Quoted(words[2]) + " is no label: " + ActivityNames()};
  if (*start < 0) throw Fault{"labels: " + Quoted(text) + " starts before the clip"};
  if (*end <= *start) throw Fault{"labels: " + Quoted(text) + " ends before it starts"};
  return {*start, *end, *activity};
}

std::vector<LabelSpan> LabelsOf(std::string_view text) {
  if (IsUnset(text)) throw Fault{"labels: a recording needs them, it does not know its own"};
  std::vector<LabelSpan> labels;
  for (const std::string_view part : Split(text, ';')) {
    // A last semicolon ends the list.
    if (Trimmed(part).empty()) continue;
    const LabelSpan span = SpanOf(part);
    if (!labels.empty() && span.start_s < labels.back().end_s) {
      throw Fault{"labels: " + Quoted(Trimmed(part)) + " starts before the one ahead of it ends"};
    }
    labels.push_back(span);
  }
  return labels;
}

struct SeedRange {
  std::uint64_t first;
  std::uint64_t last;
};

SeedRange SeedsOf(std::string_view text) {
  const std::vector<std::string_view> ends = Split(text, '-');
  const auto first = NumberOf<std::uint64_t>(ends.front());
  const auto last = NumberOf<std::uint64_t>(ends.back());
  if (!first || !last || ends.size() > 2 || *last < *first || *last - *first >= kMostClips) {
    throw Fault{"clip: " + Quoted(text) + " is neither a seed nor a range of seeds such as 1-200, of " +
                std::to_string(kMostClips) + " at most"};
  }
  return {*first, *last};
}

SceneKindName SceneKindOf(std::string_view name) {
  std::string known;
  for (const SceneKindName& kind : SceneKinds()) {
    if (name == kind.name) return kind;
    Enlist(known, kind.name);
  }
  throw Fault{"clip: " + Quoted(name) + " is no kind of scene: " + known};
}

/// Before clips, all of those read so far, grow by one more than a number.
void RefuseMore(const std::vector<Clip>& clips, std::uint64_t number) {
  if (clips.size() + number < kMostClips) return;
  throw Fault{"more than " + std::to_string(kMostClips) + " clips"};
}

void AddScenes(std::string_view text, std::string_view labels, const Clip& common, std::vector<Clip>& clips) {
  const std::vector<std::string_view> parts = Split(text, ':');
  if (parts.size() != 3) {
    throw Fault{"clip: " + Quoted(text) + " is neither synth:KIND:SEED nor synth:KIND:FIRST-LAST"};
  }
  if (!IsUnset(labels)) throw Fault{"labels: a scene knows its own; - is expected"};
  const SceneKindName kind = SceneKindOf(parts[1]);
  const SeedRange seeds = SeedsOf(parts[2]);
  RefuseMore(clips, seeds.last - seeds.first);
  Clip clip = common;
  if (clip.kind.empty()) clip.kind = kind.name;
  for (std::uint64_t i = 0; i <= seeds.last - seeds.first; ++i) {
    const std::uint64_t seed = seeds.first + i;
    clip.name = std::string(kScenePrefix) + kind.name + ":" + std::to_string(seed);
    clip.source = DrawnScene{kind.kind, seed};
    clips.push_back(clip);
  }
}

void AddRecording(std::string_view text, std::string_view labels, const std::filesystem::path& folder,
                  Clip clip, std::vector<Clip>& clips) {
  const std::string path = (folder / text).string();
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) throw Fault{"clip: " + path + " does not exist"};
  RefuseMore(clips, 0);
  clip.name = text;
  clip.source = path;
  clip.labels = LabelsOf(labels);
  if (clip.kind.empty()) clip.kind = kRecordingKind;
  clips.push_back(std::move(clip));
}

/// Regions lie in one picture, and frames come in its size: what else settings say of them has no place.
void CheckSettings(const Settings& settings) {
  const auto refuse = [](const std::string& sentence) { throw Failure(sentence, ExitCode::kUsage); };
  if (settings.input_width != kPictureWidth || settings.input_height != kPictureHeight) {
    refuse("--input-width, --input-height: clips of manifests are taken at 800 x 480");
  }
  if (settings.original_size) refuse("--original-size: clips of manifests are taken at 800 x 480");
  if (!settings.debug_fb.empty()) refuse("--debug-fb: there is one picture, and many clips");
}

/// Which column of a line holds what.
using Layout = std::vector<Column>;

Layout LayoutOf(std::string_view header) {
  Layout layout;
  for (const std::string_view cell : Split(header, '\t')) {
    const std::string_view name = Trimmed(cell);
    const auto* const known = std::find(kColumnNames.begin(), kColumnNames.end(), name);
    if (known == kColumnNames.end()) throw Fault{"unknown column " + Quoted(name)};
    const auto column = static_cast<Column>(known - kColumnNames.begin());
    if (std::find(layout.begin(), layout.end(), column) != layout.end()) {
      throw Fault{"the column " + Quoted(name) + " comes twice"};
    }
    layout.push_back(column);
  }
  for (const Column needed : {kClip, kRegion, kRate, kLabels}) {
    if (std::find(layout.begin(), layout.end(), needed) != layout.end()) continue;
    throw Fault{"the column " + Quoted(kColumnNames.at(needed)) + " is missing"};
  }
  return layout;
}

Cells CellsOf(std::string_view line, const Layout& layout) {
  const std::vector<std::string_view> parts = Split(line, '\t');
  if (parts.size() != layout.size()) {
    throw Fault{std::to_string(parts.size()) + " columns, where the header has " +
                std::to_string(layout.size())};
  }
  Cells cells{};
  for (std::size_t i = 0; i < parts.size(); ++i) cells.at(layout[i]) = Trimmed(parts[i]);
  return cells;
}

void AddClips(const Cells& cells, const std::filesystem::path& folder, std::vector<Clip>& clips) {
  Clip clip;
  if (IsMove(cells[kRegion])) {
    clip.moved = MoveOf(cells[kRegion]);
  } else if (!IsUnset(cells[kRegion])) {
    clip.region = RegionOf(cells[kRegion]);
  }
  if (!IsUnset(cells[kRate])) clip.rate = RateOf(cells[kRate]);
  if (!IsUnset(cells[kKind])) clip.kind = cells[kKind];
  if (IsUnset(cells[kClip])) throw Fault{"clip: a file or a scene is missing"};
  if (cells[kClip].starts_with(kScenePrefix)) {
    AddScenes(cells[kClip], cells[kLabels], clip, clips);
  } else {
    AddRecording(cells[kClip], cells[kLabels], folder, std::move(clip), clips);
  }
}

void ReadInto(const std::string& path, std::vector<Clip>& clips) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  const std::string text = ReadFile(path, kManifestFile);
  const std::size_t before = clips.size();
  std::optional<Layout> layout;
  std::size_t number = 0;
  try {
    for (std::string_view rest = text; !rest.empty();) {
      ++number;
      const std::string_view line = rest.substr(0, rest.find('\n'));
      rest.remove_prefix(std::min(line.size() + 1, rest.size()));
      if (line.find('\0') != std::string_view::npos) {
        throw Fault{"no text; a manifest is lines of clip, region, rate and labels"};
      }
      if (line.size() > kLongestLine) throw Fault{"a line of " + std::to_string(line.size()) + " bytes"};
      if (Trimmed(line).empty() || line.starts_with('#')) continue;
      if (layout) {
        AddClips(CellsOf(line, *layout), folder, clips);
      } else {
        layout = LayoutOf(line);
      }
    }
  } catch (const Fault& fault) {
    throw Failure(path + ":" + std::to_string(number) + ": " + fault.reason);
  }
  if (clips.size() == before) throw Failure(path + ": names no clips");
}

}  // namespace

std::vector<Clip> ReadManifest(const std::string& path) {
  std::vector<Clip> clips;
  ReadInto(path, clips);
  return clips;
}

std::vector<Clip> ReadManifests(std::span<const std::string> paths, const Settings& settings,
                                bool allow_damaged) {
  CheckSettings(settings);
  std::vector<Clip> clips;
  for (const std::string& path : paths) ReadInto(path, clips);
  std::vector<const Clip*> all;
  all.reserve(clips.size());
  for (Clip& clip : clips) {
    all.push_back(&clip);
    clip.number = all.size() - 1;
    clip.allow_damaged = allow_damaged;
    if (clip.region || clip.IsScene()) continue;
    clip.region = RegionOf(settings);
  }
  // Its departures and false alarms would count as those of two.
  if (const Clip* const again = ComesTwice(all)) {
    throw Failure(again->name + ": comes twice in the manifests, with the same region and rate");
  }
  return clips;
}

}  // namespace stopngo
