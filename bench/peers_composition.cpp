// peers_composition.cpp: the detector put together from libraries: FFmpeg's hand-written differences of blocks in a
// three-step search, OpenCV's crop and Eigen's product around it. The nearest there is to what nobody sells whole.
extern "C" {
#include <libavutil/pixelutils.h>
}

#include <Eigen/Dense>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <opencv2/core.hpp>

#include "contestant.h"
#include "scene.h"

namespace bench {
namespace {

constexpr int kBlock = 10;
constexpr int kRows = 12;
constexpr int kColumns = 20;
constexpr std::ptrdiff_t kPitch = kRegionWidth;

/// Sums of absolute differences of 16 × 16 pixels: the smallest squares that hold a block of 10. Beside the last
/// block they reach past the region's last row, so the pictures have some rows more.
class ThreeStepSearch {
 public:
  using Motion = std::array<std::int8_t, 2 * kRows * kColumns>;

  void operator()(const std::uint8_t* before, const std::uint8_t* after, Motion& motion) const {
    std::int8_t* vector = motion.data();
    for (int row = 1; row <= kRows; ++row) {
      for (int column = 1; column <= kColumns; ++column, vector += 2) {
        const std::ptrdiff_t at = row * kBlock * kPitch + column * kBlock;
        Search(before + at, after + at, vector);
      }
    }
  }

 private:
  void Search(const std::uint8_t* before, const std::uint8_t* after, std::int8_t* vector) const {
    int least = differences_(before, kPitch, after, kPitch);
    int down = 0;
    int right = 0;
    for (const int step : {4, 2, 1}) {
      int best_down = down;
      int best_right = right;
      for (int y = down - step; y <= down + step; y += step) {
        for (int x = right - step; x <= right + step; x += step) {
          if (y == down && x == right) continue;
          const int sum = differences_(before + y * kPitch + x, kPitch, after, kPitch);
          if (sum >= least) continue;
          least = sum;
          best_down = y;
          best_right = x;
        }
      }
      down = best_down;
      right = best_right;
    }
    vector[0] = static_cast<std::int8_t>(-down);
    vector[1] = static_cast<std::int8_t>(-right);
  }

  av_pixelutils_sad_fn differences_ = av_pixelutils_get_sad_fn(4, 4, 0, nullptr);
};

/// Four sums a cell of 3 × 4 blocks.
void SumCells(const ThreeStepSearch::Motion& motion, float* sums) {
  for (int row = 0; row < kRows; ++row) {
    for (int column = 0; column < kColumns; ++column) {
      const std::size_t block = static_cast<std::size_t>(row * kColumns + column);
      float* cell = sums + 4 * (row / 3 * (kColumns / 4) + column / 4);
      const auto down = static_cast<float>(motion[2 * block]);
      const auto right = static_cast<float>(motion[2 * block + 1]);
      (down > 0 ? cell[0] : cell[2]) += down > 0 ? down : -down;
      (right > 0 ? cell[1] : cell[3]) += right > 0 ? right : -right;
    }
  }
}

}  // namespace

void AddCompositionPeers(std::vector<Contestant>& peers) {
  const FramePair frames = MakeFrames(800, 480, Content::kMoving);
  const cv::Rect place(kRegion[1], kRegion[0], kRegionWidth, kRegionHeight);
  const std::array<cv::Mat, 2> wide = {
      cv::Mat(480, 800, CV_8U, const_cast<std::uint8_t*>(frames.before.data())).clone(),
      cv::Mat(480, 800, CV_8U, const_cast<std::uint8_t*>(frames.after.data())).clone()};
  std::array<cv::Mat, 2> region;
  for (std::size_t i = 0; i < 2; ++i) {
    region[i] = cv::Mat::zeros(kRegionHeight + 16, kRegionWidth, CV_8U);
    wide[i](place).copyTo(region[i].rowRange(0, kRegionHeight));
  }
  const ThreeStepSearch search;
  ThreeStepSearch::Motion motion{};
  peers.push_back({"Block_Match_TSS_", "FFmpeg", nullptr,
                   Repeat([=]() mutable { search(region[0].data, region[1].data, motion); })});

  using Row = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  const Row weights = Row::Random(16, 160);
  Eigen::VectorXf features = Eigen::VectorXf::Zero(160);
  Eigen::VectorXf hidden(16);
  std::size_t now = 0;
  peers.push_back({"vel_stopngo_write", "parts", nullptr, Repeat([=]() mutable {
                     now ^= 1;
                     cv::Mat crop = region[now].rowRange(0, kRegionHeight);
                     wide[now](place).copyTo(crop);
                     search(region[now ^ 1].data, region[now].data, motion);
                     features.head(80) = features.tail(80).eval();
                     features.tail(80).setZero();
                     SumCells(motion, features.data() + 80);
                     features.tail(80) /= 128;
                     hidden.noalias() = weights * features;
                     hidden = (1 + (-hidden.array()).exp()).inverse();
                   })});
}

}  // namespace bench
