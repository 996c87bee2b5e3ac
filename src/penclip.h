// penclip.h: the character types for names and paths.
#pragma once

using name_08 = char;
using NAME_08 = const name_08;
