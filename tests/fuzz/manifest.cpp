// manifest.cpp: fuzz target: any bytes as a manifest. Clips that are named lie in the picture, and labels follow one
// another.
#include "clips/manifest.h"

#include <charconv>
#include <string>
#include <string_view>
#include <vector>

#include "clips/region.h"
#include "reading.h"

namespace {

using stopngo::Clip;

std::uint64_t NumberAt(std::string_view text) {
  std::uint64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

/// A range of more seeds than there is time for, of those that are allowed.
bool HasLongRange(std::string_view text) {
  constexpr std::uint64_t kMost = 100;
  for (std::size_t at = text.find('-'); at != std::string_view::npos; at = text.find('-', at + 1)) {
    std::size_t start = at;
    while (start > 0 && text[start - 1] >= '0' && text[start - 1] <= '9') --start;
    const std::uint64_t more = NumberAt(text.substr(at + 1)) - NumberAt(text.substr(start));
    if (more > kMost && more < 1'000'000) return true;
  }
  return false;
}

void Check(const Clip& clip) {
  if (clip.region) {
    const stopngo::Region& region = *clip.region;
    fuzz::Expect(region.x >= 0 && region.y >= 0 && region.width > 0 && region.height > 0 &&
                     region.x + region.width <= stopngo::kPictureWidth &&
                     region.y + region.height <= stopngo::kPictureHeight,
                 "a region outside the picture");
  }
  double end_s = 0;
  for (const stopngo::LabelSpan& label : clip.labels) {
    fuzz::Expect(label.start_s >= end_s && label.end_s > label.start_s, "labels that overlap");
    end_s = label.end_s;
  }
  fuzz::Expect(!clip.name.empty() && !clip.kind.empty(), "a clip without name or kind");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::Input(data, size).Rest();
  if (HasLongRange(text)) return 0;
  static const std::string recording = fuzz::Folder().File("v", "");
  const std::string path = fuzz::Folder().File("clips.tsv", text);
  std::vector<Clip> clips;
  if (!fuzz::ReadOrRefuse(path, [&] { clips = stopngo::ReadManifest(path); })) return 0;
  fuzz::Expect(!clips.empty(), "a manifest that names no clips is taken");
  for (const Clip& clip : clips) Check(clip);
  return 0;
}
