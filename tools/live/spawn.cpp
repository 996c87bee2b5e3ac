// spawn.cpp: starts a program as a stranger to this one.
#include "live/spawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <system_error>

#include "host/common/descriptor.h"

namespace stopngo {
namespace {

void MustSpawn(int error) {
  if (error != 0) throw std::system_error(error, std::generic_category());
}

class SpawnAttributes {
 public:
  SpawnAttributes() {
    MustSpawn(posix_spawnattr_init(&attributes_));
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    posix_spawnattr_setpgroup(&attributes_, 0);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
  }
  ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  [[nodiscard]] const posix_spawnattr_t* Get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

class SpawnFiles {
 public:
  explicit SpawnFiles(int input) {
    MustSpawn(posix_spawn_file_actions_init(&actions_));
    int error = posix_spawn_file_actions_adddup2(&actions_, input, STDIN_FILENO);
    if (error == 0) error = posix_spawn_file_actions_adddup2(&actions_, STDERR_FILENO, STDOUT_FILENO);
    if (error == 0) error = posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
    if (error == 0) return;
    posix_spawn_file_actions_destroy(&actions_);
    MustSpawn(error);
  }
  ~SpawnFiles() { posix_spawn_file_actions_destroy(&actions_); }
  SpawnFiles(const SpawnFiles&) = delete;
  SpawnFiles& operator=(const SpawnFiles&) = delete;
  [[nodiscard]] const posix_spawn_file_actions_t* Get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

std::vector<std::string> EnvironmentWith(const std::vector<std::string>& added) {
  std::vector<std::string> all = added;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view old(*entry);
    const std::string_view name = old.substr(0, old.find('=') + 1);
    const bool replaced = std::any_of(added.begin(), added.end(),
                                      [name](const std::string& text) { return text.starts_with(name); });
    if (!replaced) all.emplace_back(old);
  }
  return all;
}

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

pid_t Spawn(const std::vector<std::string>& argv, const std::vector<std::string>& environment,
            const std::string& input) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) MustSpawn(errno);
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  // The pipe takes it whole while nobody reads yet, so that it does not matter whether anybody ever does.
  if (write(writing.Number(), input.data(), input.size()) != static_cast<ssize_t>(input.size())) {
    MustSpawn(EMSGSIZE);
  }
  writing.Close();
  fcntl(reading.Number(), F_SETFL, 0);  // a program expects to wait for its input
  const std::vector<std::string> all = EnvironmentWith(environment);
  const SpawnFiles files(reading.Number());
  const SpawnAttributes attributes;
  pid_t process = 0;
  MustSpawn(posix_spawnp(&process, argv.front().c_str(), files.Get(), attributes.Get(), Pointers(argv).data(),
                         Pointers(all).data()));
  return process;
}

}  // namespace stopngo
