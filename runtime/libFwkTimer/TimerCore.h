#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "framework/Threadable.h"
#include "runtime/libClientUtils/Parker.h"

class Executable;
class FrameworkContext;

namespace zerva {

/**
 * The timers of one `FwkTimer`, shared with the expiries that are on their way to their owners.
 *
 * An expiry carries the timer's id and the run that it belongs to, so that one that is overtaken by
 * a stop, a reset or the deletion of the timer is recognised and dropped. No lock is held while the
 * context or an owner is called.
 */
class TimerCore : public std::enable_shared_from_this<TimerCore> {
 public:
  explicit TimerCore(FrameworkContext* context);

  int create(Executable* owner, int period);
  bool start(int id, bool evenIfRunning);
  bool stop(int id);
  bool remove(int id);
  bool running(int id) const;
  void shutdown();

  /** Ends the thread. Called after `shutdown`. */
  void end();

  /** Calls the owner of a timer, if this run of it is still on. Throws what the owner throws. */
  void fire(int id, unsigned run);

  /** An expiry is gone, delivered or not; the next may be sent. */
  void settled(int id, unsigned run);

 private:
  class TimerThread : public Threadable {
   public:
    explicit TimerThread(TimerCore& core) : core_(core) {}
    void run() override { core_.work(); }

   private:
    TimerCore& core_;
  };

  struct Timer {
    Executable* owner;
    std::chrono::milliseconds period;
    bool channelAsked = false;
    std::string channel;
    bool running = false;
    unsigned run = 0;  // counts the starts
    bool pending = false;
    Clock::time_point next;
  };

  struct Due {
    int id;
    unsigned run;
    Executable* owner;
    std::string channel;
  };

  class Calling;

  bool askChannel(std::unique_lock<std::mutex>& lock, int id);
  bool needThread(std::unique_lock<std::mutex>& lock);
  void halt(int id, Timer& timer);
  std::vector<Due> takeDue(Clock::time_point now);
  void work();
  void send(const Due& due);
  void callOwner(const Due& due);

  FrameworkContext* const context_;
  TimerThread thread_;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by mutex_.
  std::map<int, Timer> timers_;
  std::set<std::pair<Clock::time_point, int>> schedule_;  // of the running timers
  int lastId_ = 0;
  bool threadStarted_ = false;
  bool over_ = false;
  std::vector<std::thread::id> calling_;  // threads inside the context or an owner
  std::vector<std::thread::id> ending_;   // threads inside `shutdown`
};

}  // namespace zerva
