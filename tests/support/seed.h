// seed.h: where the draws of randomised tests start, and what they are at when one fails.
#pragma once

#include <cstdint>
#include <string>

namespace test {

/// The seed of a stream of draws: its number, moved on by $STOPNGO_SEED. When the test fails, the listener of
/// test_main tells the STOPNGO_SEED that draws the same again.
std::uint64_t Seed(std::uint64_t stream);

/// What the test is at, for when it fails or faults; forgotten when the test ends. Round: a test that takes
/// one seed after the other says which one this is, so that the same comes first when it is repeated.
void AtWork(std::string what, std::uint64_t round = 0);

}  // namespace test
