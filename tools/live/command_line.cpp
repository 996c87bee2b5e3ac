// command_line.cpp: a command given as one text: its words, and whether its program can be run.
#include "live/command_line.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <system_error>

#include "host/common/failure.h"
#include "host/common/text.h"

namespace stopngo {
namespace {

/// Takes a text apart, a character at a time.
class WordReader {
 public:
  /// False when a backslash stands where nothing follows it.
  bool Take(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      const bool last = i + 1 == text.size();
      if (text[i] == '\\' && KeepsNext(last ? '\0' : text[i + 1])) {
        if (last) return false;
        Word() += text[++i];
      } else {
        Take(text[i]);
      }
    }
    return true;
  }
  [[nodiscard]] char OpenQuote() const { return quote_; }
  [[nodiscard]] const std::vector<std::string>& Words() const { return words_; }

 private:
  [[nodiscard]] bool KeepsNext(char next) const {
    return quote_ == 0 || (quote_ == '"' && (next == '"' || next == '\\'));
  }

  void Take(char letter) {
    const bool blank = letter == ' ' || letter == '\t' || letter == '\n';
    if (quote_ == letter) {
      quote_ = 0;
    } else if (quote_ == 0 && (letter == '\'' || letter == '"')) {
      quote_ = letter;
      Word();  // '' is a word too
    } else if (quote_ == 0 && blank) {
      within_ = false;
    } else {
      Word() += letter;
    }
  }

  std::string& Word() {
    if (!within_) words_.emplace_back();
    within_ = true;
    return words_.back();
  }

  std::vector<std::string> words_;
  char quote_ = 0;  ///< the one that is open; 0: none
  bool within_ = false;
};

/// Why a file cannot be executed, as errno; 0 when it can.
int FaultOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return access(path.c_str(), X_OK) == 0 ? 0 : errno;
}

/// The same along PATH: that of the first file of the name, where none can be executed.
int FaultAlongPath(const std::string& name) {
  const char* const set = std::getenv("PATH");
  std::string_view rest = set != nullptr ? set : "/bin:/usr/bin";
  std::optional<int> first;
  for (bool more = true; more;) {
    const std::size_t colon = rest.find(':');
    more = colon != std::string_view::npos;
    const std::string folder(rest.substr(0, colon));
    if (more) rest.remove_prefix(colon + 1);
    const int fault = FaultOf((folder.empty() ? "." : folder) + "/" + name);
    if (fault == 0) return 0;
    if (fault != ENOENT && fault != ENOTDIR && !first) first = fault;
  }
  return first.value_or(ENOENT);
}

}  // namespace

std::vector<std::string> CommandWords(const std::string& option, std::string_view text) {
  const auto refuse = [&](const std::string& reason) {
    throw Failure(option + " " + Quoted(text) + ": " + reason, ExitCode::kUsage);
  };
  WordReader reader;
  if (!reader.Take(text)) refuse("nothing follows the backslash at its end");
  if (reader.OpenQuote() != 0) refuse(std::string("the quote ") + reader.OpenQuote() + " is not closed");
  if (reader.Words().empty() || reader.Words().front().empty()) refuse("it names no program");
  return reader.Words();
}

void RequireProgram(const std::string& option, const std::string& program) {
  const bool path = program.find('/') != std::string::npos;
  const int fault = path ? FaultOf(program) : FaultAlongPath(program);
  if (fault == 0) return;
  const std::string reason =
      !path && fault == ENOENT ? "no such program along PATH" : std::generic_category().message(fault);
  throw Failure(option + ": " + program + ": " + reason, ExitCode::kUsage);
}

}  // namespace stopngo
