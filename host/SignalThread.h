#pragma once

#include <signal.h>

#include <functional>
#include <thread>

namespace zerva {

/**
 * Blocks, in the calling thread and in all that it starts from now on, the signals with which a
 * process is asked to end, and ignores SIGPIPE and SIGXFSZ. Called before any thread is made.
 *
 * @returns the signals that were blocked. SIGHUP and SIGINT are not among them when whoever started
 *     the process has them ignored, as for a process in the background.
 */
sigset_t blockEndingSignals();

/** Takes the signals that were blocked, on a thread of its own. */
class SignalThread {
 public:
  /**
   * @param signals what `blockEndingSignals` returned.
   * @param taken called with the number of each signal, on the thread of this object; it may end
   * the process.
   */
  SignalThread(const sigset_t& signals, std::function<void(int)> taken);

  /** Ends the thread. */
  ~SignalThread();
  SignalThread(const SignalThread&) = delete;
  SignalThread& operator=(const SignalThread&) = delete;

 private:
  void takeSignals();

  // Constant after construction.
  int signals_;
  int end_;
  const std::function<void(int)> taken_;
  std::thread thread_;
};

}  // namespace zerva
