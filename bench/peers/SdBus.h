#pragma once

#include <memory>
#include <string>

#include "bench/harness/OtherProcess.h"

struct sd_bus;

namespace zerva::bench {

/** A service on another process's end of a desktop bus, and calls of it. One thread uses it. */
class SdBus {
 public:
  virtual ~SdBus();
  SdBus(const SdBus&) = delete;
  SdBus& operator=(const SdBus&) = delete;

  /** @throws std::runtime_error when the answer is not what was sent. */
  void call(const std::string& data);

 protected:
  SdBus() = default;

  /** What the other process does with its connection until the end. */
  static void serve(sd_bus* bus);
  /** @throws std::runtime_error when a call of the library has failed. */
  static void expect(int result, const char* what);

  sd_bus* near_ = nullptr;
  /** Whom the calls go to; null where there is only one. */
  const char* destination_ = nullptr;
};

/** From process to process, over a socket pair. */
class SdBusDirect final : public SdBus {
 public:
  SdBusDirect();
  ~SdBusDirect() override;

 private:
  int ends_[2] = {-1, -1};
  std::unique_ptr<OtherProcess> process_;
};

/** Through a daemon of its own. */
class SdBusThroughDaemon final : public SdBus {
 public:
  SdBusThroughDaemon();
  ~SdBusThroughDaemon() override;

 private:
  void startDaemon();

  const std::string directory_;
  const std::string address_;
  pid_t daemon_ = -1;
  std::unique_ptr<OtherProcess> process_;
};

}  // namespace zerva::bench
