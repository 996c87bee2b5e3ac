// command_line.h: a command given as one text: its words, and whether its program can be run.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace stopngo {

/// The words of a command, as a shell takes them apart: spaces between them, '…' as it stands, "…" in which a backslash
/// keeps a quote or a backslash, and a backslash elsewhere keeps what follows it. Nothing else is special. Throws
/// Failure for an open quote, a backslash at the end, and a command without a program. option: as the user gave it.
std::vector<std::string> CommandWords(const std::string& option, std::string_view text);

/// Throws Failure when no such program is found, along PATH for a name without a slash, or it is not to be executed.
void RequireProgram(const std::string& option, const std::string& program);

}  // namespace stopngo
