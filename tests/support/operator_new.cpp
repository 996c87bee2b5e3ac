// operator_new.cpp: the program's operator new.
#include "support/operator_new.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local long allocations = 0;
/// Allocations until one fails; below 0: none fails.
thread_local long allocations_left = -1;

void* Allocate(std::size_t size) {
  ++allocations;
  if (allocations_left >= 0 && allocations_left-- == 0) throw std::bad_alloc();
  void* const block = std::malloc(size > 0 ? size : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { std::free(block); }

namespace stopngo::test {

long Allocations() { return allocations; }

FailingAllocation::FailingAllocation(long n) { allocations_left = n; }
FailingAllocation::~FailingAllocation() { allocations_left = -1; }
bool FailingAllocation::Failed() { return allocations_left == -1; }

}  // namespace stopngo::test
