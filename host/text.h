// text.h: numbers as text, laid out as printf does.
#pragma once

#include <cstdio>
#include <string>

namespace stopngo {

template <typename... Values>
std::string Print(const char* format, Values... values) {
  std::string text(static_cast<std::size_t>(std::snprintf(nullptr, 0, format, values...)), '\0');
  std::snprintf(text.data(), text.size() + 1, format, values...);
  return text;
}

}  // namespace stopngo
