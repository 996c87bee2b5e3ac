// kernels_test.cpp: every form of every kernel against the plain one, on random calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "kernel_calls.h"
#include "seed.h"
#include "vel_stopngo.h"
#if defined(__aarch64__)
#include <sys/auxv.h>
#endif

namespace test {

/// What a test of one is called.
inline void PrintTo(const KernelCalls& calls, std::ostream* out) { *out << calls.name; }

}  // namespace test

namespace {

using test::Fenced;

// ---- The forms agree ----

constexpr int kRounds = 1000;

class Kernel : public testing::TestWithParam<test::KernelCalls> {};

TEST_P(Kernel, GivesThePlainFormsBitsAndTouchesNothingElse) {
  for (std::uint64_t round = 0; round < kRounds; ++round) {
    test::Random random(test::Seed(1) + round);
    const test::Call call = GetParam().draw(random);
    const test::Pixels expected = call.make(AvailableKernels().front(), Fenced::Side::kEnd);
    for (const KernelTable& table : AvailableKernels()) {
      for (const auto side : {Fenced::Side::kEnd, Fenced::Side::kStart}) {
        test::AtWork(std::string(table.Name) + " " + GetParam().name + ", " + call.what + ", fence at the " +
                         (side == Fenced::Side::kEnd ? "end" : "start"),
                     round);
        const test::Pixels given = call.make(table, side);
        const auto differs = std::ranges::mismatch(given, expected);
        ASSERT_TRUE(differs.in1 == given.end() && differs.in2 == expected.end())
            << "differs at byte " << differs.in1 - given.begin() << " of " << expected.size();
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, Kernel, testing::ValuesIn(test::AllKernelCalls()),
                         [](const auto& calls) { return std::string(calls.param.name); });

/// Windows of any weighted sum: all pixels alike, and some of them up to three steps brighter.
class Windows {
 public:
  static constexpr int kTotal = 159;
  using Window = std::array<std::uint8_t, 25>;

  Windows() {
    reached_[25][0] = true;
    for (int place = 24; place >= 0; --place) {
      for (int sum = 0; sum <= 3 * kTotal; ++sum) reached_[place][sum] = StepsAt(place, sum) >= 0;
    }
  }

  /// Nothing for the sums that no window has.
  [[nodiscard]] std::optional<Window> OfSum(int sum) const {
    const int base = std::clamp(sum / kTotal - 1, 0, 252);
    int left = sum - base * kTotal;
    if (!reached_[0][left]) return std::nullopt;
    Window window;
    for (int place = 0; place < 25; ++place) {
      const int steps = StepsAt(place, left);
      window[place] = static_cast<std::uint8_t>(base + steps);
      left -= steps * kMask[place];
    }
    return window;
  }

 private:
  static constexpr int kMask[25] = {2,  4, 5, 4, 2,  4, 9, 12, 9, 4, 5, 12, 15,
                                    12, 5, 4, 9, 12, 9, 4, 2,  4, 5, 4, 2};

  /// The steps of the pixel at place that leave a sum which those behind it have; -1 for none.
  [[nodiscard]] int StepsAt(int place, int sum) const {
    for (int steps = 0; steps <= 3; ++steps) {
      const int rest = sum - steps * kMask[place];
      if (rest >= 0 && reached_[place + 1][rest]) return steps;
    }
    return -1;
  }

  bool reached_[26][3 * kTotal + 1] = {};
};

TEST(Gaussian, DividesEverySumExactly) {
  constexpr int kWidth = 32;
  constexpr int kHeight = 24;
  constexpr int kLargest = Windows::kTotal * 255;
  const Windows windows;
  int sums = 0;
  for (int sum = 0; sum <= kLargest; ++sum) {
    const std::optional<Windows::Window> window = windows.OfSum(sum);
    if (!window) continue;
    ++sums;
    for (const KernelTable& table : AvailableKernels()) {
      std::vector<std::uint8_t> image(kWidth * kHeight, (*window)[0]);
      for (int i = 0; i < 25; ++i) image[i / 5 * kWidth + i % 5] = (*window)[i];
      table.GaussianInPlace(image.data(), 2, kWidth, kHeight);
      ASSERT_EQ(image[2 * kWidth + 2], sum / 1590 * 10) << table.Name << " sum " << sum;
    }
  }
  // No window has 1 or 3, nor what lacks 1 or 3 of the largest.
  EXPECT_EQ(sums, kLargest + 1 - 4);
}

// ---- The forms that run are those of this processor ----

std::vector<std::string> ExpectedTables() {
  std::vector<std::string> names = {"generic"};
#if defined(__x86_64__)
  if (__builtin_cpu_supports("sse4.1")) names.emplace_back("sse41");
  if (__builtin_cpu_supports("avx2")) names.emplace_back("avx2");
  if (__builtin_cpu_supports("avx512vnni")) names.emplace_back("avx512vnni");
#elif defined(__aarch64__)
  names.emplace_back("neon");
  if ((getauxval(AT_HWCAP) & HWCAP_ASIMDDP) != 0) names.emplace_back("neon_dotprod");
#endif
  return names;
}

TEST(Dispatch, OffersTheFormsOfThisProcessorFastestLast) {
  std::vector<std::string> names;
  for (const KernelTable& table : AvailableKernels()) names.emplace_back(table.Name);
  ASSERT_EQ(names.front(), "generic");
  if (names.size() == 1) GTEST_SKIP() << "the plain forms are all there is";
  EXPECT_EQ(names, ExpectedTables());
  // Every level has its own matching; a table wired to another's would pass every comparison.
  std::set<BlockMatch*> matchings;
  for (const KernelTable& table : AvailableKernels()) matchings.insert(table.MatchBlocks);
  EXPECT_EQ(matchings.size(), names.size());
}

TEST(Dispatch, RunsTheFormsThatWereForced) {
  EXPECT_EQ(&Kernels(), &AvailableKernels().back());
  static int calls;
  for (const KernelTable& table : AvailableKernels()) {
    ForceKernels(&table);
    EXPECT_EQ(&Kernels(), &table);
  }
  // Exported routines go by the table in force.
  KernelTable counting = AvailableKernels().back();
  counting.Convert = [](const std::int8_t*, float*, std::uint32_t) { ++calls; };
  ForceKernels(&counting);
  const std::int8_t in = 1;
  float out = 0;
  Classify_Conversion_(&in, &out, 1);
  EXPECT_EQ(calls, 1);
  ForceKernels(nullptr);
  EXPECT_EQ(&Kernels(), &AvailableKernels().back());
}

}  // namespace
