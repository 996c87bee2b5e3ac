// spelling.cpp: what somebody may have meant by a name that is not known.
#include "host/common/spelling.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

namespace stopngo {
namespace {

/// Signs to put in, take out, or put in another's place: the distance of Levenshtein, where two neighbours that
/// changed places count as one (optimal string alignment).
std::size_t Slips(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before.swap(last);
    last.swap(row);
  }
  return last.back();
}

}  // namespace

std::string MeantBy(std::string_view misspelt, std::span<const std::string> known) {
  constexpr std::size_t kLongest = 64;  // longer ones are no slips, and would take their time
  if (misspelt.size() > kLongest) return {};
  const std::string* nearest = nullptr;
  std::size_t fewest = 1 + std::max<std::size_t>(1, misspelt.size() / 3);
  for (const std::string& name : known) {
    const std::size_t slips = Slips(misspelt, name);
    if (slips >= fewest) continue;
    fewest = slips;
    nearest = &name;
  }
  return nearest == nullptr ? std::string() : "; is " + *nearest + " meant?";
}

}  // namespace stopngo
