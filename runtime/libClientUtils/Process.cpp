#include "framework/Process.h"

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "framework/Logging.h"
#include "runtime/libClientUtils/ProcessStart.h"
#include "runtime/libClientUtils/ProcessTable.h"

namespace {

constexpr char kModule[] = "Processes";
constexpr char kSource[] = "runtime/libClientUtils";
constexpr int kError = 2;

}  // namespace

struct __attribute__((visibility("hidden"))) Process::State {
  /** What was started; null when nothing was. */
  zerva::ProcessTable::Child child;

  void start(int argc, char** argv, char** envp, char* directory);
};

Process::Process(int argc, char** argv, char** envp, char* directory)
    : state_(std::make_unique<State>()) {
  zerva::ProcessTable::instance().addObject(this);
  try {
    state_->start(argc, argv, envp, directory);
  } catch (...) {
    zerva::ProcessTable::instance().removeObject(this, nullptr);
    throw;
  }
}

void Process::State::start(int argc, char** argv, char** envp, char* directory) {
  const bool named = argc > 0 && argv != nullptr && argv[0] != nullptr;
  const std::string program = named ? argv[0] : "";
  // Made before it runs: one that nobody knows nobody would ever end.
  zerva::ProcessTable::Place place(program);
  int id = 0;
  const int error = named ? zerva::startProcess(argv, envp, directory, id) : EINVAL;
  if (error == 0) {
    child = zerva::ProcessTable::instance().addChild(std::move(place), id);
    return;
  }
  logAppUni(kModule, kSource, kError, __LINE__, "The program '%s' cannot be started%s%s: %s",
            program.c_str(), directory == nullptr ? "" : " in ",
            directory == nullptr ? "" : directory, std::generic_category().message(error).c_str());
}

Process::~Process() { zerva::ProcessTable::instance().removeObject(this, state_->child); }

int Process::ID() { return state_->child == nullptr ? 0 : state_->child->status().id; }
