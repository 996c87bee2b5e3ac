// loss.h: what training makes small.
#pragma once

#include <cstddef>
#include <span>

namespace stopngo {

/// Of a perceptron's parameters, which are in the order of a weights file, and smooth in them.
class Loss {
 public:
  Loss();
  virtual ~Loss() = default;
  Loss(const Loss&) = delete;
  Loss& operator=(const Loss&) = delete;

  /// (inputs + 2) × hidden nodes + 1.
  [[nodiscard]] virtual std::size_t Parameters() const = 0;
  /// gradient: as many numbers as parameters, or none. The same bits for any number of threads.
  virtual double Evaluate(std::span<const double> parameters, std::span<double> gradient) const = 0;
};

}  // namespace stopngo
