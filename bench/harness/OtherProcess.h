#pragma once

#include <sys/types.h>

#include <functional>

namespace zerva::bench {

/** A second process of a measurement. Made while the first has one thread. */
class OtherProcess {
 public:
  /** What the second process is handed to say when it is ready, and to wait for its end. */
  class Stay {
   public:
    Stay(int ready, int over) : ready_(ready), over_(over) {}
    /** Returns when the first process wants the end. */
    void untilOver() const;

   private:
    int ready_;
    int over_;
  };

  /** Starts it. @param body what it does; it calls `untilOver` once. */
  explicit OtherProcess(const std::function<void(const Stay&)>& body);

  /** Ends it and waits for that. */
  ~OtherProcess();
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  /** Waits until it is ready. @throws std::runtime_error when it never will be. */
  void awaitReady() const;

 private:
  int ready_ = -1;
  int over_ = -1;
  pid_t process_ = -1;
};

}  // namespace zerva::bench
