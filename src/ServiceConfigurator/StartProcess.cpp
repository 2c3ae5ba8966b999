#include "src/ServiceConfigurator/StartProcess.h"

#include <unistd.h>

#include <cstddef>

#include "framework/Process.h"
#include "framework/ZervaVersion.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"

namespace zerva {

namespace {

std::vector<std::string> argumentsOf(const std::vector<std::string>& tokens) {
  std::vector<std::string> arguments;
  for (std::size_t index = 1; index < tokens.size(); ++index) {
    if (!tokens[index].empty()) {
      arguments.push_back(tokens[index]);
    }
  }
  return arguments;
}

}  // namespace

void startProcess(const std::vector<std::string>& tokens) {
  std::vector<std::string> arguments = argumentsOf(tokens);
  if (arguments.empty()) {
    CONFIGURATOR_LOG_ERROR("ServiceConfiguratr::Empty 'start_process' directive was received");
    return;
  }
  arguments.push_back(ZervaVersion());

  std::vector<char*> argv;
  for (std::string& argument : arguments) {
    argv.push_back(argument.data());
  }
  argv.push_back(nullptr);

  // Nobody's: it is never deleted, and the platform reaps the process.
  auto* process = new Process(static_cast<int>(arguments.size()), argv.data(), environ, nullptr);
  if (process->ID() > 0) {
    CONFIGURATOR_LOG_PROGRESS("start_process successfully started: '%s'",
                              arguments.front().c_str());
  } else {
    CONFIGURATOR_LOG_ERROR("start_process failed to start process: '%s'",
                           arguments.front().c_str());
  }
}

}  // namespace zerva
