#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "host/Ledger.h"

namespace zerva {

class Console;

/** What the summary at the end is made of. */
struct Summary {
  ServiceCount services;
  std::size_t processesUp = 0;
  std::size_t processesDown = 0;
  unsigned long calls = 0;
  unsigned long failures = 0;
};

/** The wording of what a host tells on standard output. Any thread may call any operation. */
class Report {
 public:
  /** @param console not owned. */
  explicit Report(Console& console);

  /** A remark of the host itself. */
  void remark(const std::string& text);

  void serviceUp(const ServiceEntry& service, std::chrono::milliseconds init);
  /** A lazy service is announced; it is made when it is first used. */
  void serviceAwaited(const ServiceEntry& service);
  void serviceStopped(const ServiceEntry& service);
  void serviceDeleted(const ServiceEntry& service);
  void processUp(const std::string& program, int id);
  void processEnded(const std::string& program, int id, const std::string& how);

  /** Something did not come up. */
  void failed(const std::string& what, const std::string& why);

  /** The last line. Scripts read it, so its words stay as they are. */
  void summary(const Summary& summary);

 private:
  Console& console_;
};

}  // namespace zerva
