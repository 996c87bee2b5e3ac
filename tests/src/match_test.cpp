// match_test.cpp: block matching and the direction histogram.
#include "match.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "fenced.h"
#include "kernels/kernels.h"
#include "random.h"
#include "seed.h"
#include "vel_stopngo.h"

namespace {

using Vector = std::array<int, 2>;

/// Two fenced images of 220 × 140 with the default grid.
struct Pair {
  test::Fenced old_image{220 * 140};
  test::Fenced new_image{220 * 140};
  std::vector<std::int8_t> motion = std::vector<std::int8_t>(480, 99);

  void Match(std::uint32_t block_size = 10, std::uint32_t rows = 12, std::uint32_t columns = 20) {
    Block_Match_TSS_(old_image.Data(), new_image.Data(), motion.data(), block_size, rows, columns, 220);
  }
  [[nodiscard]] Vector At(int row, int column) const {
    const std::size_t entry = 2 * static_cast<std::size_t>(row * 20 + column);
    return {motion[entry], motion[entry + 1]};
  }
  /// The content of the old image, moved; a smooth texture, so that the search can follow it.
  void MoveTexture(int down, int right) {
    const auto texture = [](int y, int x) {
      const int wave = std::abs((x * 3 + y) % 64 - 32) * 3 + std::abs((y * 3 - x + 4000) % 56 - 28) * 4;
      return static_cast<std::uint8_t>(std::min(wave, 255));
    };
    for (int y = 0; y < 140; ++y) {
      for (int x = 0; x < 220; ++x) {
        old_image.Data()[y * 220 + x] = texture(y, x);
        new_image.Data()[y * 220 + x] = texture(y - down, x - right);
      }
    }
  }
};

TEST(BlockMatch, StillAndUniformFramesHaveNoMotion) {
  Pair pair;
  test::Random random(test::Seed(2));
  random.Fill(pair.old_image.Bytes());
  std::ranges::copy(pair.old_image.Bytes(), pair.new_image.Data());
  pair.Match();
  EXPECT_EQ(pair.motion, std::vector<std::int8_t>(480, 0));

  std::ranges::fill(pair.old_image.Bytes(), 10);
  std::ranges::fill(pair.new_image.Bytes(), 250);
  std::ranges::fill(pair.motion, 99);
  pair.Match();
  EXPECT_EQ(pair.motion, std::vector<std::int8_t>(480, 0));
}

TEST(BlockMatch, VectorsFollowTheContentVerticalFirst) {
  for (const Vector move : {Vector{3, -2}, Vector{-5, 6}, Vector{4, 4}, Vector{-1, 0}, Vector{0, 7}}) {
    Pair pair;
    pair.MoveTexture(move[0], move[1]);
    pair.Match();
    int found = 0;
    for (int block = 0; block < 240; ++block) found += pair.At(block / 20, block % 20) == move ? 1 : 0;
    EXPECT_GT(found, 120) << move[0] << "," << move[1];
  }
}

/// One bright pixel at the block's top-left corner in the new frame, and copies of it in the old one.
Vector VectorWithCopiesAt(std::initializer_list<Vector> offsets) {
  Pair pair;
  const int corner = 60 * 220 + 60;
  pair.new_image.Data()[corner] = 200;
  for (const Vector& offset : offsets) pair.old_image.Data()[corner + offset[0] * 220 + offset[1]] = 200;
  pair.Match();
  return pair.At(5, 5);
}

TEST(BlockMatch, TiesGoToTheCentreThenToTheEarlierNeighbour) {
  EXPECT_EQ(VectorWithCopiesAt({{-4, -4}}), (Vector{4, 4}));
  EXPECT_EQ(VectorWithCopiesAt({{4, 4}}), (Vector{-4, -4}));
  EXPECT_EQ(VectorWithCopiesAt({{0, 0}, {-4, 0}}), (Vector{0, 0}));
  // Both diagonal candidates match exactly; up-right is tried before down-left.
  EXPECT_EQ(VectorWithCopiesAt({{-4, 4}, {4, -4}}), (Vector{4, -4}));
}

TEST(BlockMatch, PatchesAreRoundedUpToRunsOfEightColumns) {
  // The block at (60, 60) of size 10 is compared over 16 columns: a new pixel at column 75 is found 4 to the
  // left; one at 76 is not seen, and the search only leaves the old pixel behind, by the first way out.
  for (const auto& [column, expected] : {std::pair{75, Vector{0, 4}}, std::pair{76, Vector{4, 4}}}) {
    Pair pair;
    pair.new_image.Data()[62 * 220 + column] = 200;
    pair.old_image.Data()[62 * 220 + column - 4] = 200;
    pair.Match();
    EXPECT_EQ(pair.At(5, 5), expected) << column;
  }
}

TEST(BlockMatch, EmptyGridsAndNullPointersWriteNothing) {
  Pair pair;
  const std::uint8_t* image = pair.old_image.Data();
  Block_Match_TSS_(nullptr, image, pair.motion.data(), 10, 12, 20, 220);
  Block_Match_TSS_(image, nullptr, pair.motion.data(), 10, 12, 20, 220);
  Block_Match_TSS_(image, image, nullptr, 10, 12, 20, 220);
  pair.Match(10, 0, 20);
  pair.Match(10, 12, 0);
  EXPECT_EQ(pair.motion, std::vector<std::int8_t>(480, 99));
  pair.Match(0, 12, 20);
  EXPECT_EQ(pair.motion, std::vector<std::int8_t>(480, 0));
}

TEST(BlockMatch, BlocksReadNothingBeyondTheImages) {
  // The grid of every block size from 8 on, at the largest and smallest remainders, ends inside the fences.
  for (std::uint32_t block_size = 8; block_size <= 40; ++block_size) {
    for (const std::uint32_t rest : {0U, block_size - 1}) {
      const std::uint32_t width = 4 * block_size + rest;
      const std::uint32_t height = 5 * block_size + rest;
      test::Fenced old_image(width * height);
      test::Fenced new_image(width * height);
      test::Random random(test::Seed(block_size));
      random.Fill(old_image.Bytes());
      random.Fill(new_image.Bytes());
      std::int8_t motion[2 * 2 * 3] = {};
      std::ranges::fill(motion, std::int8_t{99});
      Block_Match_TSS_(old_image.Data(), new_image.Data(), motion, block_size, 3, 2, width);
      for (const std::int8_t component : motion) EXPECT_LE(std::abs(component), 7);
    }
  }
}

/// Two fenced images of exactly the rows that a direct call takes them to have, in noise.
struct DirectCall {
  std::uint32_t block_size, rows, columns, width;

  /// The vectors, which those behind them bear out to be all that was written.
  [[nodiscard]] std::vector<std::int8_t> Vectors(test::Fenced::Side side) const {
    const std::size_t bytes = std::size_t{rows + 2} * block_size * width;
    const test::Fenced old_image(bytes, side);
    const test::Fenced new_image(bytes, side);
    test::Random random(test::Seed(bytes));
    random.Fill(old_image.Bytes());
    random.Fill(new_image.Bytes());
    const std::uint8_t nothing = 0;  // an empty image is none to Fenced
    const std::size_t count = std::size_t{2} * rows * columns;
    std::vector<std::int8_t> motion(count + 2, 99);
    Block_Match_TSS_(bytes > 0 ? old_image.Data() : &nothing, bytes > 0 ? new_image.Data() : &nothing,
                     motion.data(), block_size, rows, columns, width);
    EXPECT_EQ(motion[count], 99);
    EXPECT_EQ(motion[count + 1], 99);
    motion.resize(count);
    return motion;
  }
};

bool AllZero(const std::vector<std::int8_t>& motion) {
  return std::ranges::all_of(motion, [](int component) { return component == 0; });
}

TEST(BlockMatch, ASearchThatCouldLeaveTheImagesReadsNothingAndGivesZeros) {
  for (const KernelTable& table : AvailableKernels()) {
    ForceKernels(&table);
    for (std::uint32_t size = 1; size <= 40; ++size) {
      for (const std::uint32_t rest : {0U, 1U, 2U, size - 1}) {
        SCOPED_TRACE(std::string(table.Name) + ", blocks of " + std::to_string(size) + ", rest " +
                     std::to_string(rest));
        // At least four blocks: in noise they do not all stay where they are by chance.
        const DirectCall call{size, 2 + rest % 2, 2 + rest % 3, (4 + rest % 3) * size + rest};
        for (const auto side : {test::Fenced::Side::kStart, test::Fenced::Side::kEnd}) {
          const std::vector<std::int8_t> motion = call.Vectors(side);
          // Blocks of 7 with a pixel to spare are the smallest whose margin holds the reach.
          const bool inside = size >= 8 || (size == 7 && rest > 0);
          EXPECT_EQ(AllZero(motion), !inside);
        }
      }
    }
    // Rows shorter than the grid: linear offsets decide, and nothing lies outside.
    for (std::uint32_t width = 0; width < 60; ++width) {
      for (const std::uint32_t size : {7U, 8U, 10U, 16U, 33U}) {
        const DirectCall call{size, 2, 3, width};
        EXPECT_EQ(call.Vectors(test::Fenced::Side::kStart), call.Vectors(test::Fenced::Side::kEnd));
      }
    }
    EXPECT_FALSE(AllZero(DirectCall{10, 2, 3, 40}.Vectors(test::Fenced::Side::kEnd)));
    EXPECT_TRUE(AllZero(DirectCall{10, 2, 3, 6}.Vectors(test::Fenced::Side::kEnd)));
  }
  ForceKernels(nullptr);
  // Sizes whose products wrap; one block, so that there is room for its vector.
  for (const std::uint32_t width : {0x80000000U, 0xFFFFFFFFU}) {
    for (const std::uint32_t size : {1U, 6U, 0xFFFFFFFFU}) {
      const std::uint8_t nothing = 0;
      std::int8_t motion[2] = {99, 99};
      Block_Match_TSS_(&nothing, &nothing, motion, size, 1, 1, width);
      EXPECT_EQ(motion[0] | motion[1], 0) << size << " " << width;
    }
  }
}

// The two images need not be of one size: settings may shrink the region between the frames that they are made for.
TEST(BlockMatch, EachImageIsAskedForWhatIsReadOfIt) {
  const auto fits = [](std::uint64_t old, std::uint64_t now) {
    return SearchStaysInside({old, now}, 10, 12, 20, 220);
  };
  constexpr std::uint64_t kPatch = 120 * 220 + 200 + 9 * 220 + 16;  // the last block's
  constexpr std::uint64_t kReach = 7 * 220 + 7;
  EXPECT_TRUE(fits(kPatch + kReach, kPatch));
  EXPECT_FALSE(fits(kPatch + kReach - 1, kPatch));
  EXPECT_FALSE(fits(kPatch + kReach, kPatch - 1));
}

TEST(Histogram, SumsMagnitudesByDirectionAndCell) {
  std::vector<std::int8_t> vectors(24 * 3 * 4 + 4 * 4 * 2, 0);  // 10 block rows of 16: 3 × 4 cells and a rest
  const auto set = [&](int row, int column, int down, int right) {
    vectors[2 * static_cast<std::size_t>(row * 16 + column)] = static_cast<std::int8_t>(down);
    vectors[2 * static_cast<std::size_t>(row * 16 + column) + 1] = static_cast<std::int8_t>(right);
  };
  for (int i = 0; i < 12; ++i) set(i / 4, i % 4, -7, 7);
  set(0, 4, 3, -2);
  set(3, 8, 2, 0);
  set(5, 11, -2, 0);
  for (int column = 0; column < 16; ++column) set(9, column, 7, 7);
  std::vector<std::int8_t> chunk(4 * 3 * 4 + 4, 55);
  Block_Local_Histogram_(vectors.data(), chunk.data(), 3, 4);
  std::vector<std::int8_t> expected(4 * 3 * 4, 0);
  expected[1] = expected[2] = 84;
  expected[4] = 3;
  expected[7] = 2;
  expected[16 + 8] = expected[16 + 10] = 2;
  expected.insert(expected.end(), 4, 55);
  EXPECT_EQ(chunk, expected);
  Block_Local_Histogram_(nullptr, chunk.data(), 3, 4);
  Block_Local_Histogram_(vectors.data(), nullptr, 3, 4);
  Block_Local_Histogram_(vectors.data(), chunk.data(), 0, 4);
  Block_Local_Histogram_(vectors.data(), chunk.data(), 3, 0);
  EXPECT_EQ(chunk, expected);
}

}  // namespace
