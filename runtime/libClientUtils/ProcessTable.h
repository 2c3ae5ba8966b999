#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "runtime/libClientUtils/Reaper.h"
#include "runtime/libClientUtils/StartedChild.h"
#include "runtime/libClientUtils/StartedProcesses.h"

class Process;

namespace zerva {

/**
 * What this process has started. One object a process, never destroyed: what is left undeleted on
 * purpose hangs on it, and children end when they like.
 */
class ProcessTable {
 public:
  using Child = std::shared_ptr<StartedChild>;

 private:
  struct Entry {
    Child child;
    /** Whether its `Process` object lives. */
    bool owned;
  };

 public:
  /** A child that is to be started, and its place in the table. */
  class Place {
   public:
    explicit Place(const std::string& program);

   private:
    friend class ProcessTable;
    std::list<Entry> entry_;
  };

  static ProcessTable& instance();

  /** A `Process` tells that it begins to live. */
  void addObject(const Process* object);

  /** A `Process` tells that it ends. @param child what it started; may be null. */
  void removeObject(const Process* object, const Child& child);

  /** Notes a child that was started, and sees to it that it is reaped. Needs no memory. */
  Child addChild(Place place, int id);

  std::vector<StartedProcess> list() const;
  std::vector<StartedProcess> terminateAll(std::chrono::milliseconds grace);
  std::size_t objects() const;

  /**
   * Reaps what has ended.
   *
   * @param watched gets the descriptors of what still runs, -1 for one that has none; empty when
   *     nothing runs, and the reaper is then done.
   */
  void reap(std::vector<int>& watched);

 private:
  using Deadline = std::chrono::steady_clock::time_point;

  ProcessTable() = default;
  void lookAtAll(std::vector<StartedProcess>& ended);
  void forgetEnded();
  void waitForEnd(std::unique_lock<std::mutex>& lock, const std::vector<Child>& children,
                  Deadline deadline);

  Reaper reaper_;

  mutable std::mutex mutex_;
  std::condition_variable someEnded_;
  // Guarded by mutex_.
  std::list<const Process*> objects_;
  std::list<Entry> entries_;
  bool reaperRuns_ = false;
};

}  // namespace zerva
