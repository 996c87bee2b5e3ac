// peers_opencv.cpp: the routines that OpenCV has too, on one thread; its filters do not feed on their results.
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "contestant.h"
#include "scene.h"

namespace bench {
namespace {

/// A matrix over a copy of the pixels.
cv::Mat Image(int width, int height) {
  Pixels pixels = MakeFrames(width, height, Content::kMoving).after;
  return cv::Mat(height, width, CV_8U, pixels.data()).clone();
}

}  // namespace

void AddOpenCvPeers(std::vector<Contestant>& peers) {
  cv::setNumThreads(1);
  const auto add = [&](const char* routine, std::function<void(int)> run) {
    peers.push_back({routine, "OpenCV", nullptr, std::move(run)});
  };
  const cv::Mat frame = Image(800, 480);
  const cv::Mat region = Image(kRegionWidth, kRegionHeight);
  const cv::Rect place(kRegion[1], kRegion[0], kRegionWidth, kRegionHeight);
  cv::Mat output(kRegionHeight, kRegionWidth, CV_8U);

  const cv::Mat cells(1, 80, CV_8S, cv::Scalar(3));
  cv::Mat features(1, 80, CV_32F);
  add("Classify_Conversion_", Repeat([=]() mutable { cells.convertTo(features, CV_32F, 1 / 128.0); }));
  add("Image_Cropping_ Ratio 0", Repeat([=]() mutable { frame(place).copyTo(output); }));
  cv::Mat flipped = frame.clone();
  add("Image_Flipping_", Repeat([=]() mutable { cv::flip(flipped, flipped, 0); }));
  cv::Mat marked = frame.clone();
  add("Image_Marking_", Repeat([=]() mutable {
        cv::Mat target = marked(place);
        cv::bitwise_xor(target, region, target);
      }));
  const auto median = [=]() mutable { cv::medianBlur(region, output, 3); };
  add("image_median_filter", Repeat(median));
  add("median_filter", Repeat(median));
  add("image_gaussian_blur_filter",
      Repeat([=]() mutable { cv::GaussianBlur(region, output, cv::Size(5, 5), 1.4); }));
}

}  // namespace bench
