// crop_test.cpp: the crops of the frame path and the subsampling, pixel by pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "fenced.h"
#include "random.h"
#include "seed.h"
#include "vel_stopngo.h"

namespace {

using Rectangle = std::array<std::uint32_t, 4>;
using Indices = std::vector<int>;

/// Runs a crop on an image whose pixels tell their row, and on one whose pixels tell their column, and
/// returns the source rows of the output's first column and the source columns of its first row. Every
/// other output pixel is held to the same row and column.
struct Sampled {
  Indices rows, columns;
};
using Crop = std::function<void(const std::uint8_t* input, std::uint8_t* output)>;

/// One digit, base 256, of every source coordinate of an output of that size.
std::vector<std::uint8_t> Digit(const Crop& crop, int height, int width, int out_height, int out_width,
                                bool of_row, int shift) {
  test::Fenced input(static_cast<std::size_t>(height) * width);
  test::Fenced output(static_cast<std::size_t>(out_height) * out_width);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x)
      input.Data()[y * width + x] = static_cast<std::uint8_t>((of_row ? y : x) >> shift);
  }
  crop(input.Data(), output.Data());
  return {output.Bytes().begin(), output.Bytes().end()};
}

Sampled Sample(const Crop& crop, int height, int width, int out_height, int out_width) {
  const auto coordinate = [&](bool of_row) {
    const auto low = Digit(crop, height, width, out_height, out_width, of_row, 0);
    const auto high = Digit(crop, height, width, out_height, out_width, of_row, 8);
    Indices all(low.size());
    std::ranges::transform(high, low, all.begin(), [](int h, int l) { return h * 256 + l; });
    return all;
  };
  const Indices rows = coordinate(true);
  const Indices columns = coordinate(false);
  Sampled sampled;
  for (int y = 0; y < out_height; ++y) sampled.rows.push_back(rows[static_cast<std::size_t>(y) * out_width]);
  sampled.columns.assign(columns.begin(), columns.begin() + out_width);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i], sampled.rows[i / out_width]);
    EXPECT_EQ(columns[i], sampled.columns[i % out_width]);
  }
  return sampled;
}

Indices First(const Indices& all, std::size_t count) {
  return {all.begin(), all.begin() + static_cast<int>(count)};
}

/// offset, offset + step × pattern …: count values of a pattern that repeats every step.
Indices Repeat(int start, int step, const Indices& pattern, std::size_t count) {
  Indices all;
  for (std::size_t i = 0; i < count; ++i) {
    all.push_back(start + step * static_cast<int>(i / pattern.size()) + pattern[i % pattern.size()]);
  }
  return all;
}

Crop Cropping(Rectangle source, Rectangle location, std::uint32_t ratio, int flip, std::uint32_t height,
              std::uint32_t width) {
  return [=](const std::uint8_t* input, std::uint8_t* output) {
    Image_Cropping_(input, output, source.data(), location.data(), ratio, flip, height, width);
  };
}

TEST(Cropping, EveryRatioHasItsPatternBothWays) {
  const std::pair<std::uint32_t, std::pair<int, Indices>> ratios[] = {
      {0, {1, {0}}},
      {2, {4, {0, 1, 2, 3, 3}}},
      {4, {3, {0, 1, 1, 2, 2}}},
      {5, {1, {0, 0}}},
      {6, {2, {0, 0, 0, 1, 1}}},
      {7, {3, {0, 0, 0, 1, 1, 1, 1, 2, 2, 2}}},
      {8, {1, {0, 0, 0, 0, 0}}},
  };
  for (const auto& [ratio, pattern] : ratios) {
    // 43 × 57: the last groups are cut short.
    for (const auto& [rows, columns] : {std::pair{30, 40}, std::pair{43, 57}, std::pair{1, 1}}) {
      const Rectangle location = {10, 20, 10U + rows, 20U + columns};
      const Indices expected_columns = Repeat(7, pattern.first, pattern.second, columns);
      const Indices down = Repeat(5, pattern.first, pattern.second, rows);
      const Sampled top_down =
          Sample(Cropping({5, 7, 0, 0}, location, ratio, 3, 100, 70), 100, 70, rows, columns);
      EXPECT_EQ(top_down.rows, down) << ratio;
      EXPECT_EQ(top_down.columns, expected_columns) << ratio;
      Indices up;
      std::ranges::transform(down, std::back_inserter(up), [](int row) { return 99 - row; });
      const Sampled flipped =
          Sample(Cropping({5, 7, 0, 0}, location, ratio, -1, 100, 70), 100, 70, rows, columns);
      EXPECT_EQ(flipped.rows, up) << ratio;
      EXPECT_EQ(flipped.columns, expected_columns) << ratio;
    }
  }
}

TEST(Cropping, ReadsNothingBeyondTheSourceArea) {
  // The default zooms, with the source area ending at the last byte of the image.
  const std::pair<std::uint32_t, std::pair<int, int>> areas[] = {
      {0, {140, 220}}, {2, {112, 176}}, {4, {84, 132}}, {5, {70, 110}},
      {6, {56, 88}},   {7, {42, 66}},   {8, {28, 44}}};
  for (const auto& [ratio, area] : areas) {
    const Rectangle location = {0, 0, 140, 220};
    const Crop crop = Cropping({0, 0, 0, 0}, location, ratio, 0, area.first, area.second);
    const Sampled sampled = Sample(crop, area.first, area.second, 140, 220);
    EXPECT_EQ(sampled.rows.back(), area.first - 1);
    EXPECT_EQ(sampled.columns.back(), area.second - 1);
  }
}

TEST(Cropping, UnhandledRatiosAndEmptyOutputsWriteNothing) {
  const std::vector<std::uint8_t> input(100 * 100, 1);
  std::vector<std::uint8_t> output(64, 77);
  const std::uint32_t source[] = {0, 0, 8, 8};
  const std::uint32_t location[] = {5, 5, 13, 13};
  for (const std::uint32_t ratio : {1U, 3U, 9U, 10U, 100U, 0xFFFFFFFFU}) {
    Image_Cropping_(input.data(), output.data(), source, location, ratio, 0, 100, 100);
  }
  for (const std::uint32_t ratio : {1U, 3U, 5U, 7U, 9U, 10U, 100U, 0xFFFFFFFEU}) {
    Image_Original_Cropping_(1920, 1080, input.data(), output.data(), source, location, ratio, 0, 1080, 1920);
    Image_Original_Cropping_(1280, 720, input.data(), output.data(), source, location, ratio, 0, 720, 1280);
  }
  const std::uint32_t no_rows[] = {5, 5, 5, 45};
  const std::uint32_t no_columns[] = {5, 5, 45, 5};
  for (const std::uint32_t ratio : {0U, 2U, 4U, 6U, 8U}) {
    for (const std::uint32_t* empty : {no_rows, no_columns}) {
      Image_Cropping_(input.data(), output.data(), source, empty, ratio, 0, 100, 100);
      Image_Original_Cropping_(1280, 720, input.data(), output.data(), source, empty, ratio, -1, 720, 1280);
    }
  }
  Image_Cropping_(nullptr, output.data(), source, location, 0, 0, 100, 100);
  Image_Cropping_(input.data(), nullptr, source, location, 0, 0, 100, 100);
  Image_Cropping_(input.data(), output.data(), nullptr, location, 0, 0, 100, 100);
  Image_Cropping_(input.data(), output.data(), source, nullptr, 0, 0, 100, 100);
  Image_Original_Cropping_(1280, 720, nullptr, output.data(), source, location, 0, 0, 720, 1280);
  Image_Original_Cropping_(1280, 720, input.data(), nullptr, source, location, 0, 0, 720, 1280);
  Image_Original_Cropping_(1280, 720, input.data(), output.data(), nullptr, location, 0, 0, 720, 1280);
  Image_Original_Cropping_(1280, 720, input.data(), output.data(), source, nullptr, 0, 0, 720, 1280);
  for (const auto subsample : {Image_Subsampling_2_, Image_Subsampling_3_}) {
    subsample(nullptr, output.data(), 8, 8);
    subsample(input.data(), nullptr, 8, 8);
    subsample(input.data(), output.data(), 0, 8);
    subsample(input.data(), output.data(), 8, 0);
  }
  EXPECT_EQ(output, std::vector<std::uint8_t>(64, 77));
}

struct OriginalCase {
  std::uint32_t width, ratio;
  int flip;
  Indices rows, columns;
};

TEST(OriginalCropping, EveryRatioSamplesItsCentredPart) {
  // A region of 24 × 40 at row 10, column 20 of the working frame; the first source rows and columns.
  const OriginalCase cases[] = {
      {1280,
       0,
       0,
       {15, 17, 18, 19, 21, 22, 24, 26, 27, 28, 30, 31},
       {32, 34, 36, 38, 40, 41, 42, 44, 46, 47, 48, 50}},
      {1280, 0, -1, {704, 702, 701, 700, 698, 697, 695}, {32, 34, 36}},
      {1280, 2, 0, {19, 20, 21, 23, 24, 25, 26}, {36, 38, 40, 42, 43, 44, 45, 46, 48, 49, 50}},
      {1280, 4, 0, {23, 24, 25, 26, 27, 27, 28}, {44, 45, 46}},
      {1280, 6, 5, {27, 27, 28, 28}, {52, 52, 53, 53, 54, 55, 56, 56, 57, 57, 58, 58}},
      {1280, 8, 0, {29, 29, 29, 30}, {58, 58, 58, 59, 59, 59, 60, 60, 60, 60, 61}},
      {1920, 0, 0, {22, 24, 26, 28, 31, 33, 35, 37, 40}, {48, 50, 53, 55, 58, 60, 63, 65}},
      {1920, 2, 0, {28, 30, 32, 34, 36, 38, 40, 42, 43, 45, 47, 49, 49, 51}, {58, 60, 62}},
      {1920, 4, 0, {34, 36, 38, 38, 40, 42, 44, 44, 45, 47, 49, 49, 49, 51}, {68, 70, 71, 73}},
      {1920, 6, 0, {37, 39, 39, 41, 42, 42, 43}, {78, 79, 80}},
      {1920,
       8,
       0,
       {43, 43, 45, 45, 46, 46, 46, 46, 48, 48, 49, 49, 49, 49},
       {88, 88, 88, 88, 90, 90, 90, 90}},
      {1920, 8, -7, {1036, 1036, 1034, 1034, 1033}, {88, 88, 88, 88, 90}},
  };
  const Rectangle region = {10, 20, 34, 60};
  for (const OriginalCase& c : cases) {
    const std::uint32_t height = c.width == 1920 ? 1080 : 720;
    const auto crop = [&](const std::uint8_t* input, std::uint8_t* output) {
      Image_Original_Cropping_(c.width, height, input, output, region.data(), region.data(), c.ratio, c.flip,
                               77, c.width);
    };
    const Sampled sampled = Sample(crop, static_cast<int>(height), static_cast<int>(c.width), 24, 40);
    EXPECT_EQ(First(sampled.rows, c.rows.size()), c.rows) << c.width << " ratio " << c.ratio;
    EXPECT_EQ(First(sampled.columns, c.columns.size()), c.columns) << c.width << " ratio " << c.ratio;
  }
}

TEST(OriginalCropping, OddSizesAndWiderRows) {
  // Rows of 1300 bytes; the first pixel is still found with rows of 1280. 25 × 43 cuts groups short.
  test::Fenced output(25 * 43);
  std::vector<std::uint8_t> input(1300 * 100);
  test::Random random(test::Seed(4));
  random.Fill(input);
  const Rectangle source = {7, 13, 0, 0};
  const Rectangle location = {40, 100, 65, 143};
  Image_Original_Cropping_(1280, 720, input.data(), output.Data(), source.data(), location.data(), 0, 0, 720,
                           1300);
  const Indices rows = Repeat(0, 9, {0, 2, 3, 4, 6, 7}, 25);
  const Indices columns = Repeat(0, 16, {0, 2, 4, 6, 8, 9, 10, 12, 14, 15}, 43);
  for (std::size_t r = 0; r < 25; ++r) {
    for (std::size_t c = 0; c < 43; ++c) {
      ASSERT_EQ(output.Data()[r * 43 + c],
                input[10 * 1280 + 20 + 1300 * static_cast<std::size_t>(rows[r]) + columns[c]]);
    }
  }
}

TEST(Subsampling, KeepsEverySecondOrThirdPixelInPlaceToo) {
  using Routine = void (*)(const std::uint8_t*, std::uint8_t*, std::uint32_t, std::uint32_t);
  for (const auto& [k, routine] :
       {std::pair<std::size_t, Routine>{2, Image_Subsampling_2_}, {3, Image_Subsampling_3_}}) {
    for (const auto& [rows, columns] : {std::pair{3U, 5U}, {2U, 3U}, {7U, 133U}, {40U, 64U}}) {
      // The input ends with the last pixel that is kept.
      test::Fenced input(k * (rows - 1) * k * columns + k * (columns - 1) + 1);
      test::Random random(test::Seed(columns));
      random.Fill(input.Bytes());
      std::vector<std::uint8_t> expected;
      for (std::size_t y = 0; y < rows; ++y) {
        for (std::size_t x = 0; x < columns; ++x)
          expected.push_back(input.Data()[k * y * k * columns + k * x]);
      }
      test::Fenced output(rows * columns);
      routine(input.Data(), output.Data(), rows, columns);
      EXPECT_TRUE(std::ranges::equal(output.Bytes(), expected)) << k << " " << columns;
      routine(input.Data(), input.Data(), rows, columns);
      EXPECT_TRUE(std::ranges::equal(input.Bytes().first(expected.size()), expected)) << k << " " << columns;
    }
  }
}

}  // namespace
