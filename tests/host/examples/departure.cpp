// departure.cpp: a vehicle ahead that waits and drives off, as raw luma on standard output, the same on every machine.
//
//     departure FPS STRIDE > frames.raw
//
// Frames of 800 × 480, for 8 s; the vehicle starts after 4 s. What is behind the rows' 800 bytes of luma is noise.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <vector>

#include "random.h"

namespace test {
namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 480;
constexpr double kLength_s = 8;
constexpr double kStart_s = 4;
constexpr double kAcceleration = 0.2;  // m/s²: a soft start, which frames 1/30 s apart hardly show
constexpr double kDistance_m = 5;
// The camera, 1.2 m above the road: pixels a metre at a distance of 1 m, and where it looks.
constexpr double kFocal = 800;
constexpr double kCamera_m = 1.2;
constexpr double kCentre = 400;
constexpr double kHorizon = 180;
// The vehicle's rear.
constexpr double kRearWidth_m = 1.7;
constexpr double kRearHeight_m = 1.4;

/// A random grey surface, one value every 5 cm, interpolated between.
class Texture {
 public:
  Texture(Random& random, double contrast) : values_(kSide * kSide) {
    for (double& value : values_) value = 110 + contrast * random.Signed();
  }
  [[nodiscard]] double At(double x_m, double y_m) const {
    const double x = x_m / kGrain_m;
    const double y = y_m / kGrain_m;
    const auto left = static_cast<int>(x);
    const auto top = static_cast<int>(y);
    const double right_share = x - left;
    const double lower_share = y - top;
    const double* const upper = &values_[static_cast<std::size_t>(top) * kSide + left];
    const double* const lower = upper + kSide;
    return (upper[0] + (upper[1] - upper[0]) * right_share) * (1 - lower_share) +
           (lower[0] + (lower[1] - lower[0]) * right_share) * lower_share;
  }

 private:
  static constexpr int kSide = 64;
  static constexpr double kGrain_m = 0.05;
  std::vector<double> values_;
};

double Distance(double time_s) {
  const double driven_s = std::max(0.0, time_s - kStart_s);
  return kDistance_m + kAcceleration / 2 * driven_s * driven_s;
}

/// The rear at a distance, over a picture of the street.
void DrawRear(const Texture& texture, double distance_m, std::vector<std::uint8_t>& picture) {
  const double metre = kFocal / distance_m;
  const double bottom = kHorizon + kCamera_m * metre;
  const double top = bottom - kRearHeight_m * metre;
  const double left = kCentre - kRearWidth_m / 2 * metre;
  const double right = kCentre + kRearWidth_m / 2 * metre;
  for (int y = static_cast<int>(top) + 1; y < bottom; ++y) {
    for (int x = static_cast<int>(left) + 1; x < right; ++x) {
      picture[static_cast<std::size_t>(y) * kWidth + x] =
          static_cast<std::uint8_t>(texture.At((x - left) / metre, (y - top) / metre));
    }
  }
}

int Write(double fps, std::size_t stride) {
  Random random(1);
  const Texture rear(random, 90);
  const Texture road(random, 12);
  std::vector<std::uint8_t> street(kWidth * kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x)
      street[y * kWidth + x] = static_cast<std::uint8_t>(road.At(x / 300.0, y / 300.0));
  }
  // What is behind the luma changes no pixel of it.
  Random behind(2);
  std::vector<std::uint8_t> row(stride);
  const std::span<std::uint8_t> luma = std::span(row).first(kWidth);
  const auto frames = static_cast<int>(kLength_s * fps);
  for (int frame = 0; frame < frames; ++frame) {
    std::vector<std::uint8_t> picture = street;
    DrawRear(rear, Distance(frame / fps), picture);
    for (int y = 0; y < kHeight; ++y) {
      random.Fill(luma);
      behind.Fill(std::span(row).subspan(kWidth));
      // Sensor noise of a few grey levels comes from the same bytes.
      for (int x = 0; x < kWidth; ++x)
        row[x] = static_cast<std::uint8_t>(picture[y * kWidth + x] + row[x] % 4);
      if (std::fwrite(row.data(), 1, row.size(), stdout) != row.size()) return 1;
    }
  }
  return std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace
}  // namespace test

int main(int argc, char** argv) {
  const double fps = argc == 3 ? std::atof(argv[1]) : 0;
  const int stride = argc == 3 ? std::atoi(argv[2]) : 0;
  if (fps <= 0 || stride < 800) {
    std::fputs("usage: departure FPS STRIDE, which is 800 or more\n", stderr);
    return 2;
  }
  return test::Write(fps, static_cast<std::size_t>(stride));
}
