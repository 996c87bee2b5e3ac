// text.cpp: text of others, fit for a terminal and for JSON.
#include "host/common/text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace stopngo {
namespace {

/// The code points from first to last.
struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

// Of the Unicode Standard: control characters, ends of lines and paragraphs, and what changes the direction of
// writing (UAX #9).
constexpr std::array kUnprintable{Range{0x00, 0x1f},     Range{0x7f, 0x9f},     Range{0x61c, 0x61c},
                                  Range{0x200e, 0x200f}, Range{0x2028, 0x202e}, Range{0x2066, 0x2069}};

/// How sequences of a length begin, and the least code point that needs one (RFC 3629).
struct Form {
  std::uint8_t mask;
  std::uint8_t lead;
  std::uint32_t least;
};
constexpr std::array kForms{Form{0x80, 0x00, 0}, Form{0xe0, 0xc0, 0x80}, Form{0xf0, 0xe0, 0x800},
                            Form{0xf8, 0xf0, 0x10000}};

struct Character {
  std::uint32_t code = 0;
  std::size_t length = 0;  ///< bytes; 0: the first one begins nothing
};

Character FirstOf(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  for (std::size_t more = 0; more < kForms.size(); ++more) {
    const Form& form = kForms.at(more);
    if ((byte(0) & form.mask) != form.lead) continue;
    if (more >= text.size()) return {};
    std::uint32_t code = byte(0) & ~std::uint32_t{form.mask};
    for (std::size_t i = 1; i <= more; ++i) {
      if ((byte(i) & 0xc0) != 0x80) return {};
      code = code << 6 | (byte(i) & 0x3fU);
    }
    const bool surrogate = code >= 0xd800 && code <= 0xdfff;
    return code < form.least || code > 0x10ffff || surrogate ? Character{} : Character{code, more + 1};
  }
  return {};
}

}  // namespace

std::string Escaped(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  while (!text.empty()) {
    const auto [code, length] = FirstOf(text);
    if (length == 0) {
      escaped += Print("\\x%02x", static_cast<unsigned>(static_cast<std::uint8_t>(text.front())));
    } else if (std::ranges::any_of(kUnprintable, [code = code](const Range& range) {
                 return code >= range.first && code <= range.last;
               })) {
      escaped += Print("\\u%04x", code);
    } else {
      escaped += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return escaped;
}

// Of RFC 3986: user and password stand between the slashes and the last @ before a path, a query or a fragment. FFmpeg's
// protocols take several addresses, one within or behind the other.
std::string WithoutPassword(std::string_view address) {
  constexpr std::string_view kSlashes = "://";
  std::string shown;
  for (;;) {
    const std::size_t slashes = address.find(kSlashes);
    if (slashes == std::string_view::npos) return shown.append(address);
    const std::size_t begin = slashes + kSlashes.size();
    shown += address.substr(0, begin);
    address.remove_prefix(begin);
    const std::size_t host = address.substr(0, address.find_first_of("/?#")).rfind('@');
    const std::size_t colon = address.find(':');
    if (host == std::string_view::npos || colon > host) continue;
    shown.append(address.substr(0, colon + 1)).append("***");
    address.remove_prefix(host);
  }
}

}  // namespace stopngo
