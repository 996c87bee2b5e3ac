// bitclip.h: the scalar types, named by width.
//
// The upper-case aliases are the same types; the code uses them for settings and for what a routine
// only reads, the lower-case names for what it writes.
#pragma once

#include <cstdint>

using data_08 = std::uint8_t;
using data_32 = std::uint32_t;
using inte_08 = std::int8_t;
using inte_32 = std::int32_t;
using real_32 = float;
using integer = int;

using DATA_08 = data_08;
using DATA_32 = data_32;
using INTE_08 = inte_08;
using INTE_32 = inte_32;
using REAL_32 = real_32;
using INTEGER = integer;

static_assert(sizeof(real_32) == 4 && sizeof(integer) == 4,
              "the context's layout and the weights file rely on it");
