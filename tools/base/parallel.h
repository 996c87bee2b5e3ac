// parallel.h: independent pieces of work on several threads.
#pragma once

#include <cstddef>
#include <functional>

namespace stopngo {

/// Calls work(0) to work(count - 1), each once, on up to jobs threads, and returns when all are done.
/// When work throws, no more is begun, and the exception of the lowest number is thrown: the same
/// whatever the number of threads.
void InParallel(std::size_t count, int jobs, const std::function<void(std::size_t)>& work);

/// How many threads this machine runs at once.
int HardwareJobs();

}  // namespace stopngo
