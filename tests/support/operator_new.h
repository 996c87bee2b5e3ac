// operator_new.h: what C++ code of a program allocates, counted and refused; for programs that operator_new.cpp is part of.
#pragma once

namespace stopngo::test {

/// Of this thread, since it began.
long Allocations();

/// While it lives, the n-th allocation of this thread from now on, counted from 0, fails.
class FailingAllocation {
 public:
  explicit FailingAllocation(long n);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  [[nodiscard]] static bool Failed();
};

}  // namespace stopngo::test
