#pragma once

namespace zerva {

/**
 * The thread that reaps children when they end. It exists while children run and no longer, takes
 * no signals, and is waited for by nobody.
 */
class Reaper {
 public:
  Reaper();
  Reaper(const Reaper&) = delete;
  Reaper& operator=(const Reaper&) = delete;

  /** Starts the thread. @returns 0, or the error for which it could not be made. */
  int start();

  /** Makes the thread look again at what it watches. */
  void wake();

 private:
  static void* run(void* reaper);
  void watch();
  bool waitForSome() const;

  // Constant after construction: an event descriptor, or -1 when there was none to be had.
  const int wake_;
};

}  // namespace zerva
