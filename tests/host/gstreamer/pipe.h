// pipe.h: the element in a harness: frames go in, frames and messages come out.
#pragma once

#include <gst/check/gstharness.h>
#include <gst/video/video.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace stopngo::test {

struct BufferUnref {
  void operator()(GstBuffer* buffer) const { gst_buffer_unref(buffer); }
};
using BufferPtr = std::unique_ptr<GstBuffer, BufferUnref>;

/// What the element told of a frame.
struct Told {
  int decision = 0;
  bool changed = false;
  double score = 0;
  int counter = 0;
  std::string gate;
  std::uint64_t timestamp = 0;
  std::uint64_t running_time = 0;
  std::uint64_t frame = 0;

  explicit Told(const GstStructure& structure);
};

/// GStreamer with the element and nothing else. Pipes and frames begin with it.
void InitGst();

/// Frames of a format, a place in their stream, and what is in them.
struct PipeFormat {
  GstVideoFormat format = GST_VIDEO_FORMAT_GRAY8;
  int width = 800;
  int height = 480;
  int fps_n = 6;
  int fps_d = 1;

  [[nodiscard]] GstVideoInfo Info() const;
  [[nodiscard]] std::string Caps() const;
};

/// A frame of a luma plane, its other bytes noise. padding: bytes behind each row of the first plane, told in a
/// GstVideoMeta; below 0: as the format has it.
BufferPtr MakeFrame(const PipeFormat& format, const std::string& luma, GstClockTime pts, int padding = -1);

/// The bytes of a buffer.
std::string BytesOf(GstBuffer* buffer);

using Properties = std::vector<std::pair<std::string, std::string>>;

/// The element alone, with a bus. Registered by whoever asks first.
class LoneElement {
 public:
  explicit LoneElement(const Properties& properties = {});
  ~LoneElement();
  LoneElement(const LoneElement&) = delete;
  LoneElement& operator=(const LoneElement&) = delete;

  [[nodiscard]] GstElement* Get() const { return element_; }
  /// As gst-launch does.
  void Set(const std::string& name, const std::string& value);
  /// What is on the bus of a kind, told apart by line breaks.
  std::string TakeSentences(GstMessageType type);
  std::vector<Told> TakeTold();

 private:
  void Collect();

  GstElement* element_;
  GstBus* bus_;
  std::vector<GstMessage*> messages_;
};

/// The element at work.
class Pipe : public LoneElement {
 public:
  Pipe(const PipeFormat& format, const Properties& properties);
  ~Pipe();

  void SetFormat(const PipeFormat& format);
  GstFlowReturn Push(BufferPtr buffer) { return gst_harness_push(harness_, buffer.release()); }
  bool PushEvent(GstEvent* event) { return gst_harness_push_event(harness_, event) != 0; }
  /// The frame that came out last; null: none.
  BufferPtr Pull() { return BufferPtr(gst_harness_try_pull(harness_)); }
  [[nodiscard]] GstHarness* Harness() const { return harness_; }

 private:
  GstHarness* harness_;
};

}  // namespace stopngo::test
