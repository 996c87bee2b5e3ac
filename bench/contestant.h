// contestant.h: one way to do a routine's work: ours, with the table in force, or a library's.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Contestant {
  std::string routine;  ///< what is done; peers have the routine's name
  std::string who;      ///< library, empty for ours
  /// Puts back what a call changes; not timed. Null where a call changes nothing.
  std::function<void()> prepare;
  std::function<void(int calls)> run;
};

/// Work in a loop that the compiler can neither shorten nor look behind.
template <typename Work>
std::function<void(int)> Repeat(Work work) {
  return [work](int calls) mutable {
    for (int i = 0; i < calls; ++i) {
      work();
      asm volatile("" ::: "memory");
    }
  };
}

/// The module's routines, in the order of the table that is printed.
std::vector<Contestant> Routines();

/// What a user would take instead; each list is there when its library is.
void AddCopyPeers(std::vector<Contestant>& peers);
void AddOpenCvPeers(std::vector<Contestant>& peers);
void AddLibyuvPeers(std::vector<Contestant>& peers);
void AddEigenPeers(std::vector<Contestant>& peers);
void AddCompositionPeers(std::vector<Contestant>& peers);

}  // namespace bench
