// utility_test.cpp: the crops, flip and mark that are there for the host.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "fenced.h"
#include "kernels/kernels.h"
#include "random.h"
#include "seed.h"
#include "vel_stopngo.h"

namespace {

struct Image {
  Image(std::uint32_t rows, std::uint32_t columns) : width(columns), memory(std::size_t{rows} * columns) {
    test::Random random(test::Seed(rows * 1000 + columns));
    random.Fill(memory.Bytes());
  }
  [[nodiscard]] std::uint8_t At(std::int64_t row, std::int64_t column) const {
    return memory.Data()[row * width + column];
  }
  std::uint32_t width;
  test::Fenced memory;
};

/// Source row of output row r: first + r × step.
struct Rows {
  int first, step;
};

using CropRoutine = void (*)(const std::uint8_t*, std::uint8_t*, const std::uint32_t*, std::int32_t,
                             std::uint32_t, std::uint32_t);

void ExpectCrop(CropRoutine crop, const std::vector<std::uint32_t>& location, int flip, int height, int width,
                int out_height, Rows rows, Rows columns) {
  const Image input(height, width);
  const auto out_width = static_cast<int>(location[3] - location[1]);
  test::Fenced output(static_cast<std::size_t>(out_height) * out_width);
  crop(input.memory.Data(), output.Data(), location.data(), flip, height, width);
  for (int r = 0; r < out_height; ++r) {
    for (int c = 0; c < out_width; ++c) {
      ASSERT_EQ(output.Data()[r * out_width + c],
                input.At(rows.first + r * rows.step, columns.first + c * columns.step))
          << "row " << r << ", column " << c;
    }
  }
}

TEST(Cropping2, LeavesOutEverySecondRow) {
  ExpectCrop(Image_Cropping_2_, {2, 4, 27, 36}, 0, 40, 50, 12, {2, 2}, {4, 1});
  ExpectCrop(Image_Cropping_2_, {3, 5, 23, 45}, 1, 60, 45, 10, {3, 2}, {5, 1});
  ExpectCrop(Image_Cropping_2_, {3, 5, 23, 45}, -1, 60, 45, 10, {56, -2}, {5, 1});
  // Down to the last byte of the image, up to its first row.
  ExpectCrop(Image_Cropping_2_, {0, 0, 41, 45}, 0, 39, 45, 20, {0, 2}, {0, 1});
  ExpectCrop(Image_Cropping_2_, {0, 0, 40, 45}, -1, 39, 45, 20, {38, -2}, {0, 1});
}

TEST(RegionOfInterest, DecimatesFromTheFullImage) {
  ExpectCrop(Image_ROI_2_, {1, 2, 10, 66}, 0, 90, 240, 9, {2, 2}, {4, 2});
  ExpectCrop(Image_ROI_2_, {1, 2, 10, 66}, -1, 90, 240, 9, {86, -2}, {4, 2});
  ExpectCrop(Image_ROI_3_, {4, 0, 29, 80}, 0, 90, 240, 25, {12, 3}, {0, 3});
  ExpectCrop(Image_ROI_3_, {4, 0, 29, 80}, -1, 90, 240, 25, {75, -3}, {0, 3});
  // Widths that are no multiple of 4, up to the last sampled byte.
  ExpectCrop(Image_ROI_2_, {0, 0, 5, 37}, 0, 9, 73, 5, {0, 2}, {0, 2});
  ExpectCrop(Image_ROI_3_, {0, 1, 4, 30}, -2, 12, 88, 4, {9, -3}, {3, 3});
}

TEST(Utilities, EmptyRectanglesAndNullPointersWriteNothing) {
  const std::vector<std::uint8_t> input(100, 1);
  std::vector<std::uint8_t> output(16, 77);
  const std::uint32_t full[] = {0, 0, 4, 4};
  const std::uint32_t no_rows[] = {3, 0, 3, 4};
  const std::uint32_t no_columns[] = {0, 3, 4, 3};
  for (const CropRoutine crop : {Image_Cropping_2_, Image_ROI_2_, Image_ROI_3_}) {
    crop(nullptr, output.data(), full, 0, 10, 10);
    crop(input.data(), nullptr, full, 0, 10, 10);
    crop(input.data(), output.data(), nullptr, 0, 10, 10);
    crop(input.data(), output.data(), no_rows, 0, 10, 10);
    crop(input.data(), output.data(), no_columns, 0, 10, 10);
  }
  Image_Marking_(output.data(), input.data(), no_rows, 4);
  Image_Marking_(output.data(), input.data(), no_columns, 4);
  Image_Marking_(output.data(), nullptr, full, 4);
  Image_Marking_(nullptr, input.data(), full, 4);
  Image_Marking_(output.data(), input.data(), nullptr, 4);
  Image_Flipping_(nullptr, output.data(), 4, 4);
  Image_Flipping_(output.data(), nullptr, 4, 4);
  EXPECT_EQ(output, std::vector<std::uint8_t>(16, 77));
}

TEST(Utilities, RowsWithoutPixelsCostNothing) {
  static int calls;
  calls = 0;
  KernelTable counting = AvailableKernels().back();
  counting.ExchangeRows = [](std::uint8_t*, std::uint8_t*, std::uint8_t*, std::uint32_t) { ++calls; };
  counting.MarkRows = [](std::uint8_t*, const std::uint8_t*, std::uint32_t, std::uint32_t, std::uint32_t) {
    ++calls;
  };
  counting.Resample = [](const std::uint8_t*, std::ptrdiff_t, const Pattern&, const Pattern&, std::uint8_t*,
                         std::uint32_t, std::uint32_t) { ++calls; };
  ForceKernels(&counting);
  constexpr std::uint32_t kMany = 0xFFFFFFFF;
  const std::uint8_t input = 1;
  std::uint8_t output = 2;
  const std::uint32_t no_columns[] = {0, 3, kMany, 3};
  Image_Flipping_(&output, &output, kMany, 0);
  Image_Marking_(&output, &input, no_columns, 0);
  Image_Subsampling_2_(&input, &output, kMany, 0);
  Image_Subsampling_3_(&input, &output, kMany, 0);
  Image_Cropping_(&input, &output, no_columns, no_columns, 0, 0, kMany, 0);
  Image_Original_Cropping_(1920, 1080, &input, &output, no_columns, no_columns, 0, 0, kMany, 0);
  for (const CropRoutine crop : {Image_Cropping_2_, Image_ROI_2_, Image_ROI_3_}) {
    crop(&input, &output, no_columns, 0, kMany, 0);
  }
  ForceKernels(nullptr);
  EXPECT_EQ(calls, 0);
}

TEST(Flipping, ExchangesRowsAndKeepsTheMiddle) {
  for (const auto& [rows, columns] : {std::pair{51U, 7U}, {50U, 33U}, {1U, 9U}, {0U, 9U}}) {
    const Image image(rows, columns);
    const std::vector<std::uint8_t> before(image.memory.Bytes().begin(), image.memory.Bytes().end());
    test::Fenced buffer(columns);
    Image_Flipping_(image.memory.Data(), buffer.Data(), rows, columns);
    for (std::size_t y = 0; y < rows; ++y) {
      const auto line = image.memory.Bytes().subspan(y * columns, columns);
      EXPECT_TRUE(
          std::equal(line.begin(), line.end(), before.begin() + static_cast<int>((rows - 1 - y) * columns)));
    }
  }
}

TEST(Marking, IsAnExclusiveOrInsideTheRectangle) {
  for (const std::uint32_t width : {1U, 3U, 4U, 37U, 64U}) {
    const Image image(20, 70);
    const Image mark(10, width);
    const std::vector<std::uint8_t> before(image.memory.Bytes().begin(), image.memory.Bytes().end());
    const std::uint32_t location[] = {10, 70 - width, 20, 70};
    Image_Marking_(image.memory.Data(), mark.memory.Data(), location, 70);
    for (std::uint32_t y = 0; y < 20; ++y) {
      for (std::uint32_t x = 0; x < 70; ++x) {
        const bool inside = y >= 10 && x >= 70 - width;
        const int expected = before[y * 70 + x] ^ (inside ? mark.At(y - 10, x - (70 - width)) : 0);
        ASSERT_EQ(image.At(y, x), expected) << y << " " << x;
      }
    }
    Image_Marking_(image.memory.Data(), mark.memory.Data(), location, 70);
    EXPECT_TRUE(std::ranges::equal(image.memory.Bytes(), before));
  }
}

TEST(Marking, MarkInsideTheImageIsTakenByteByByte) {
  for (int distance = -40; distance <= 40; ++distance) {
    Image image(3, 100);
    std::vector<std::uint8_t> expected(image.memory.Bytes().begin(), image.memory.Bytes().end());
    for (std::ptrdiff_t i = 140; i < 190; ++i) expected[i] ^= expected[i + distance];
    const std::uint32_t location[] = {1, 40, 2, 90};
    Image_Marking_(image.memory.Data(), image.memory.Data() + 140 + distance, location, 100);
    EXPECT_TRUE(std::ranges::equal(image.memory.Bytes(), expected)) << distance;
  }
}

}  // namespace
