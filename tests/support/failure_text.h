// failure_text.h: what a call that fails says.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/common/failure.h"

namespace stopngo::test {

template <typename Call>
std::string FailureOf(Call call) {
  try {
    call();
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "no failure";
}

inline void ExpectWords(const std::string& text, const std::vector<std::string>& words) {
  for (const std::string& word : words) EXPECT_NE(text.find(word), std::string::npos) << text;
}

}  // namespace stopngo::test
