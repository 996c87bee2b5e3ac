// heap.cpp: the heap that the module under test allocates from. The linker sends calloc and free here.
#include "heap.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>

#include "fenced.h"

extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* block);
void* __wrap_calloc(std::size_t count, std::size_t size);
void __wrap_free(void* block);
}

namespace test {
namespace {

constexpr std::size_t kAlignment = alignof(std::max_align_t);

thread_local std::optional<HeapRule::Kind> rule;
thread_local int fail_nth = 0;
thread_local int allocations = 0;

std::map<void*, std::unique_ptr<Fenced>>& FencedBlocks() {
  thread_local std::map<void*, std::unique_ptr<Fenced>> blocks;
  return blocks;
}

void* FencedBlock(std::size_t size) {
  const std::size_t aligned = (size + kAlignment - 1) / kAlignment * kAlignment;
  auto memory = std::make_unique<Fenced>(aligned, Fenced::Side::kEnd, Fenced::Then::kUnmapped);
  if (!memory->Mapped()) return nullptr;
  void* block = memory->Data();
  FencedBlocks()[block] = std::move(memory);
  return block;
}

}  // namespace

HeapRule::HeapRule(Kind kind, int n) {
  allocations = 0;
  fail_nth = n;
  rule = kind;
}

HeapRule::~HeapRule() { rule.reset(); }

int HeapRule::Allocations() { return allocations; }

}  // namespace test

void* __wrap_calloc(std::size_t count, std::size_t size) {
  using test::HeapRule;
  if (!test::rule) return __real_calloc(count, size);
  ++test::allocations;
  if (*test::rule == HeapRule::Kind::kFenced) return test::FencedBlock(count * size);
  return test::allocations == test::fail_nth ? nullptr : __real_calloc(count, size);
}

void __wrap_free(void* block) {
  if (block == nullptr) return;
  auto& fenced = test::FencedBlocks();
  if (!fenced.empty() && fenced.erase(block) != 0) return;
  __real_free(block);
}
