#pragma once

#include <string>

#include "runtime/libClientUtils/StartedProcesses.h"

namespace zerva {

/**
 * A child process from its start until it was reaped. Not locked by itself: the process table
 * guards it.
 */
class StartedChild {
 public:
  /** One that is not started yet. */
  explicit StartedChild(std::string program);
  ~StartedChild();
  StartedChild(const StartedChild&) = delete;
  StartedChild& operator=(const StartedChild&) = delete;

  /** It runs. @param id a child of this process that nobody else waits for. */
  void begin(int id);

  /** Descriptor that gets readable when the child ends; -1 when there was none to be had. */
  int descriptor() const { return descriptor_; }
  bool running() const { return status_.running; }
  bool reaped() const { return reaped_; }
  const StartedProcess& status() const { return status_; }

  /**
   * Looks whether the child has ended, without waiting, and reaps it then unless it is held back.
   *
   * @returns true when it was found to have ended just now.
   */
  bool look();

  /** Lets the child stay unreaped after its end, so that its id stays its own. */
  void holdBack() { heldBack_ = true; }

  /** Ends the holding back; reaps the child when it has ended. */
  void release();

  /** Sends a signal to the child itself; nothing happens when it was reaped. */
  void signal(int number) const;

  /** Sends a signal to what is in the child's process group; nothing when it was reaped. */
  void signalGroup(int number) const;

 private:
  void noteReaped();

  StartedProcess status_;
  int descriptor_ = -1;
  bool heldBack_ = false;
  bool reaped_ = false;
};

}  // namespace zerva
