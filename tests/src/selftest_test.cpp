// selftest_test.cpp: the self-test notices wrong bits, whichever kernel gives them, and wrong traces.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "check.h"

namespace {

/// The plain forms, and beside them those of this processor with one kernel spoilt.
std::array<KernelTable, 2> Spoilt(void (*spoil)(KernelTable& table)) {
  std::array<KernelTable, 2> tables = {AvailableKernels().front(), AvailableKernels().back()};
  tables[1].Name = "spoilt";
  spoil(tables[1]);
  return tables;
}

TEST(Selftest, NoticesOneWrongBitOfAKernel) {
  EXPECT_EQ(selftest::CheckKernels(Spoilt([](KernelTable&) {}), 40), selftest::Findings{});
  const auto convert = Spoilt([](KernelTable& table) {
    table.Convert = [](const INTE_08* input, real_32* output, DATA_32 length) {
      AvailableKernels().front().Convert(input, output, length);
      if (length > 100) *reinterpret_cast<std::uint8_t*>(&output[100]) ^= 1;
    };
  });
  const auto match = Spoilt([](KernelTable& table) {
    table.MatchBlocks = [](const DATA_08* before, const DATA_08* after, inte_08* vectors, DATA_32 size,
                           DATA_32 rows, DATA_32 columns, DATA_32 width) {
      AvailableKernels().front().MatchBlocks(before, after, vectors, size, rows, columns, width);
      if (rows == 12) vectors[479] ^= 1;
    };
  });
  for (const auto& [tables, kernel] : {std::pair{convert, "Convert"}, std::pair{match, "MatchBlocks"}}) {
    const selftest::Findings findings = selftest::CheckKernels(tables, 40);
    ASSERT_EQ(findings.size(), 1U) << kernel;
    EXPECT_EQ(findings[0].find(std::string("spoilt ") + kernel + ": other bits than generic, "), 0U)
        << findings[0];
  }
}

TEST(Selftest, NoticesTracesThatDifferOrAreMissing) {
  const test::Origin objects = {&vel_stopngo, Classify_Feature_};
  const test::GoldenCase first = test::GoldenCases().front();
  const std::string right = first.Name() + "\t" + test::Trace(objects, first).line + "\n";
  const std::size_t one = test::GoldenCases().size();
  EXPECT_EQ(selftest::CheckTraces(objects, right, one), selftest::Findings{});
  std::string wrong = right;
  wrong[wrong.find('\t') + 3] ^= 1;
  EXPECT_EQ(selftest::CheckTraces(objects, wrong, one).size(), 1U);
  EXPECT_EQ(selftest::CheckTraces(objects, "", one).size(), 1U);
}

}  // namespace
