#include "runtime/libClientUtils/Reaper.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <vector>

#include "runtime/libClientUtils/ProcessTable.h"
#include "runtime/libClientUtils/ThreadSettings.h"

namespace zerva {

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
  constexpr int kWithoutDescriptor = 200;
  std::vector<int> children;
  std::vector<pollfd> descriptors;
  for (ProcessTable::instance().reap(children); !children.empty();
       ProcessTable::instance().reap(children)) {
    int timeout = wake_ < 0 ? kWithoutDescriptor : -1;
    descriptors.assign(1, {wake_, POLLIN, 0});
    for (const int child : children) {
      if (child < 0) timeout = kWithoutDescriptor;
      descriptors.push_back({child, POLLIN, 0});
    }
    ::poll(descriptors.data(), descriptors.size(), timeout);
    std::uint64_t events = 0;
    [[maybe_unused]] const ssize_t read = ::read(wake_, &events, sizeof events);
  }
}

}  // namespace zerva
