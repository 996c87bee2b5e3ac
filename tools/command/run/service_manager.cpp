// service_manager.cpp: what a service manager is told of a run, by systemd's protocol of notifications.
#include "command/run/service_manager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/common/text.h"

namespace stopngo {
namespace {

std::string_view Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

/// Sends datagrams to the path, or, from an '@' on, to the name of its own kind; below 0: there is no such.
int Connect(std::string_view path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path || (path[0] != '/' && path[0] != '@')) return -1;
  std::ranges::copy(path, address.sun_path);
  if (path[0] == '@') address.sun_path[0] = '\0';
  const int made = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
  if (made >= 0 && connect(made, reinterpret_cast<const sockaddr*>(&address), length) == 0) return made;
  if (made >= 0) close(made);
  return -1;
}

}  // namespace

ServiceManager::ServiceManager() : socket_(Connect(Variable("NOTIFY_SOCKET"))) {
  const auto period_us = NumberOf<std::int64_t>(Variable("WATCHDOG_USEC"));
  const auto process = NumberOf<std::int64_t>(Variable("WATCHDOG_PID"));
  if (socket_ < 0 || !period_us || *period_us <= 0 || (process && *process != getpid())) return;
  constexpr double kMicrosecond_s = 1e-6;
  period_s_ = static_cast<double>(*period_us) * kMicrosecond_s;
}

ServiceManager::~ServiceManager() {
  if (socket_ >= 0) close(socket_);
}

void ServiceManager::Tell(const std::string& lines) const {
  if (socket_ >= 0) (void)send(socket_, lines.data(), lines.size(), MSG_NOSIGNAL);
}

}  // namespace stopngo
