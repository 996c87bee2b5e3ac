// service_manager.h: what a service manager is told of a run, by systemd's protocol of notifications.
#pragma once

#include <optional>
#include <string>

namespace stopngo {

/// The manager that started this process and wants to hear of it; without one, nothing is told. The protocol is a few
/// lines in a datagram: https://www.freedesktop.org/software/systemd/man/sd_notify.html, "Standalone Implementations".
class ServiceManager {
 public:
  /// From NOTIFY_SOCKET, WATCHDOG_USEC and WATCHDOG_PID.
  ServiceManager();
  ~ServiceManager();
  ServiceManager(const ServiceManager&) = delete;
  ServiceManager& operator=(const ServiceManager&) = delete;

  [[nodiscard]] bool IsThere() const { return socket_ >= 0; }
  /// Within how many seconds it wants a sign of life each time; none: it does not.
  [[nodiscard]] std::optional<double> WatchdogPeriod() const { return period_s_; }
  /// Lines such as "READY=1". What the manager does not take is its own loss.
  void Tell(const std::string& lines) const;

 private:
  int socket_ = -1;
  std::optional<double> period_s_;
};

}  // namespace stopngo
