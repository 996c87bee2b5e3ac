// progress.h: a progress bar on standard error, drawn only when that is a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace stopngo {

class Progress {
 public:
  /// total: how many steps there will be, where known.
  Progress(std::string title, std::optional<std::int64_t> total);
  ~Progress();  ///< clears the line
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  void Step();

 private:
  void Draw();

  std::string title_;
  std::optional<std::int64_t> total_;
  std::int64_t done_ = 0;
  bool terminal_;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point drawn_;
};

}  // namespace stopngo
