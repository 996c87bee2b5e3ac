// filter_sort.cpp: the byte sort of the median, a quicksort without recursion.
#include <cstdio>
#include <utility>

#include "bitclip.h"
#include "vel_stopngo.h"

namespace {

/// Two entries for each range that waits. The smaller side of a partition is worked first, so a range at
/// least halves with every pair: 25 pairs serve arrays of many millions.
constexpr int kStack = 50;
/// Ranges that are this much shorter than their first partition would pay for are sorted by insertion.
constexpr int kInsertion = 7;

/// A sort in the making. Positions count from 1.
class Sort {
 public:
  explicit Sort(data_08* pix_arr) : Pixels_(pix_arr) {}

  data_08& At(int Position) { return Pixels_[Position - 1]; }

  void InsertionSort(int l, int ir) {
    for (int j = l + 1; j <= ir; ++j) {
      const data_08 a = At(j);
      int i = j - 1;
      for (; i >= 1 && At(i) > a; --i) At(i + 1) = At(i);
      At(i + 1) = a;
    }
  }

  /// Partitions l … ir around the median of its first, middle and last element; returns where the scans
  /// from both ends met: {first of the upper side, the partition value's place}.
  std::pair<int, int> Partition(int l, int ir) {
    std::swap(At(l + (ir - l) / 2), At(l + 1));
    Order(l + 1, ir);
    Order(l, ir);
    Order(l + 1, l);
    const data_08 a = At(l);
    int i = l + 1;
    int j = ir;
    while (true) {
      do ++i;
      while (At(i) < a);
      do --j;
      while (At(j) > a);
      if (j < i) break;
      std::swap(At(i), At(j));
    }
    At(l) = At(j);
    At(j) = a;
    return {i, j};
  }

 private:
  void Order(int Low, int High) {
    if (At(Low) > At(High)) std::swap(At(Low), At(High));
  }

  data_08* Pixels_;
};

}  // namespace

extern "C" void pixel_qsort(data_08* pix_arr, int npix) {
  if (pix_arr == nullptr || npix <= 1) return;
  Sort Sorting(pix_arr);
  int i_stack[kStack] = {};
  int j_stack = 0;
  int l = 1;
  int ir = npix;
  while (true) {
    if (ir - l < kInsertion) {
      Sorting.InsertionSort(l, ir);
      if (j_stack == 0) return;
      ir = i_stack[j_stack - 1];
      l = i_stack[j_stack - 2];
      j_stack -= 2;
      continue;
    }
    const auto [i, j] = Sorting.Partition(l, ir);
    j_stack += 2;
    // LCOV_EXCL_START: takes an array of 230 MB that halves exactly, again and again
    if (j_stack > kStack) {
      std::printf("pixel_qsort - stack too small in pixel_qsort: aborting");
      return;
    }
    // LCOV_EXCL_STOP
    // The larger side waits.
    const bool UpperWaits = ir - i + 1 >= j - l;
    i_stack[j_stack - 1] = UpperWaits ? ir : j - 1;
    i_stack[j_stack - 2] = UpperWaits ? i : l;
    if (UpperWaits) {
      ir = j - 1;
    } else {
      l = i;
    }
  }
}
