#include <cstdio>
#include <variant>

#include "host/CommandLine.h"
#include "host/Run.h"
#include "host/SignalThread.h"
#include "host/check/Check.h"
#include "host/check/LibraryLoad.h"
#include "runtime/libClientUtils/ExceptionText.h"

namespace {

/** Does one verb or another. */
class Verbs {
 public:
  explicit Verbs(const sigset_t& signals) : signals_(signals) {}

  int operator()(const zerva::RunOptions& options) const {
    return static_cast<int>(zerva::run(options, signals_));
  }
  int operator()(const zerva::CheckOptions& options) const {
    obeySignals();
    return static_cast<int>(zerva::check(options));
  }
  int operator()(const zerva::LoadOptions& options) const { return zerva::openForReal(options); }
  int operator()(zerva::ExitCode code) const { return static_cast<int>(code); }

 private:
  /** For a verb that has nothing to put in order at its end. */
  void obeySignals() const { pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr); }

  const sigset_t& signals_;
};

}  // namespace

int main(int argc, char** argv) {
  // Before any thread is made, so that all of them leave these signals alone.
  const sigset_t signals = zerva::blockEndingSignals();
  int code = static_cast<int>(zerva::ExitCode::Unexpected);
  try {
    code = std::visit(Verbs(signals), zerva::readCommandLine(argc, argv));
  } catch (...) {
    std::fprintf(stderr, "zerva: %s\n", zerva::currentExceptionText().c_str());
  }
  return code;
}
