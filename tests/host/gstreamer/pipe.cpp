// pipe.cpp: the element in a harness: frames go in, frames and messages come out.
#include "pipe.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>

#include "host/gstreamer/element.h"
#include "random.h"

namespace stopngo::test {
namespace {

template <typename Value>
Value Field(const GstStructure& structure, const char* name, GType type) {
  Value value{};
  EXPECT_TRUE(gst_structure_get(&structure, name, type, &value, nullptr)) << name;
  return value;
}

}  // namespace

// Without the plugins of the system, which take their time and are none of this test's.
void InitGst() {
  static const bool done = [] {
    setenv("GST_REGISTRY_DISABLE", "yes", 1);
    setenv("STOPNGO_MODULE", STOPNGO_MODULE_FILE, 1);
    gst_init(nullptr, nullptr);
    gst_plugin_register_static(
        GST_VERSION_MAJOR, GST_VERSION_MINOR, "zetstopngo", "under test",
        [](GstPlugin* plugin) { return static_cast<gboolean>(gst::RegisterElement(plugin)); }, "1.0",
        "unknown", "test", "test", "test");
    return true;
  }();
  ASSERT_TRUE(done);
}

Told::Told(const GstStructure& structure)
    : decision(Field<int>(structure, "decision", G_TYPE_INT)),
      changed(Field<gboolean>(structure, "changed", G_TYPE_BOOLEAN) != 0),
      score(Field<double>(structure, "score", G_TYPE_DOUBLE)),
      counter(Field<int>(structure, "counter", G_TYPE_INT)),
      gate(gst_structure_get_string(&structure, "gate")),
      timestamp(Field<guint64>(structure, "timestamp", G_TYPE_UINT64)),
      running_time(Field<guint64>(structure, "running-time", G_TYPE_UINT64)),
      frame(Field<guint64>(structure, "frame", G_TYPE_UINT64)) {
  EXPECT_STREQ(gst_structure_get_name(&structure), "stopngo");
}

GstVideoInfo PipeFormat::Info() const {
  GstVideoInfo info;
  EXPECT_TRUE(
      gst_video_info_set_format(&info, format, static_cast<unsigned>(width), static_cast<unsigned>(height)));
  info.fps_n = fps_n;
  info.fps_d = fps_d;
  return info;
}

std::string PipeFormat::Caps() const {
  const GstVideoInfo info = Info();
  GstCaps* const caps = gst_video_info_to_caps(&info);
  char* const text = gst_caps_to_string(caps);
  std::string result(text);
  g_free(text);
  gst_caps_unref(caps);
  return result;
}

BufferPtr MakeFrame(const PipeFormat& format, const std::string& luma, GstClockTime pts, int padding) {
  InitGst();
  GstVideoInfo info = format.Info();
  if (padding >= 0) {
    // The first plane's rows and all behind it are moved.
    const int stride = format.width * GST_VIDEO_INFO_COMP_PSTRIDE(&info, 0) + padding;
    const auto moved =
        static_cast<std::size_t>(stride - info.stride[0]) * static_cast<std::size_t>(format.height);
    info.stride[0] = stride;
    for (unsigned plane = 1; plane < GST_VIDEO_INFO_N_PLANES(&info); ++plane) info.offset[plane] += moved;
    info.size += moved;
  }
  BufferPtr buffer(gst_buffer_new_allocate(nullptr, info.size, nullptr));
  if (padding >= 0) {
    gst_buffer_add_video_meta_full(buffer.get(), GST_VIDEO_FRAME_FLAG_NONE, format.format,
                                   static_cast<unsigned>(format.width), static_cast<unsigned>(format.height),
                                   GST_VIDEO_INFO_N_PLANES(&info), info.offset, info.stride);
  }
  std::vector<std::uint8_t> bytes(info.size);
  ::test::Random random(pts);
  random.Fill(bytes);
  std::size_t at = 0;
  for (int y = 0; y < format.height; ++y) {
    std::uint8_t* const row =
        bytes.data() + GST_VIDEO_INFO_COMP_OFFSET(&info, 0) + std::ptrdiff_t{y} * info.stride[0];
    for (int x = 0; x < format.width; ++x) {
      row[std::ptrdiff_t{x} * GST_VIDEO_INFO_COMP_PSTRIDE(&info, 0)] = static_cast<std::uint8_t>(luma[at++]);
    }
  }
  gst_buffer_fill(buffer.get(), 0, bytes.data(), bytes.size());
  GST_BUFFER_PTS(buffer.get()) = pts;
  if (format.fps_n > 0) {
    GST_BUFFER_DURATION(buffer.get()) =
        GST_SECOND * static_cast<guint64>(format.fps_d) / static_cast<guint64>(format.fps_n);
  }
  return buffer;
}

std::string BytesOf(GstBuffer* buffer) {
  std::string bytes(gst_buffer_get_size(buffer), '\0');
  gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
  return bytes;
}

LoneElement::LoneElement(const Properties& properties) {
  InitGst();
  element_ = gst_element_factory_make("zetstopngo", nullptr);
  gst_object_ref_sink(element_);
  bus_ = gst_bus_new();
  gst_element_set_bus(element_, bus_);
  Set("weights", STOPNGO_DEFAULT_WEIGHTS);
  for (const auto& [name, value] : properties) Set(name, value);
}

LoneElement::~LoneElement() {
  for (GstMessage* const message : messages_) gst_message_unref(message);
  gst_element_set_state(element_, GST_STATE_NULL);
  gst_element_set_bus(element_, nullptr);
  gst_object_unref(bus_);
  gst_object_unref(element_);
}

void LoneElement::Set(const std::string& name, const std::string& value) {
  gst_util_set_object_arg(G_OBJECT(element_), name.c_str(), value.c_str());
}

void LoneElement::Collect() {
  while (GstMessage* const message = gst_bus_pop(bus_)) messages_.push_back(message);
}

std::string LoneElement::TakeSentences(GstMessageType type) {
  Collect();
  std::string sentences;
  std::erase_if(messages_, [&](GstMessage* message) {
    if (GST_MESSAGE_TYPE(message) != type) return false;
    GError* error = nullptr;
    if (type == GST_MESSAGE_ERROR) gst_message_parse_error(message, &error, nullptr);
    if (type == GST_MESSAGE_WARNING) gst_message_parse_warning(message, &error, nullptr);
    if (type == GST_MESSAGE_INFO) gst_message_parse_info(message, &error, nullptr);
    if (error != nullptr) sentences.append(error->message).append("\n");
    g_clear_error(&error);
    gst_message_unref(message);
    return true;
  });
  return sentences;
}

std::vector<Told> LoneElement::TakeTold() {
  Collect();
  std::vector<Told> told;
  std::erase_if(messages_, [&](GstMessage* message) {
    if (GST_MESSAGE_TYPE(message) != GST_MESSAGE_ELEMENT) return false;
    told.emplace_back(*gst_message_get_structure(message));
    gst_message_unref(message);
    return true;
  });
  return told;
}

Pipe::Pipe(const PipeFormat& format, const Properties& properties)
    : LoneElement(properties), harness_(gst_harness_new_with_element(Get(), "sink", "src")) {
  SetFormat(format);
}

Pipe::~Pipe() { gst_harness_teardown(harness_); }

void Pipe::SetFormat(const PipeFormat& format) {
  gst_harness_set_src_caps_str(harness_, format.Caps().c_str());
}

}  // namespace stopngo::test
