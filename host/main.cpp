#include <cstdio>
#include <variant>

#include "host/CommandLine.h"
#include "host/Run.h"
#include "host/SignalThread.h"
#include "runtime/libClientUtils/ExceptionText.h"

int main(int argc, char** argv) {
  // Before any thread is made, so that all of them leave these signals alone.
  const sigset_t signals = zerva::blockEndingSignals();
  zerva::ExitCode code = zerva::ExitCode::Unexpected;
  try {
    const auto wanted = zerva::readCommandLine(argc, argv);
    const auto* options = std::get_if<zerva::RunOptions>(&wanted);
    code = options != nullptr ? zerva::run(*options, signals) : std::get<zerva::ExitCode>(wanted);
  } catch (...) {
    std::fprintf(stderr, "zerva: %s\n", zerva::currentExceptionText().c_str());
  }
  return static_cast<int>(code);
}
