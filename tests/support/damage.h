// damage.h: files that were damaged or made up are read or refused, and nothing else.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <string_view>

#include "host/common/failure.h"
#include "support/random.h"
#include "support/seed.h"
#include "support/temporary_folder.h"

namespace stopngo::test {

/// What tends to hurt: signs, ends, numbers past every type, bytes that are no text.
inline constexpr std::string_view kTokens[] = {"",  "-", "0",  "-1",   "4294967296", "18446744073709551616",
                                               ",", ":", "\t", "\n",   "1e999",      "nan",
                                               "{", "]", "\"", "\xff", "W99999999",  "H99999999"};

/// A few damages: bytes changed, stretches removed, doubled or replaced.
inline std::string Damaged(std::string text, ::test::Random& random) {
  for (std::uint32_t times = 1 + random.Below(3); times > 0 && !text.empty(); times--) {
    const std::size_t at = random.Below(static_cast<std::uint32_t>(text.size()));
    const std::size_t length = random.Below(12);
    switch (random.Below(5)) {
      case 0:
        text[at] = static_cast<char>(random.Below(256));
        break;
      case 1:
        text.erase(at, length);
        break;
      case 2:
        text.insert(at, text.substr(at, length));
        break;
      case 3:
        text.resize(at);
        break;
      default:
        text.replace(at, length, kTokens[random.Below(std::size(kTokens))]);
    }
  }
  return text;
}

/// Reads damaged files of a name; some have to be refused, and refusals have to name the file.
inline void ReadDamaged(const TemporaryFolder& folder, std::string_view name, const std::string& intact,
                        int rounds, const std::function<void(const std::string& path)>& read) {
  ::test::Random random(::test::Seed(17));
  int refused = 0;
  for (int i = 0; i < rounds; i++) {
    const std::string text = Damaged(intact, random);
    const std::string path = folder.File(name, text);
    try {
      read(path);
    } catch (const Failure& failure) {
      refused++;
      EXPECT_NE(std::string(failure.what()).find(path), std::string::npos) << failure.what();
    } catch (const std::exception& other) {
      ADD_FAILURE() << other.what() << " of " << testing::PrintToString(text);
    }
  }
  EXPECT_GT(refused, rounds / 10);
}

}  // namespace stopngo::test
