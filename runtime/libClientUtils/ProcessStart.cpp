#include "runtime/libClientUtils/ProcessStart.h"

#include <signal.h>
#include <spawn.h>

#include <cstdint>
#include <system_error>

#include "runtime/libClientUtils/trace/TraceEvent.h"

namespace zerva {
namespace {

class Attributes {
 public:
  Attributes() : error_(posix_spawnattr_init(&attributes_)) {}
  ~Attributes() {
    if (error_ == 0) posix_spawnattr_destroy(&attributes_);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  int prepare() {
    if (error_ != 0) return error_;
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setpgroup(&attributes_, 0);
    return posix_spawnattr_setflags(
        &attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
  const int error_;
};

class Actions {
 public:
  Actions() : error_(posix_spawn_file_actions_init(&actions_)) {}
  ~Actions() {
    if (error_ == 0) posix_spawn_file_actions_destroy(&actions_);
  }
  Actions(const Actions&) = delete;
  Actions& operator=(const Actions&) = delete;

  int prepare(const char* directory) {
    constexpr int kFirstAfterStandard = 3;
    int error = error_;
    if (error == 0) {
      error = posix_spawn_file_actions_addclosefrom_np(&actions_, kFirstAfterStandard);
    }
    if (error == 0 && directory != nullptr) {
      error = posix_spawn_file_actions_addchdir_np(&actions_, directory);
    }
    return error;
  }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
  const int error_;
};

}  // namespace

int startProcess(char** argv, char** envp, const char* directory, int& id) {
  Attributes attributes;
  Actions actions;
  int error = attributes.prepare();
  if (error == 0) error = actions.prepare(directory);
  pid_t started = 0;
  const std::int64_t begin = Trace::begin();
  if (error == 0) {
    error = ::posix_spawnp(&started, argv[0], actions.get(), attributes.get(), argv, envp);
  }
  if (error == 0) id = started;
  if (Trace::on()) {
    TraceEvent event(TraceKind::ProcessStarted);
    if (!Trace::runsOwnCode()) event.forService({});
    event.since(begin).with(TraceKey::Program, argv[0]).with(TraceKey::Pid, started);
    if (error != 0) {
      Trace::guarded([&] { event.with(TraceKey::Error, std::generic_category().message(error)); });
    }
    event.write();
  }
  return error;
}

}  // namespace zerva
