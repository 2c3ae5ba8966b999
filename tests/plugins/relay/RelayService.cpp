// A service that behaves: it hands calls on. In which order, the caller says.

#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <stdexcept>

#include "SvcRTEContext.h"
#include "framework/Logging.h"
#include "framework/Service.h"
#include "tests/plugins/Journal.h"
#include "tests/plugins/relay/Relay.h"

class RelayService : public Service, public Relay {
 public:
  /** @param name under which it keeps a journal; none when it is null. */
  explicit RelayService(const char* name = nullptr) : name_(name) { zerva::journal(name_, "made"); }
  RelayService(const RelayService&) = delete;
  RelayService& operator=(const RelayService&) = delete;
  ~RelayService() override { zerva::journal(name_, "deleted"); }

  void init(SvcRTEContext* context) override {
    zerva::journal(name_, "initialised");
    context_ = context;
  }

  void stop() override {
    zerva::journal(name_, "stopped");
    const std::lock_guard<std::mutex> lock(mutex_);
    stopped_ = true;
    changed_.notify_all();
  }

  std::vector<int> pass(const std::vector<std::string>& way) override {
    std::vector<int> processes{getpid()};
    if (way.empty()) return processes;
    if (way[0] == "hold") return hold(way);
    if (way[0] == "throw") throw std::runtime_error("no way");
    auto* const next = dynamic_cast<Relay*>(context_->findService(way[0]));
    if (next == nullptr) throw std::runtime_error("nobody is " + way[0]);
    const auto beyond = next->pass({way.begin() + 1, way.end()});
    processes.insert(processes.end(), beyond.begin(), beyond.end());
    return processes;
  }

 private:
  std::vector<int> hold(const std::vector<std::string>& way) {
    std::puts("held");
    std::fflush(stdout);
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return stopped_; });
    lock.unlock();
    for (std::size_t i = 1; i < way.size(); ++i) {
      const bool found = context_->findService(way[i]) != nullptr;
      const bool started = context_->startTimer(context_->createTimer(this, 1000));
      logAppUni("Test", "RelayService", 4, __LINE__, "after the stop: %s %s, a timer %s",
                way[i].c_str(), found ? "is found" : "is not found",
                started ? "starts" : "does not start");
    }
    throw std::runtime_error("held until it was stopped");
  }

  const char* const name_;
  SvcRTEContext* context_ = nullptr;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool stopped_ = false;  // guarded by mutex_
};

extern "C" ZERVA_EXPORT Service* createRelay() { return new RelayService; }

// Some that keep a journal.
extern "C" ZERVA_EXPORT Service* createFirst() { return new RelayService("First"); }
extern "C" ZERVA_EXPORT Service* createSecond() { return new RelayService("Second"); }
extern "C" ZERVA_EXPORT Service* createThird() { return new RelayService("Third"); }

/** Makes nothing the first two times. */
extern "C" ZERVA_EXPORT Service* createReluctantRelay() {
  // In the environment, since the library may be closed and opened between two times.
  const char* const before = std::getenv("ZERVA_TEST_RELUCTANT");
  const int times = before != nullptr ? std::atoi(before) + 1 : 1;
  setenv("ZERVA_TEST_RELUCTANT", std::to_string(times).c_str(), 1);
  return times > 2 ? new RelayService : nullptr;
}
