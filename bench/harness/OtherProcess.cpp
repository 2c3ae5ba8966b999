#include "bench/harness/OtherProcess.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include "bench/harness/Isolated.h"

namespace zerva::bench {

void OtherProcess::Stay::untilOver() const {
  char byte = 0;
  if (::write(ready_, &byte, 1) != 1) return;
  // Nothing is ever written: it is over when the other end is closed.
  static_cast<void>(::read(over_, &byte, 1));
}

OtherProcess::OtherProcess(const std::function<void(const Stay&)>& body) {
  std::array<int, 2> ready{};
  std::array<int, 2> over{};
  if (::pipe(ready.data()) != 0 || ::pipe(over.data()) != 0) {
    throw std::runtime_error("no pipe can be made");
  }
  std::fflush(nullptr);
  process_ = ::fork();
  if (process_ < 0) throw std::runtime_error("no process can be made");
  if (process_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::alarm(kLongestSeconds);
    ::close(ready[0]);
    ::close(over[1]);
    try {
      body(Stay(ready[1], over[0]));
    } catch (const std::exception& error) {
      std::fprintf(stderr, "the second process failed: %s\n", error.what());
      _exit(1);
    }
    std::fflush(nullptr);
    _exit(0);
  }
  ::close(ready[1]);
  ::close(over[0]);
  ready_ = ready[0];
  over_ = over[1];
}

OtherProcess::~OtherProcess() {
  ::close(over_);
  ::close(ready_);
  int status = 0;
  ::waitpid(process_, &status, 0);
}

void OtherProcess::awaitReady() const {
  char byte = 0;
  if (::read(ready_, &byte, 1) != 1) throw std::runtime_error("the second process is not there");
}

}  // namespace zerva::bench
