// telling.cpp: what the element tells of itself: decisions, and what is wrong.
#include "host/gstreamer/telling.h"

#include <cstdint>

#include "host/common/text.h"

namespace stopngo::gst {
namespace {

constexpr const char* kName = "stopngo";

GstStructure* StructureOf(const Telling& telling) {
  const FrameReport& report = telling.report;
  return gst_structure_new(
      kName, "decision", G_TYPE_INT, report.decision, "changed", G_TYPE_BOOLEAN,
      telling.changed ? TRUE : FALSE, "score", G_TYPE_DOUBLE, static_cast<double>(report.score), "counter",
      G_TYPE_INT, report.alarm_counter, "gate", G_TYPE_STRING, telling.gate, "timestamp", G_TYPE_UINT64,
      guint64{telling.timestamp}, "running-time", G_TYPE_UINT64, guint64{telling.running_time}, "frame",
      G_TYPE_UINT64, static_cast<guint64>(report.index), nullptr);
}

using MessageMaker = decltype(gst_message_new_error);

// Terminals show the sentence.
void Post(GstElement* element, MessageMaker* make, GQuark domain, int code, const std::string& sentence) {
  GError* const error = g_error_new_literal(domain, code, Escaped(sentence).c_str());
  gst_element_post_message(element, make(GST_OBJECT(element), error, nullptr));
  g_error_free(error);
}

}  // namespace

void PostTelling(GstElement* element, const Telling& telling) {
  gst_element_post_message(element, gst_message_new_element(GST_OBJECT(element), StructureOf(telling)));
}

void AttachTelling(GstBuffer* buffer, const PixelArea& region, const Telling& telling) {
  const auto length = [](int from, int to) { return static_cast<unsigned>(to - from); };
  GstVideoRegionOfInterestMeta* const meta = gst_buffer_add_video_region_of_interest_meta(
      buffer, kName, static_cast<unsigned>(region.left), static_cast<unsigned>(region.top),
      length(region.left, region.right), length(region.top, region.bottom));
  gst_video_region_of_interest_meta_add_param(meta, StructureOf(telling));
}

void Inform(GstElement* element, const std::string& sentence) {
  Post(element, gst_message_new_info, GST_STREAM_ERROR, GST_STREAM_ERROR_FORMAT, sentence);
}

void Warn(GstElement* element, const std::string& sentence) {
  Post(element, gst_message_new_warning, GST_STREAM_ERROR, GST_STREAM_ERROR_FAILED, sentence);
}

void Fail(GstElement* element, const std::string& sentence) {
  Post(element, gst_message_new_error, GST_LIBRARY_ERROR, GST_LIBRARY_ERROR_SETTINGS, sentence);
}

}  // namespace stopngo::gst
