// parallel_test.cpp: work on several threads is done once each, and fails the same way on any number.
#include "base/parallel.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
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

TEST(InParallel, WithoutThreadsTheWorkIsDoneAllTheSame) {
  pthread_attr_t usual;
  ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
  pthread_attr_t impossible;
  ASSERT_EQ(pthread_attr_init(&impossible), 0);
  // A stack of more than the address space has.
  ASSERT_EQ(pthread_attr_setstacksize(&impossible, std::size_t{1} << 50), 0);
  ASSERT_EQ(pthread_setattr_default_np(&impossible), 0);
  EXPECT_THROW(std::jthread([] {}), std::system_error);
  std::vector<int> done(100);
  InParallel(done.size(), 8, [&](std::size_t number) { done[number]++; });
  ASSERT_EQ(pthread_setattr_default_np(&usual), 0);
  EXPECT_EQ(done, std::vector<int>(100, 1));
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
