// clip_record.cpp: a clip's features as bytes.
#include "features/clip_record.h"

#include <array>
#include <span>

#include "features/bytes.h"

namespace stopngo {
namespace {

/// A bit an entry of a histogram says whether it is other than 0.
constexpr std::size_t kMapBytes = kChunkCapacity / 8;
constexpr std::size_t kActivities = 4;

// Where nothing moves, and beside what moves, entries are 0: a few bytes are left of most histograms.
void PutHistogram(ByteWriter& out, std::span<const std::int8_t> histogram) {
  std::array<std::uint8_t, kMapBytes> map{};
  for (std::size_t i = 0; i < histogram.size(); ++i) {
    if (histogram[i] != 0) map.at(i / 8) |= static_cast<std::uint8_t>(1U << (i % 8));
  }
  for (const std::uint8_t byte : map) out.Put(byte);
  for (const std::int8_t entry : histogram) {
    if (entry != 0) out.Put(entry);
  }
}

void TakeHistogram(ByteReader& in, std::span<std::int8_t> histogram) {
  const std::string_view map = in.TakeRaw(kMapBytes);
  for (std::size_t i = 0; i < histogram.size(); ++i) {
    const bool there = ((static_cast<std::uint8_t>(map[i / 8]) >> (i % 8)) & 1) != 0;
    histogram[i] = there ? in.Take<std::int8_t>() : std::int8_t{0};
  }
}

void PutView(ByteWriter& out, const View& view) {
  out.Put(view.columns);
  out.Put(view.rows);
  for (std::size_t pair = 0; pair < view.Pairs(); ++pair) {
    PutHistogram(out, std::span(view.histograms).subspan(pair * kChunkCapacity, kChunkCapacity));
  }
  for (const PixelFigures& pixels : view.pixels) {
    out.Put(pixels.luma);
    out.Put(static_cast<std::uint8_t>(pixels.repeated ? 1 : 0));
  }
  for (const PairSignals& signals : view.signals) {
    out.Put(signals.difference);
    out.Put(signals.flow);
  }
}

View TakeView(ByteReader& in, std::size_t frames, bool decides) {
  const std::size_t pairs = frames > 0 ? frames - 1 : 0;
  View view;
  view.columns = in.Take<std::uint8_t>();
  view.rows = in.Take<std::uint8_t>();
  if (std::size_t{4} * view.columns * view.rows > kChunkCapacity) throw BadBytes{};
  in.Expect(pairs * kMapBytes);
  view.histograms.resize(pairs * kChunkCapacity);
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    TakeHistogram(in, std::span(view.histograms).subspan(pair * kChunkCapacity, kChunkCapacity));
  }
  if (!decides) return view;
  view.pixels.resize(frames);
  for (PixelFigures& pixels : view.pixels) pixels = {in.Take<double>(), in.Take<std::uint8_t>() != 0};
  view.signals.resize(pairs);
  for (PairSignals& signals : view.signals) signals = {in.Take<double>(), in.Take<double>()};
  return view;
}

void PutPass(ByteWriter& out, const Pass& pass) {
  out.Put(pass.fps);
  out.Put(static_cast<std::uint32_t>(pass.times_s.size()));
  for (const double time_s : pass.times_s) out.Put(time_s);
  out.Put(static_cast<std::uint32_t>(pass.views.size()));
  for (const View& view : pass.views) PutView(out, view);
}

Pass TakePass(ByteReader& in, bool decides) {
  Pass pass{.fps = in.Take<double>(), .times_s = {}, .views = {}};
  pass.times_s.resize(in.TakeCount(sizeof(double)));
  for (double& time_s : pass.times_s) time_s = in.Take<double>();
  const std::size_t views = in.TakeCount(2);
  pass.views.reserve(views);
  for (std::size_t i = 0; i < views; ++i) pass.views.push_back(TakeView(in, pass.times_s.size(), decides));
  return pass;
}

LabelSpan TakeLabel(ByteReader& in) {
  LabelSpan label{in.Take<double>(), in.Take<double>(), Activity::kStill};
  const auto activity = in.Take<std::uint8_t>();
  if (activity >= kActivities) throw BadBytes{};
  label.activity = static_cast<Activity>(activity);
  return label;
}

}  // namespace

std::string RecordOf(const ClipFeatures& features) {
  ByteWriter out;
  out.PutText(features.key);
  out.Put(static_cast<std::uint8_t>(features.damaged_allowed ? 1 : 0));
  out.Put(features.looks_seed);
  out.Put(static_cast<std::uint32_t>(features.labels.size()));
  for (const LabelSpan& label : features.labels) {
    out.Put(label.start_s);
    out.Put(label.end_s);
    out.Put(static_cast<std::uint8_t>(label.activity));
  }
  out.Put(static_cast<std::uint8_t>(features.evaluation ? 1 : 0));
  if (features.evaluation) PutPass(out, *features.evaluation);
  out.Put(static_cast<std::uint32_t>(features.looks.size()));
  for (const Pass& pass : features.looks) PutPass(out, pass);
  return out.Bytes();
}

std::string_view KeyOfRecord(std::string_view record) { return ByteReader(record).TakeText(); }

ClipFeatures FeaturesOf(std::string_view record) {
  ByteReader in(record);
  ClipFeatures features;
  features.key = in.TakeText();
  features.damaged_allowed = in.Take<std::uint8_t>() != 0;
  features.looks_seed = in.Take<std::uint64_t>();
  features.labels.reserve(16);
  for (std::size_t count = in.TakeCount(17); count > 0; --count) features.labels.push_back(TakeLabel(in));
  if (in.Take<std::uint8_t>() != 0) features.evaluation = TakePass(in, true);
  for (std::size_t count = in.TakeCount(16); count > 0; --count)
    features.looks.push_back(TakePass(in, false));
  in.ExpectEnd();
  return features;
}

}  // namespace stopngo
