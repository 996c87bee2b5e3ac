// allocations_test.cpp: once frames flow, the element takes no memory of its own.
#include <gtest/gtest.h>

#include "pipe.h"
#include "support/operator_new.h"
#include "support/squares.h"

namespace stopngo::test {
namespace {

// What GStreamer takes for a message and for what is attached to a buffer is its own.
TEST(ElementAllocations, NoneOnceFramesFlow) {
  for (const PipeFormat& format :
       {PipeFormat{GST_VIDEO_FORMAT_NV12}, PipeFormat{GST_VIDEO_FORMAT_YUY2},
        PipeFormat{GST_VIDEO_FORMAT_I420, 640, 360}, PipeFormat{GST_VIDEO_FORMAT_UYVY, 640, 360},
        PipeFormat{GST_VIDEO_FORMAT_NV12, 1920, 1080}}) {
    Pipe pipe(format,
              {{"silent", "false"}, {"gates", "history,light,speed,once,picture"}, {"draw", "region"}});
    for (int i = 0; i < 40; ++i) {
      BufferPtr buffer = MakeFrame(format, Squares(format.width, format.height, 3 * i, 0),
                                   gst_util_uint64_scale(GST_SECOND, static_cast<guint64>(i), 6), 16);
      pipe.Set("speed", "0");
      GstBuffer* const frame = buffer.release();
      const long before = Allocations();
      ASSERT_EQ(gst_harness_push(pipe.Harness(), frame), GST_FLOW_OK);
      if (i > 0) {
        EXPECT_EQ(Allocations(), before) << format.Caps() << " frame " << i;
      }
      (void)pipe.Pull();
    }
    EXPECT_EQ(pipe.TakeTold().size(), 40U);
  }
}

}  // namespace
}  // namespace stopngo::test
