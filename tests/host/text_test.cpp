// text_test.cpp: text of others, as a terminal may have it.
#include "host/common/text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace stopngo::test {
namespace {

TEST(Text, OnlyWhatSteersATerminalIsEscaped) {
  for (const char* const fine : {"", "drives/rain 1.mp4", "Straße/日本語/🚗.mkv", "a\\u001b'\"%s"}) {
    EXPECT_EQ(Escaped(fine), fine);
  }
  for (const auto& [text, escaped] : {std::pair<std::string, std::string>{"a\033[31mb", "a\\u001b[31mb"},
                                      {std::string("\0\n\r\t\x7f", 5), "\\u0000\\u000a\\u000d\\u0009\\u007f"},
                                      {"\u009b2J", "\\u009b2J"},
                                      {"gpj.\u202eexe", "gpj.\\u202eexe"},
                                      {"a\u2028b", "a\\u2028b"}}) {
    EXPECT_EQ(Escaped(text), escaped);
  }
}

TEST(Text, BytesThatAreNoUtf8AreEscapedOneByOne) {
  for (const auto& [text, escaped] :
       {std::pair<std::string, std::string>{"a\xff"
                                            "b",
                                            "a\\xffb"},
        {"\xc3", "\\xc3"},  // cut short
        {"\xe2\x82"
         "a",
         "\\xe2\\x82a"},
        {"\xc0\x9b", "\\xc0\\x9b"},  // a longer form than it takes
        {"\xe0\x82\x9b", "\\xe0\\x82\\x9b"},
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},           // half of a pair of UTF-16
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},  // past the last code point
        {"\x9b"
         "A\xc3\xa4",
         "\\x9bA\u00e4"}}) {
    EXPECT_EQ(Escaped(text), escaped);
  }
}

}  // namespace
}  // namespace stopngo::test
