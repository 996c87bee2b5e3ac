// parallel_test.cpp: work on several threads is done once each, and fails the same way on any number.
#include "base/parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace stopngo {
namespace {

TEST(InParallel, EveryPieceIsDoneOnce) {
  for (const int jobs : {-1, 0, 1, 3, 300}) {
    std::vector<std::atomic<int>> done(100);
    InParallel(done.size(), jobs, [&](std::size_t number) { done[number]++; });
    for (const auto& times : done) EXPECT_EQ(times, 1) << jobs << " jobs";
  }
  InParallel(0, 4, [](std::size_t) { FAIL() << "there is nothing to do"; });
}

TEST(InParallel, FirstFaultByNumberIsThrown) {
  for (const int jobs : {1, 2, 8}) {
    for (int repeat = 0; repeat < 20; repeat++) {
      std::atomic<std::size_t> begun = 0;
      try {
        InParallel(1000, jobs, [&](std::size_t number) {
          begun++;
          if (number == 17 || number == 18 || number > 500) throw std::runtime_error(std::to_string(number));
        });
        ADD_FAILURE() << "nothing was thrown";
      } catch (const std::runtime_error& fault) {
        EXPECT_STREQ(fault.what(), "17") << jobs << " jobs";
      }
      EXPECT_LT(begun, 1000U) << "no more is begun after a fault";
    }
  }
}

}  // namespace
}  // namespace stopngo
