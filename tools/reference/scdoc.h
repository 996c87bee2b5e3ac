// scdoc.h: text as scdoc(5) takes it.
#pragma once

#include <string>
#include <string_view>

namespace stopngo {

/// A text of ours with no mark-up in it.
std::string PlainScdoc(std::string_view text);

/// Lines as they stand.
std::string LiteralScdoc(std::string_view lines);

/// Prose: paragraphs with empty lines between them; lines that begin with two spaces are shown as they stand.
std::string ProseScdoc(std::string_view text);

}  // namespace stopngo
