#include "runtime/libClientUtils/StartedChild.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

// The C library says itself that these are C functions only from its version 2.37 on.
extern "C" {
#include <sys/pidfd.h>
}

namespace zerva {
namespace {

/** Asks the system for one child and no other. @returns false with `errno` when there is none. */
bool askSystem(int descriptor, int id, int options, siginfo_t& info) {
  int result = 0;
  do {
    info = {};
    result = descriptor >= 0
                 ? ::waitid(P_PIDFD, static_cast<id_t>(descriptor), &info, WEXITED | options)
                 : ::waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | options);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

}  // namespace

StartedChild::StartedChild(std::string program) : status_{0, std::move(program), false, -1, 0} {}

void StartedChild::begin(int id) {
  status_.id = id;
  status_.running = true;
  descriptor_ = ::pidfd_open(id, 0);
}

StartedChild::~StartedChild() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

bool StartedChild::look() {
  if (!status_.running) return false;
  siginfo_t info{};
  const bool known = askSystem(descriptor_, status_.id, WNOHANG | (heldBack_ ? WNOWAIT : 0), info);
  if (known && info.si_pid == 0) return false;
  status_.running = false;
  if (!known) {
    // The program ignores SIGCHLD, or has waited for all children itself: how it ended is lost.
    noteReaped();
    return true;
  }
  if (info.si_code == CLD_EXITED) {
    status_.exitStatus = info.si_status;
  } else {
    status_.signal = info.si_status;
  }
  if (!heldBack_) noteReaped();
  return true;
}

void StartedChild::release() {
  heldBack_ = false;
  if (status_.running || reaped_) return;
  siginfo_t info{};
  askSystem(descriptor_, status_.id, WNOHANG, info);
  noteReaped();
}

void StartedChild::signal(int number) const {
  if (reaped_) return;
  if (descriptor_ >= 0) {
    ::pidfd_send_signal(descriptor_, number, nullptr, 0);
  } else {
    ::kill(status_.id, number);
  }
}

void StartedChild::signalGroup(int number) const {
  if (!reaped_) ::kill(-status_.id, number);
}

void StartedChild::noteReaped() {
  reaped_ = true;
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

}  // namespace zerva
