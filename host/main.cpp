#include <variant>

#include "host/CommandLine.h"
#include "host/Complaint.h"
#include "host/Run.h"
#include "host/SignalThread.h"
#include "runtime/libClientUtils/ExceptionText.h"

int main(int argc, char** argv) {
  // Before any thread is made, so that all of them leave these signals alone.
  const sigset_t signals = zerva::blockEndingSignals();
  int code = static_cast<int>(zerva::ExitCode::Unexpected);
  try {
    const auto wanted = zerva::readCommandLine(argc, argv);
    if (const auto* options = std::get_if<zerva::RunOptions>(&wanted)) {
      code = static_cast<int>(zerva::run(*options, signals));
    } else if (const auto* verb = std::get_if<zerva::Verb>(&wanted)) {
      // It has nothing to put in order at its end.
      pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
      code = (*verb)();
    } else {
      code = static_cast<int>(std::get<zerva::ExitCode>(wanted));
    }
  } catch (...) {
    zerva::complain(zerva::currentExceptionText());
  }
  return code;
}
