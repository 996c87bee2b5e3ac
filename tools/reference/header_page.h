// header_page.h: the module's public header, as the man page of the module tells it.
#pragma once

#include <string>
#include <string_view>

namespace stopngo {

// All in the language of scdoc(5), from the header's text.

/// What its first comment says of the module.
std::string OverviewPage(std::string_view header);

/// The control codes, in their order.
std::string ControlCodePage(std::string_view header);

/// Types and routines, each with the comment above it.
std::string RoutinePage(std::string_view header);

}  // namespace stopngo
