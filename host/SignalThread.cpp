#include "host/SignalThread.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

#include "host/Complaint.h"
#include "runtime/libClientUtils/ExceptionText.h"

namespace zerva {
namespace {

bool isIgnored(int number) {
  struct sigaction action {};
  return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

int checked(int descriptor, const char* what) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), what);
  return descriptor;
}

}  // namespace

sigset_t blockEndingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  for (const int number : {SIGINT, SIGHUP}) {
    if (!isIgnored(number)) sigaddset(&signals, number);
  }
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  // What cannot be written is an error of whoever writes; a limit on files is told so too.
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
  return signals;
}

SignalThread::SignalThread(const sigset_t& signals, std::function<void(int)> taken)
    : signals_(checked(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK), "signalfd")),
      end_(checked(eventfd(0, EFD_CLOEXEC), "eventfd")),
      taken_(std::move(taken)),
      thread_([this] { takeSignals(); }) {}

SignalThread::~SignalThread() {
  const std::uint64_t one = 1;
  // Cannot fail: the counter is far from its end.
  static_cast<void>(!write(end_, &one, sizeof one));
  thread_.join();
  close(end_);
  close(signals_);
}

void SignalThread::takeSignals() {
  std::array<pollfd, 2> awaited = {pollfd{signals_, POLLIN, 0}, pollfd{end_, POLLIN, 0}};
  while (awaited[1].revents == 0) {
    if (poll(awaited.data(), awaited.size(), -1) < 0) continue;
    signalfd_siginfo info{};
    if (read(signals_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
      const auto error = exceptionOf([&] { taken_(static_cast<int>(info.ssi_signo)); });
      // The next one may still end the process.
      if (error) printError("zerva: a signal was lost: ", *error);
    }
  }
}

}  // namespace zerva
