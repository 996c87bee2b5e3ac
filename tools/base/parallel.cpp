// parallel.cpp: independent pieces of work on several threads.
#include "base/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace stopngo {
namespace {

class Pool {
 public:
  Pool(std::size_t count, const std::function<void(std::size_t)>& work) : count_(count), work_(work) {}

  // Numbers are begun in order, so that everything below one that fails is done all the same.
  void Work() {
    while (!failed_) {
      const std::size_t number = next_++;
      if (number >= count_) return;
      try {
        work_(number);
      } catch (...) {
        Keep(number, std::current_exception());
      }
    }
  }

  void Rethrow() const {
    if (fault_) std::rethrow_exception(fault_);
  }

 private:
  void Keep(std::size_t number, std::exception_ptr fault) {
    const std::lock_guard lock(mutex_);
    if (!fault_ || number < fault_number_) {
      fault_ = std::move(fault);
      fault_number_ = number;
    }
    failed_ = true;
  }

  std::size_t count_;
  const std::function<void(std::size_t)>& work_;
  std::atomic<std::size_t> next_ = 0;
  std::atomic<bool> failed_ = false;
  std::mutex mutex_;
  std::exception_ptr fault_;
  std::size_t fault_number_ = 0;
};

}  // namespace

void InParallel(std::size_t count, int jobs, const std::function<void(std::size_t)>& work) {
  Pool pool(count, work);
  const std::size_t threads = std::min(count, static_cast<std::size_t>(std::max(1, jobs)));
  {
    std::vector<std::jthread> others;
    others.reserve(threads);
    try {
      for (std::size_t i = 1; i < threads; ++i) others.emplace_back([&pool] { pool.Work(); });
    } catch (const std::system_error&) {
      // The system has no more threads to give: those that run do all the work, and the results are the same.
    }
    pool.Work();
  }
  pool.Rethrow();
}

int HardwareJobs() { return std::max(1, static_cast<int>(std::thread::hardware_concurrency())); }

}  // namespace stopngo
