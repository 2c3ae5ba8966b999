#include "runtime/libClientUtils/Reaper.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <vector>

#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/ProcessTable.h"
#include "runtime/libClientUtils/ThreadSettings.h"

namespace zerva {

namespace {

// How often is looked, in milliseconds, where nothing tells when.
constexpr int kLook = 200;

}  // namespace

Reaper::Reaper() : wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

int Reaper::start() {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_attr_setstacksize(&attributes, ThreadSettings::stackSize(0));
  // The program's signals are for the program's own threads.
  sigset_t all;
  sigfillset(&all);
  pthread_attr_setsigmask_np(&attributes, &all);
  pthread_t thread{};
  const int error = pthread_create(&thread, &attributes, run, this);
  pthread_attr_destroy(&attributes);
  return error;
}

void Reaper::wake() {
  const std::uint64_t one = 1;
  // It fails only when the event stands already.
  [[maybe_unused]] const ssize_t written = ::write(wake_, &one, sizeof one);
}

void* Reaper::run(void* reaper) {
  pthread_setname_np(pthread_self(), "zerva reaper");
  static_cast<Reaper*>(reaper)->watch();
  return nullptr;
}

void Reaper::watch() {
  bool some = true;
  while (some) {
    // Nobody else reaps the children, so that it goes on when there is no memory for a moment.
    if (exceptionOf([&] { some = waitForSome(); })) {
      ::poll(nullptr, 0, kLook);
    }
  }
}

/** @returns false when no child is left. */
bool Reaper::waitForSome() const {
  std::vector<int> children;
  ProcessTable::instance().reap(children);
  if (children.empty()) return false;
  int timeout = wake_ < 0 ? kLook : -1;
  std::vector<pollfd> descriptors(1, {wake_, POLLIN, 0});
  for (const int child : children) {
    if (child < 0) timeout = kLook;
    descriptors.push_back({child, POLLIN, 0});
  }
  ::poll(descriptors.data(), descriptors.size(), timeout);
  std::uint64_t events = 0;
  [[maybe_unused]] const ssize_t read = ::read(wake_, &events, sizeof events);
  return true;
}

}  // namespace zerva
