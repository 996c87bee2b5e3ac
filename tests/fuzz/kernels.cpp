// kernels.cpp: fuzz target: any call of any kernel, in each form that this processor runs, against the plain form.
//
// Input: a byte each for kernel, form and side of the fence, one for the noise in pictures; the rest is what the call
// is drawn by.
#include <cstdint>
#include <span>
#include <string>

#include "fenced.h"
#include "input.h"
#include "kernel_calls.h"
#include "random.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::span<const test::KernelCalls> kernels = test::AllKernelCalls();
  const test::KernelCalls& kernel = kernels[input.Below(kernels.size())];
  const std::span<const KernelTable> tables = AvailableKernels();
  const KernelTable& table = tables[input.Below(tables.size())];
  const auto side = input.Below(2) == 0 ? test::Fenced::Side::kEnd : test::Fenced::Side::kStart;
  const auto noise = input.Take<std::uint8_t>();
  const auto* const script = reinterpret_cast<const std::uint8_t*>(input.Rest().data());
  test::Random random(noise, {script, input.Rest().size()});

  const test::Call call = kernel.draw(random);
  const test::Pixels expected = call.make(tables.front(), side);
  const test::Pixels given = call.make(table, side);
  fuzz::Expect(given == expected,
               std::string(table.Name) + " " + kernel.name + " differs from the plain form: " + call.what);
  return 0;
}
