#include "framework/Process.h"

#include <unistd.h>

#include <string>
#include <vector>

#include "tests/fakes/Platform.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"

using zerva::fakes::Objects;

struct Process::State {};

Process::Process(int argc, char** argv, char** envp, char* directory) {
  std::vector<std::string> arguments{std::to_string(argc)};
  for (int i = 0; argv[i] != nullptr; ++i) arguments.push_back(zerva::fakes::inQuotes(argv[i]));
  arguments.push_back("null");
  arguments.push_back(envp == environ ? "environ" : "another environment");
  arguments.push_back(directory == nullptr ? "null" : zerva::fakes::inQuotes(directory));
  zerva::fakes::constructed(this, "Process", arguments);
}

Process::~Process() { Objects::died(this); }

int Process::ID() {
  constexpr long kFirstId = 100;
  const std::string call = Objects::name(this) + ".ID(";
  zerva::fakes::called(this, "ID", {});
  return static_cast<int>(zerva::fakes::Platform::answerOf(call, kFirstId));
}
