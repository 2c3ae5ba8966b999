#include "host/live/Looking.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

#include "host/live/Answers.h"
#include "host/live/LiveBus.h"
#include "host/live/StatusText.h"

namespace zerva {
namespace {

constexpr const char* kHomeAndClear = "\x1b[H\x1b[2J\x1b[3J";

void complain(const std::string& text) { std::fprintf(stderr, "zerva: %s\n", text.c_str()); }

/** @returns null when there is none; then it was told why. */
std::unique_ptr<LiveBus> join(const LookOptions& options) {
  try {
    return std::make_unique<LiveBus>(options.bus, options.timeout);
  } catch (const std::runtime_error& error) {
    complain(error.what());
    return nullptr;
  }
}

LiveExit print(const std::vector<Answer>& answers, const LookOptions& options) {
  const std::string whole = options.name.empty() ? "" : statusOf(options.name, answers);
  if (options.json) {
    std::fputs(statusJson(options.name, answers).c_str(), stdout);
  } else if (options.name.empty()) {
    std::fputs(statusTable(answers).c_str(), stdout);
  } else {
    std::fputs(whole.c_str(), stdout);
  }
  if (!options.name.empty() && whole.empty()) {
    complain("no process that tells how it is has a service of name " + options.name);
    for (const Answer& answer : answers) {
      if (answer.status) continue;
      complain("process " + std::to_string(answer.process) +
               (answer.tells ? " does not answer: " + answer.why : " does not tell how it is"));
    }
    return LiveExit::Unknown;
  }
  return showTrouble(answers, options.name) ? LiveExit::Trouble : LiveExit::Good;
}

/** The signals that ask to end, taken where they are waited for and nowhere else. */
class Ending {
 public:
  Ending() {
    sigemptyset(&signals_);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals_, number);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  }

  /** @returns whether one came before the time was over. */
  bool comesWithin(std::chrono::milliseconds time) const {
    constexpr long kThousand = 1000;
    const timespec left{static_cast<time_t>(time.count() / kThousand),
                        static_cast<long>(time.count() % kThousand) * kThousand * kThousand};
    return sigtimedwait(&signals_, nullptr, &left) > 0;
  }

 private:
  sigset_t signals_{};
};

}  // namespace

LiveExit look(const LookOptions& options) {
  const auto bus = join(options);
  if (bus == nullptr) return LiveExit::NoBus;
  std::vector<Answer> answers = askAll(*bus);
  if (somethingIsQueued(answers)) {
    std::this_thread::sleep_for(options.patience);
    std::vector<Answer> again = askAll(*bus);
    markStuck(again, answers);
    answers = std::move(again);
  }
  return print(answers, options);
}

LiveExit watch(const LookOptions& options) {
  // Before the thread of the bus is made, so that it leaves them alone.
  const Ending ending;
  const auto bus = join(options);
  if (bus == nullptr) return LiveExit::NoBus;
  const bool terminal = isatty(STDOUT_FILENO) == 1;
  std::vector<Answer> before;
  for (unsigned long looks = 1;; ++looks) {
    std::vector<Answer> answers = askAll(*bus);
    markStuck(answers, before);
    if (terminal) {
      std::fputs(kHomeAndClear, stdout);
    } else if (looks > 1) {
      std::fputs("\n", stdout);
    }
    const LiveExit code = print(answers, options);
    std::fflush(stdout);
    if (looks == options.count || ending.comesWithin(options.every)) return code;
    before = std::move(answers);
  }
}

}  // namespace zerva
