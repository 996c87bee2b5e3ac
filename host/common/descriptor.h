// descriptor.h: an open file, closed with the object.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace stopngo {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int Number() const { return number_; }
  /// Gives 0, or an errno.
  int Close() {
    const int number = std::exchange(number_, -1);
    return number < 0 || close(number) == 0 ? 0 : errno;
  }

 private:
  int number_;  ///< -1: none
};

}  // namespace stopngo
