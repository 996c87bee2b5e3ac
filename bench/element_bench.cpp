// element_bench.cpp: what a frame costs that passes the GStreamer element, beside what the module takes of it.
#include <benchmark/benchmark.h>
#include <gst/check/gstharness.h>
#include <gst/video/video.h>

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "host/common/luma.h"
#include "host/detector.h"
#include "host/gstreamer/element.h"
#include "host/module/module.h"
#include "host/settings/settings.h"
#include "scene.h"

namespace bench {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kFps = 30;

FramePair Frames() { return MakeFrames(kWidth, kHeight, Content::kMoving); }

/// No score exceeds it: an alarm would be followed by frames without analysis.
constexpr double kThreshold = 0.9999;

void ModuleAlone(benchmark::State& state) {
  const stopngo::Module module;
  stopngo::Settings settings;
  settings.weights = STOPNGO_DEFAULT_WEIGHTS;
  settings.threshold = kThreshold;
  stopngo::Detector detector(module, settings, {kWidth, kHeight, kFps});
  const FramePair frames = Frames();
  stopngo::LumaView view{kWidth, kHeight, 0, 0, {}};
  for (auto unused : state) {
    (void)unused;
    view.pixels = view.index++ % 2 == 0 ? frames.before : frames.after;
    detector.Write(view);
  }
}

GstBuffer* BufferOf(const Pixels& luma, const GstVideoInfo& info) {
  GstBuffer* const buffer = gst_buffer_new_allocate(nullptr, info.size, nullptr);
  gst_buffer_memset(buffer, 0, 128, info.size);
  gst_buffer_fill(buffer, 0, luma.data(), luma.size());
  if (info.stride[0] != kWidth) {
    gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_FORMAT_NV12, kWidth, kHeight,
                                   2, const_cast<gsize*>(info.offset), const_cast<gint*>(info.stride));
  }
  return buffer;
}

/// element: what frames pass; padding: bytes behind a row. A buffer is pushed again and again, with a new outside.
void Passes(benchmark::State& state, const char* element, int padding) {
  GstHarness* const harness = gst_harness_new_parse(element);
  gst_harness_set_src_caps_str(harness, "video/x-raw,format=NV12,width=1920,height=1080,framerate=30/1");
  gst_harness_set_drop_buffers(harness, TRUE);
  GstVideoInfo info;
  gst_video_info_set_format(&info, GST_VIDEO_FORMAT_NV12, kWidth, kHeight);
  for (int plane = 0; plane < 2; ++plane) info.stride[plane] += padding;
  info.offset[1] = static_cast<gsize>(info.stride[0]) * kHeight;
  info.size = info.offset[1] * 3 / 2;
  const FramePair frames = Frames();
  const std::array buffers{BufferOf(frames.before, info), BufferOf(frames.after, info)};
  std::uint64_t index = 0;
  for (auto unused : state) {
    (void)unused;
    GstBuffer* const buffer = gst_buffer_copy(buffers[index % 2]);
    GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(GST_SECOND, index++, kFps);
    if (gst_harness_push(harness, buffer) != GST_FLOW_OK) throw std::runtime_error("a frame does not pass");
  }
  for (GstBuffer* const buffer : buffers) gst_buffer_unref(buffer);
  gst_harness_teardown(harness);
}

const std::string kElement = "zetstopngo gates=none threshold=" + std::to_string(kThreshold) +
                             " weights=" STOPNGO_DEFAULT_WEIGHTS " rate=";

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  setenv("STOPNGO_MODULE", STOPNGO_MODULE_FILE, 0);
  gst_init(&argc, &argv);
  stopngo::gst::RegisterElement(nullptr);
  benchmark::Initialize(&argc, argv);
  using bench::kElement;
  const std::string all = kElement + "0";
  const std::string six = kElement + "6";
  benchmark::RegisterBenchmark("module alone", bench::ModuleAlone);
  benchmark::RegisterBenchmark("nothing in between", bench::Passes, "identity", 0);
  benchmark::RegisterBenchmark("every frame", bench::Passes, all.c_str(), 0);
  benchmark::RegisterBenchmark("every frame, rows copied", bench::Passes, all.c_str(), 128);
  benchmark::RegisterBenchmark("6 of 30 frames", bench::Passes, six.c_str(), 0);
  benchmark::RunSpecifiedBenchmarks();
}
