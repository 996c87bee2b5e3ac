// resample_place.h: where the pixels of a resampling lie, worked out once a call for all instruction sets.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "bitclip.h"
#include "pattern.h"

// Each file that includes this has its own copies, compiled without any instruction set beyond the baseline.
namespace {

/// Vectors are taken in halves of 16 bytes, since byte shuffles reach no further.
constexpr int kHalf = 16;

/// The offsets in a source row at which the source bytes of the halves start.
template <int Halves>
struct SourcePlace {
  std::size_t Offset[Halves];
};

/// The source offsets of output columns.
class ColumnOffsets {
 public:
  explicit ColumnOffsets(const Pattern& Columns) : Columns_(Columns) {
    const int Count = Columns.Output - 1 + kHalf;
    for (int i = 0, k = 0, Group = 0; i < Count; ++i) {
      Offset_[i] = static_cast<std::uint16_t>(Group + Columns.Offset[k]);
      if (++k == Columns.Output) {
        k = 0;
        Group += Columns.Source;
      }
    }
    for (int i = 0; i < Columns.Output; ++i)
      Reach_ = std::max(Reach_, Offset_[i + kHalf - 1] - Offset_[i] + 1);
  }

  /// The bytes from the first to the last source pixel of half a vector, at most.
  [[nodiscard]] int Reach() const { return Reach_; }

  /// Picks the half vector from Column on out of Sources × 16 bytes of a row of which Length bytes may be
  /// read, and returns where these start: near the end of the row earlier, to end with its last byte.
  std::size_t Pick(std::size_t Column, std::size_t Sources, std::size_t Length, data_08* Picks) const {
    const auto Index = static_cast<DATA_32>(Column);
    const auto Begin = static_cast<std::size_t>(Columns_.At(Index));
    const std::size_t Start = std::min(Begin, Length - Sources * kHalf);
    const std::uint16_t* Offset = Offset_ + Index % Columns_.Output;
    const auto Shift = static_cast<int>(Begin - Start) - Offset[0];
    for (int i = 0; i < kHalf; ++i) Picks[i] = static_cast<data_08>(Offset[i] + Shift);
    return Start;
  }

 private:
  const Pattern& Columns_;
  /// Of the first columns: half a vector from every place within a group.
  std::uint16_t Offset_[sizeof Columns_.Offset - 1 + kHalf];
  int Reach_ = 0;
};

/// The source rows of a group, each with the number of output rows that repeat it.
class RowRuns {
 public:
  struct Run {
    DATA_32 Rows;
    std::ptrdiff_t Step;  ///< bytes to the source row of the next run
    const Run* Next;      ///< after the last run of the group, its first
  };

  RowRuns(const Pattern& Rows, std::ptrdiff_t RowStep) : First_(Rows.Offset[0] * RowStep) {
    Run* Current = Run_;
    for (int k = 0; k < Rows.Output; ++Current) {
      const int Offset = Rows.Offset[k];
      const int Begin = k;
      while (k < Rows.Output && Rows.Offset[k] == Offset) ++k;
      const bool Ends = k == Rows.Output;
      const int Next = Ends ? Rows.Source + Rows.Offset[0] : Rows.Offset[k];
      *Current = {static_cast<DATA_32>(k - Begin), (Next - Offset) * RowStep, Ends ? Run_ : Current + 1};
    }
  }
  RowRuns(const RowRuns&) = delete;
  RowRuns& operator=(const RowRuns&) = delete;

  /// The bytes to the first source row.
  [[nodiscard]] std::ptrdiff_t First() const { return First_; }
  [[nodiscard]] const Run* Begin() const { return Run_; }

 private:
  std::ptrdiff_t First_;
  Run Run_[sizeof Pattern::Offset];
};

/// The source rows of output rows, of which there is at least one, one after the other.
class RowWalk {
 public:
  RowWalk(const data_08* Input, const RowRuns& Runs, DATA_32 Rows)
      : Run_(Runs.Begin()), Source_(Input + Runs.First()), Repeats_(Run_->Rows), Left_(Rows) {}

  [[nodiscard]] const data_08* Source() const { return Source_; }
  /// The bytes to the source row of the next run; 0 in the last output row, after which there may be none.
  [[nodiscard]] std::ptrdiff_t Ahead() const { return Left_ > 1 ? Run_->Step : 0; }

  /// Goes to the next output row; false when there is none.
  bool Advance() {
    if (--Left_ == 0) return false;
    if (--Repeats_ == 0) {
      Source_ += Run_->Step;
      Run_ = Run_->Next;
      Repeats_ = Run_->Rows;
    }
    return true;
  }

 private:
  const RowRuns::Run* Run_;
  const data_08* Source_;
  DATA_32 Repeats_;  ///< of the source row that are left, this one included
  DATA_32 Left_;     ///< output rows that are left, this one included
};

}  // namespace
