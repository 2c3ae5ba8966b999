// Threads and programs whose start can fail, and the descriptors that they are waited for with.

#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>

#include "tests/faults/FaultyCalls.h"

namespace {

using zerva::fault::callOr;
using zerva::fault::hits;
using zerva::fault::Kind;
using zerva::fault::systems;

}  // namespace

extern "C" {

int faultyThread(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                 void* argument) ZERVA_FAULTY("pthread_create");
int faultySpawn(pid_t* id, const char* file, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* arguments,
                char* const* environment) ZERVA_FAULTY("posix_spawnp");
int faultyEvent(unsigned count, int flags) ZERVA_FAULTY("eventfd");
int faultyTimer(int clock, int flags) ZERVA_FAULTY("timerfd_create");
int faultyPoll(int flags) ZERVA_FAULTY("epoll_create1");
int faultySignal(int descriptor, const sigset_t* signals, int flags) ZERVA_FAULTY("signalfd");
int faultyProcess(pid_t id, unsigned flags) ZERVA_FAULTY("pidfd_open");

int faultyThread(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                 void* argument) {
  if (hits(Kind::Thread)) return EAGAIN;
  using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  return reinterpret_cast<Create>(systems("pthread_create"))(thread, attributes, body, argument);
}

int faultySpawn(pid_t* id, const char* file, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* arguments,
                char* const* environment) {
  if (hits(Kind::Spawn)) return EAGAIN;
  return reinterpret_cast<decltype(&posix_spawnp)>(systems("posix_spawnp"))(
      id, file, actions, attributes, arguments, environment);
}

int faultyEvent(unsigned count, int flags) {
  return callOr<int>(Kind::Descriptor, EMFILE, "eventfd", count, flags);
}

int faultyTimer(int clock, int flags) {
  return callOr<int>(Kind::Descriptor, EMFILE, "timerfd_create", clock, flags);
}

int faultyPoll(int flags) { return callOr<int>(Kind::Descriptor, EMFILE, "epoll_create1", flags); }

int faultySignal(int descriptor, const sigset_t* signals, int flags) {
  return callOr<int>(Kind::Descriptor, EMFILE, "signalfd", descriptor, signals, flags);
}

int faultyProcess(pid_t id, unsigned flags) {
  return callOr<int>(Kind::Descriptor, EMFILE, "pidfd_open", id, flags);
}
}
