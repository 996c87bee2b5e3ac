// parallel.cpp: independent pieces of work spread over threads.
#include "parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace stopngo {

void ForEachPiece(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& piece) {
  if (jobs == 0) jobs = std::max(1U, std::thread::hardware_concurrency());
  std::atomic<std::size_t> next = 0;
  std::mutex mutex;
  std::exception_ptr failure;
  const auto work = [&] {
    for (std::size_t index = next++; index < count; index = next++) {
      try {
        piece(index);
      } catch (...) {
        const std::lock_guard lock(mutex);
        if (!failure) failure = std::current_exception();
        next = count;
      }
    }
  };
  std::vector<std::thread> helpers;
  for (std::size_t i = 1; i < std::min<std::size_t>(jobs, count); i++) helpers.emplace_back(work);
  work();
  for (std::thread& helper : helpers) helper.join();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace stopngo
