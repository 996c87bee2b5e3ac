// command.cpp: runs the stopngo program as a user would and keeps what it said.
#include "support/command.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "host/file.h"

namespace stopngo::test {

CommandResult Shell(const std::string& command, std::string_view input) {
  const TemporaryFolder folder;
  const std::string in = folder.File("in", input);
  // In braces, so that redirections and pipes in the command go before these.
  const std::string line = "{ " + command + " ; } <" + in + " >" + folder / "out" + " 2>" + folder / "err";
  const int status = std::system(line.c_str());  // NOLINT(cert-env33-c): a shell is what a user has
  CommandResult result;
  if (WIFEXITED(status)) result.exit_code = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.exit_code = 128 + WTERMSIG(status);
  result.out = ReadFile(folder / "out");
  result.err = ReadFile(folder / "err");
  return result;
}

CommandResult Stopngo(const std::string& arguments, std::string_view input) {
  return Shell(STOPNGO_PROGRAM " " + arguments, input);
}

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "stopngo-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder can be made");
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::File(std::string_view name, std::string_view content) const {
  std::string path = *this / name;
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) throw std::runtime_error(path + " cannot be written");
  return path;
}

std::size_t TemporaryFolder::Files() const {
  return static_cast<std::size_t>(
      std::distance(std::filesystem::directory_iterator(path_), std::filesystem::directory_iterator()));
}

}  // namespace stopngo::test
