// seen_picture.cpp: what the module saw, drawn into a stream's frames.
#include "host/gstreamer/seen_picture.h"

#include <cstdint>
#include <string>

#include "host/common/failure.h"

namespace stopngo::gst {

SeenPicture::SeenPicture(const GstVideoInfo& info, const FrameFormat& frames, const SampledArea& area)
    : size_{frames.width, frames.height},
      reader_({info.width, info.height}, size_, {0, 0, frames.width, frames.height}),
      overlay_(frames, area, kUsualHistory_s) {
  // Blue, green, red and a byte of no meaning, as Cairo has them.
  const bool known = gst_video_info_set_interlaced_format(
                         &drawn_.info, GST_VIDEO_FORMAT_BGRx, info.interlace_mode,
                         static_cast<unsigned>(size_.width), static_cast<unsigned>(size_.height)) != 0;
  // The converter asks for the same rate on both sides.
  drawn_.info.fps_n = info.fps_n;
  drawn_.info.fps_d = info.fps_d;
  if (known) converter_.reset(gst_video_converter_new(&drawn_.info, &info, nullptr));
  if (!converter_) {
    throw Failure("the picture cannot be drawn into frames of the format " +
                  std::string(GST_VIDEO_INFO_NAME(&info)));
  }
}

void SeenPicture::Draw(MappedFrame& frame, const FrameReport& report, const VEL_STOPNGO_CTX& context) {
  overlay_.Draw({size_.width, size_.height, report.index, report.time_s, reader_.Read(frame)}, report,
                context);
  drawn_.data[0] = const_cast<std::uint8_t*>(overlay_.Picture().Pixels().data());  // which is only read
  gst_video_converter_frame(converter_.get(), &drawn_, &frame.Frame());
}

}  // namespace stopngo::gst
