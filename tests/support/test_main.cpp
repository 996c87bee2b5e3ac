// test_main.cpp: the main program of the tests: whatever fails or faults says how its draws are repeated.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "seed.h"

namespace {

/// The message that would be printed now; empty when the test has drawn nothing.
std::string message;
bool told = false;

std::uint64_t FirstSeed() {
  const char* given = std::getenv("STOPNGO_SEED");
  return given != nullptr ? std::strtoull(given, nullptr, 0) : 0;
}

void Prepare(const std::string& what, std::uint64_t round) {
  message = (what.empty() ? "" : "at " + what + "\n") +
            "repeat the draws with STOPNGO_SEED=" + std::to_string(FirstSeed() + round) + "\n";
}

class SeedListener : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& /*info*/) override {
    message.clear();
    told = false;
  }
  void OnTestPartResult(const testing::TestPartResult& result) override {
    if (!result.failed() || told) return;
    told = true;
    std::fputs(message.c_str(), stdout);
    std::fflush(stdout);
  }
};

constexpr int kFaults[] = {SIGSEGV, SIGBUS, SIGABRT};
struct sigaction previous[std::size(kFaults)];

/// Says what touched a page that it must not, and leaves the rest to whoever was asked before.
void OnFault(int /*signal*/) {
  const ssize_t written = write(STDERR_FILENO, message.data(), message.size());
  for (std::size_t i = 0; i < std::size(kFaults); ++i) sigaction(kFaults[i], &previous[i], nullptr);
  if (written < 0) std::_Exit(1);
}

}  // namespace

std::uint64_t test::Seed(std::uint64_t stream) {
  if (message.empty()) Prepare("", 0);
  return FirstSeed() + stream;
}

void test::AtWork(std::string what, std::uint64_t round) { Prepare(what, round); }

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new SeedListener);
  struct sigaction action {};
  action.sa_handler = OnFault;
  for (std::size_t i = 0; i < std::size(kFaults); ++i) sigaction(kFaults[i], &action, &previous[i]);
  return RUN_ALL_TESTS();
}
