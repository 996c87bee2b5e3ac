// filter_test.cpp: the smoothing filters and the byte sort.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "detector.h"
#include "fenced.h"
#include "random.h"
#include "seed.h"
#include "vel_stopngo.h"

namespace {

using Pixels = std::vector<std::uint8_t>;
using Value = std::function<std::uint8_t(const std::uint8_t* centre, int width)>;

/// The in-place filters as they are meant: every pixel inside the border replaced in turn.
void Replace(std::uint8_t* image, int border, int width, int height, const Value& value) {
  for (int y = border; y < height - border; ++y) {
    for (int x = border; x < width - border; ++x) image[y * width + x] = value(&image[y * width + x], width);
  }
}

std::uint8_t Median(const std::uint8_t* centre, int width) {
  Pixels window;
  for (int y = -1; y <= 1; ++y) window.insert(window.end(), centre + y * width - 1, centre + y * width + 2);
  std::ranges::sort(window);
  return window[4];
}

std::uint8_t Gaussian(const std::uint8_t* centre, int width) {
  // The mask is symmetric: rows and columns by their distance from the centre.
  constexpr int kMask[3][3] = {{15, 12, 5}, {12, 9, 4}, {5, 4, 2}};
  int sum = 0;
  for (int y = -2; y <= 2; ++y) {
    for (int x = -2; x <= 2; ++x) sum += kMask[std::abs(y)][std::abs(x)] * centre[y * width + x];
  }
  return static_cast<std::uint8_t>(sum / 159 / 10 * 10);
}

TEST(Filters, InPlaceFiltersFeedOnTheirOwnResults) {
  Pixels image = {0, 0, 0, 100, 0, 100, 100, 0, 0, 0, 100, 100, 100, 100, 100, 0, 0, 100, 100, 100};
  image_median_filter(image.data(), 0, 5, 4);
  EXPECT_EQ(Pixels(image.begin() + 5, image.begin() + 10), (Pixels{100, 100, 100, 100, 0}));

  Pixels spot(49, 100);
  spot[3 * 7 + 3] = 250;
  Pixels blurred(49, 100);
  blurred[2 * 7 + 3] = blurred[3 * 7 + 2] = blurred[3 * 7 + 3] = 110;
  image_gaussian_blur_filter(spot.data(), 0, 7, 7);
  EXPECT_EQ(spot, blurred);
}

TEST(Filters, RandomImagesOfManySizes) {
  test::Random random(test::Seed(5));
  for (int trial = 0; trial < 300; ++trial) {
    const int width = static_cast<int>(random.Below(trial % 10 == 0 ? 90 : 24));
    const int height = static_cast<int>(random.Below(24));
    const int skip = static_cast<int>(random.Below(7)) - 1;
    test::Fenced image(static_cast<std::size_t>(width) * height);
    random.Fill(image.Bytes());
    if (trial % 3 == 0) {
      for (std::uint8_t& pixel : image.Bytes()) pixel = pixel < 128 ? 0 : 255;
    }
    Pixels median(image.Bytes().begin(), image.Bytes().end());
    Pixels gaussian = median;
    test::Fenced separate(image.Bytes().size());
    ASSERT_EQ(median_filter(image.Data(), height, width, separate.Data()), 0);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const bool inside = y > 0 && x > 0 && y < height - 1 && x < width - 1;
        ASSERT_EQ(separate.Data()[y * width + x], inside ? Median(image.Data() + y * width + x, width) : 0);
      }
    }
    test::Fenced blurred(image.Bytes().size());
    std::ranges::copy(image.Bytes(), blurred.Data());
    image_median_filter(image.Data(), skip, width, height);
    if (width > 3 && height > 3) Replace(median.data(), std::max(skip, 1), width, height, Median);
    EXPECT_TRUE(std::ranges::equal(image.Bytes(), median)) << width << "x" << height << " skip " << skip;

    const int border = std::max(skip, 2);
    image_gaussian_blur_filter(blurred.Data(), static_cast<std::uint32_t>(border), width, height);
    Replace(gaussian.data(), border, width, height, Gaussian);
    EXPECT_TRUE(std::ranges::equal(blurred.Bytes(), gaussian)) << width << "x" << height;
  }
}

TEST(Filters, BordersThatLeaveNoRoomAndNullImages) {
  Pixels image(100);
  test::Random random(test::Seed(6));
  random.Fill(image);
  const Pixels before = image;
  for (const int skip : {5, 9, 10, 11, 1 << 30, 0x7FFFFFFF}) {
    image_median_filter(image.data(), skip, 10, 10);
    image_gaussian_blur_filter(image.data(), static_cast<std::uint32_t>(skip), 10, 10);
  }
  image_gaussian_blur_filter(image.data(), 0xFFFFFFFFU, 10, 10);
  image_gaussian_blur_filter(image.data(), 0x80000001U, 10, 10);
  image_median_filter(image.data(), 0, 0, 0xFFFFFFFFU);
  image_gaussian_blur_filter(image.data(), 0, 0xFFFFFFFFU, 1);
  image_median_filter(nullptr, 0, 10, 10);
  image_gaussian_blur_filter(nullptr, 0, 10, 10);
  EXPECT_EQ(median_filter(nullptr, 10, 10, image.data()), 0);
  EXPECT_EQ(median_filter(image.data(), 10, 10, nullptr), 0);
  EXPECT_EQ(median_filter(image.data(), -5, 10, image.data()), 0);
  EXPECT_EQ(median_filter(image.data(), 10, -5, image.data()), 0);
  EXPECT_EQ(image, before);
}

TEST(Sort, SortsWhateverTheOrder) {
  test::Random random(test::Seed(7));
  const std::string printed = test::Printed([&] {
    for (int size = 0; size < 3000; size = size < 20 ? size + 1 : size * 2) {
      for (int kind = 0; kind < 4; ++kind) {
        test::Fenced values(static_cast<std::size_t>(size));
        random.Fill(values.Bytes());
        if (kind == 1) std::ranges::sort(values.Bytes());
        if (kind == 2) std::ranges::sort(values.Bytes(), std::greater<>());
        if (kind == 3) std::ranges::fill(values.Bytes(), 5);
        Pixels expected(values.Bytes().begin(), values.Bytes().end());
        std::ranges::sort(expected);
        pixel_qsort(values.Data(), size);
        ASSERT_TRUE(std::ranges::equal(values.Bytes(), expected)) << size << " kind " << kind;
      }
    }
    pixel_qsort(nullptr, 9);
    std::uint8_t one = 3;
    for (const int size : {1, -1, -2147483647 - 1}) pixel_qsort(&one, size);
    EXPECT_EQ(one, 3);
  });
  EXPECT_EQ(printed, "");
}

}  // namespace
