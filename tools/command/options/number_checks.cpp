// number_checks.cpp: which numbers an option takes.
#include "command/options/number_checks.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "host/common/text.h"

namespace stopngo {
namespace {

/// words: what such a number is; description: the same for --help.
CLI::Validator NumberCheck(std::function<bool(double)> takes, const std::string& words,
                           const std::string& description) {
  return {[takes = std::move(takes), words](const std::string& given) {
            const std::optional<double> number = FiniteOf(given);
            return number && takes(*number) ? std::string() : Quoted(given) + " is no number " + words;
          },
          description};
}

}  // namespace

CLI::Validator Within(double least, double most) {
  return NumberCheck([=](double number) { return number >= least && number <= most; },
                     "from " + PlainText(least) + " to " + PlainText(most),
                     "in [" + PlainText(least) + " - " + PlainText(most) + "]");
}

CLI::Validator AboveZero() {
  return NumberCheck([](double number) { return number > 0; }, "above 0", "POSITIVE");
}

CLI::Validator ZeroOrMore() {
  return NumberCheck([](double number) { return number >= 0; }, "of 0 or more", "NONNEGATIVE");
}

}  // namespace stopngo
