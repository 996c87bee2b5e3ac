// chance.cpp: drawing in proportion to the size of what is drawn.
#include "scene/recipe/chance.h"

#include <cmath>

namespace stopngo {

double LogUniform(Random& random, double low, double high) {
  // Between its ends by repeated square roots: no logarithm gives the same bits everywhere. Twelve halvings
  // leave steps too small to notice.
  double share = random.Uniform(0, 1);
  double from = low;
  double to = high;
  for (int i = 0; i < 12; i++) {
    const double middle = std::sqrt(from * to);
    share *= 2;
    if (share < 1) {
      to = middle;
    } else {
      from = middle;
      share -= 1;
    }
  }
  return from + (to - from) * share;
}

}  // namespace stopngo
