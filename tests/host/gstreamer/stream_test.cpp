// stream_test.cpp: what happens in a stream, and what is told of it.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "pipe.h"
#include "support/failure_text.h"

namespace stopngo::test {
namespace {

/// Without weights every score is 0.5, above the threshold: the fourth is an alarm.
const Properties kAlarms{
    {"weights", ""}, {"no-weights", "true"}, {"time-beeping", "2"}, {"time-cooling", "4"}};

class Stream : public testing::Test {
 protected:
  explicit Stream(const Properties& properties = kAlarms) : pipe(format, properties) {}

  /// Frames at times in sixths of a second.
  void Push(int first, int last) {
    for (int i = first; i <= last; ++i) Push(MakeFrame(format, grey, At(i)));
  }
  void Push(BufferPtr buffer) {
    EXPECT_EQ(pipe.Push(std::move(buffer)), GST_FLOW_OK);
    pulled = pipe.Pull();
    EXPECT_TRUE(pulled);
  }
  static GstClockTime At(int sixths) {
    return gst_util_uint64_scale(GST_SECOND, static_cast<guint64>(sixths), 6);
  }
  /// Changes as "frame:decision".
  std::string Changes() {
    std::string text;
    for (const Told& told : pipe.TakeTold()) {
      if (told.changed) text += std::to_string(told.frame) + ":" + std::to_string(told.decision) + " ";
    }
    return text;
  }
  void Segment(double rate, int start, GstSegmentFlags flags = GST_SEGMENT_FLAG_NONE) {
    GstSegment segment;
    gst_segment_init(&segment, GST_FORMAT_TIME);
    segment.rate = rate;
    segment.flags = flags;
    segment.start = segment.time = At(start);
    segment.stop = rate < 0 ? At(start + 1000) : GST_CLOCK_TIME_NONE;
    EXPECT_TRUE(pipe.PushEvent(gst_event_new_segment(&segment)));
  }

  PipeFormat format;
  std::string grey = std::string(800 * 480, 'g');
  Pipe pipe;
  BufferPtr pulled;
};

TEST_F(Stream, ChangesAreToldOnTheBusAndFramesCarryWhatTheyCameTo) {
  Push(0, 3);
  EXPECT_TRUE(pipe.TakeTold().empty()) << "silent while nothing changes";
  Push(4, 4);
  const std::vector<Told> told = pipe.TakeTold();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].decision, 1);
  EXPECT_EQ(told[0].score, 0.5);
  EXPECT_EQ(told[0].counter, 0);
  EXPECT_EQ(told[0].gate, "");
  EXPECT_EQ(told[0].timestamp, At(4));
  EXPECT_EQ(told[0].running_time, At(4));
  EXPECT_EQ(told[0].frame, 4U);
  const auto* const meta = gst_buffer_get_video_region_of_interest_meta_id(pulled.get(), 0);
  ASSERT_NE(meta, nullptr);
  EXPECT_STREQ(g_quark_to_string(meta->roi_type), "stopngo");
  EXPECT_EQ((std::vector{meta->x, meta->y, meta->w, meta->h}), (std::vector{290U, 260U, 220U, 140U}));
  auto* const mutable_meta = const_cast<GstVideoRegionOfInterestMeta*>(meta);
  const GstStructure* const param = gst_video_region_of_interest_meta_get_param(mutable_meta, "stopngo");
  ASSERT_NE(param, nullptr);
  EXPECT_EQ(Told(*param).decision, 1);
  Push(5, 12);
  EXPECT_EQ(Changes(), "7:2 9:0 12:1 ");
  pipe.Set("silent", "false");
  Push(13, 15);
  EXPECT_EQ(pipe.TakeTold().size(), 3U);
}

TEST_F(Stream, WhatOthersHoldIsNotChanged) {
  BufferPtr buffer = MakeFrame(format, grey, 0);
  const BufferPtr held(gst_buffer_ref(buffer.get()));
  Push(std::move(buffer));
  EXPECT_NE(pulled, held) << "the outside is copied";
  EXPECT_EQ(gst_buffer_peek_memory(pulled.get(), 0), gst_buffer_peek_memory(held.get(), 0))
      << "the pixels are not";
  EXPECT_EQ(gst_buffer_get_video_region_of_interest_meta_id(held.get(), 0), nullptr);
  EXPECT_NE(gst_buffer_get_video_region_of_interest_meta_id(pulled.get(), 0), nullptr);
}

TEST_F(Stream, DrawingMarksTheRegionAndNothingElse) {
  pipe.Set("draw", "region");
  for (const auto& [first, breadth] : {std::pair{0, 2}, {4, 8}}) {
    for (int i = first == 0 ? 0 : 1; i < first; ++i) Push(i, i);
    BufferPtr buffer = MakeFrame(format, grey, At(first));
    const BufferPtr held(gst_buffer_ref(buffer.get()));
    Push(std::move(buffer));
    EXPECT_TRUE(BytesOf(held.get()) == grey) << "others see what came";
    const std::string drawn = BytesOf(pulled.get());
    std::size_t marked = 0;
    for (int y = 0; y < 480; ++y) {
      for (int x = 0; x < 800; ++x) {
        const bool outside = x < 290 || x >= 510 || y < 260 || y >= 400;
        const bool near = x >= 290 - breadth && x < 510 + breadth && y >= 260 - breadth && y < 400 + breadth;
        const bool white = drawn[static_cast<std::size_t>(y) * 800 + static_cast<std::size_t>(x)] != 'g';
        EXPECT_EQ(white, outside && near) << x << " " << y;
        marked += white ? 1 : 0;
      }
    }
    EXPECT_GT(marked, 0U);
  }
}

TEST_F(Stream, JumpsStartAnewAndAreSaid) {
  Push(0, 3);
  Push(10, 12);  // 7/6 s later: the first one is compared with nothing, and two are no alarm
  EXPECT_EQ(Changes(), "");
  EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_WARNING),
            "the time stamps jump by 1.167 s at frame 4: what comes is not compared with what came\n");
  Push(13, 14);
  EXPECT_EQ(Changes(), "8:1 ");
  Push(3, 4);
  EXPECT_EQ(Changes(), "9:0 ") << "the alarm belongs to another place";
  ExpectWords(pipe.TakeSentences(GST_MESSAGE_WARNING), {"jump by -1.833 s at frame 9"});
}

TEST_F(Stream, ASeekStartsAnew) {
  Push(0, 4);
  EXPECT_EQ(Changes(), "4:1 ");
  EXPECT_TRUE(pipe.PushEvent(gst_event_new_flush_start()));
  EXPECT_TRUE(pipe.PushEvent(gst_event_new_flush_stop(TRUE)));
  Segment(1, 6);
  Push(6, 9);
  EXPECT_EQ(Changes(), "5:0 ");
  Push(10, 10);
  EXPECT_EQ(Changes(), "9:1 ");
  EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_WARNING), "") << "who seeks knows";
}

TEST_F(Stream, FramesOutsideTheSegmentOrInAGapShowNothing) {
  Segment(1, 6);
  Push(0, 5);
  BufferPtr gap = MakeFrame(format, grey, At(6));
  GST_BUFFER_FLAG_SET(gap.get(), GST_BUFFER_FLAG_GAP);
  Push(std::move(gap));
  EXPECT_TRUE(pipe.PushEvent(gst_event_new_gap(At(7), GST_SECOND / 6)));
  EXPECT_EQ(gst_buffer_get_video_region_of_interest_meta_id(pulled.get(), 0), nullptr);
  Push(8, 12);
  EXPECT_EQ(Changes(), "11:1 ") << "as the fifth frame";
  EXPECT_TRUE(pipe.PushEvent(gst_event_new_eos()));
  EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_WARNING), "");
}

TEST_F(Stream, RunningTimeFollowsTheSegment) {
  pipe.Set("silent", "false");
  Segment(2, 6);
  Push(6, 18);
  const std::vector<Told> told = pipe.TakeTold();
  ASSERT_EQ(told.size(), 13U) << "played twice as fast, the scene has as many frames";
  EXPECT_EQ(told[12].timestamp, At(18));
  EXPECT_EQ(told[12].running_time, At(6));
}

TEST_F(Stream, WhatIsPlayedBackwardsOrInPartsIsNotLookedAt) {
  Segment(-1, 0);
  for (int i = 20; i > 10; --i) Push(i, i);
  Segment(1, 0, GST_SEGMENT_FLAG_TRICKMODE_KEY_UNITS);
  Push(0, 9);
  EXPECT_EQ(Changes(), "");
  EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_WARNING),
            "frames that are played backwards or left out on the way are not looked at\n");
}

TEST_F(Stream, FramesWithoutTimeStampsAreSaid) {
  for (int i = 0; i < 5; ++i) Push(MakeFrame(format, grey, GST_CLOCK_TIME_NONE));
  EXPECT_EQ(Changes(), "4:1 ");
  ExpectWords(pipe.TakeSentences(GST_MESSAGE_WARNING),
              {"without time stamps", "0.16666666666666666 s apart"});
}

TEST_F(Stream, StampsThatDoNotGrowAreSaidOnce) {
  Push(0, 1);
  Push(1, 1);
  Push(0, 4);
  EXPECT_EQ(Changes(), "7:1 ");
  EXPECT_EQ(pipe.TakeSentences(GST_MESSAGE_WARNING),
            "frames with time stamps that do not grow are passed over\n");
}

TEST_F(Stream, RegionIsToldInTheStreamsPixels) {
  format = {GST_VIDEO_FORMAT_NV12, 1920, 1080};
  pipe.SetFormat(format);
  grey.resize(1920 * 1080, 'g');
  Push(0, 0);
  const auto* const meta = gst_buffer_get_video_region_of_interest_meta_id(pulled.get(), 0);
  ASSERT_NE(meta, nullptr);
  EXPECT_EQ((std::vector{meta->x, meta->y, meta->w, meta->h}), (std::vector{696U, 585U, 528U, 315U}));
}

class SpeedStream : public Stream {
 protected:
  SpeedStream()
      : Stream([] {
          auto properties = kAlarms;
          properties.insert(properties.end(),
                            {{"gates", "speed"}, {"speed-time", "0.5s"}, {"speed-stale", "0.4s"}});
          return properties;
        }()) {}
};

TEST_F(SpeedStream, TheOwnSpeedIsToldWhilePlaying) {
  for (int i = 0; i < 6; ++i) {
    pipe.Set("speed", "30");
    Push(i, i);
  }
  double speed = 0;
  g_object_get(pipe.Get(), "speed", &speed, nullptr);
  EXPECT_EQ(speed, 30);
  pipe.Set("speed", "0");
  pipe.Set("silent", "false");
  Push(6, 12);
  const std::vector<Told> told = pipe.TakeTold();
  ASSERT_EQ(told.size(), 7U);
  EXPECT_EQ(told[0].gate, "speed (own vehicle just stopped)");
  EXPECT_EQ(told[6].gate, "");
  EXPECT_EQ(told[6].decision, 1) << "counted from when the gate opened, half a second after";
  ExpectWords(pipe.TakeSentences(GST_MESSAGE_WARNING), {"own speed", "speed-stale"});
}

}  // namespace
}  // namespace stopngo::test
