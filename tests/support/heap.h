// heap.h: the heap that the module under test allocates from.
#pragma once

namespace test {

/// While it lives, the allocations of this thread follow its rule.
class HeapRule {
 public:
  enum class Kind {
    kFailNth,  ///< the n-th allocation from now on, counted from 1, fails; the others succeed
    kFenced,   ///< blocks end at an unmapped page, up to the heap's alignment
  };
  explicit HeapRule(Kind kind, int n = 0);
  ~HeapRule();
  HeapRule(const HeapRule&) = delete;
  HeapRule& operator=(const HeapRule&) = delete;

  /// Allocations since the rule began.
  [[nodiscard]] static int Allocations();
};

}  // namespace test
