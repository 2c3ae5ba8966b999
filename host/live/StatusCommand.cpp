#include <CLI/CLI.hpp>
#include <memory>

#include "host/live/LiveCommandLine.h"
#include "host/live/LiveVerbs.h"
#include "host/live/Looking.h"

namespace zerva {

void addStatus(CLI::App& app, Verb& verb) {
  CLI::App* command =
      app.add_subcommand("status", "Show the processes of a bus and how their services are");
  command->footer(
      "A process tells how it is when it was started by run --status, or by one that was.\n\n" +
      describeStatusExits());
  const auto options = std::make_shared<LookOptions>();
  command->add_option("NAME", options->name,
                      "Show all that is known of the service with this interface or channel");
  addBusOption(*command, options->bus);
  command->add_flag("--json", options->json, "Write it as JSON");
  addSeconds(*command, "--timeout", options->timeout,
             "How long a process has for its answer; default: 2");
  addSeconds(*command, "--patience", options->patience,
             "When something is queued: look again after this time, and call a service stuck of "
             "which nothing was taken meanwhile; default: 0.5");
  command->callback(
      [options, &verb] { verb = [options] { return static_cast<int>(look(*options)); }; });
}

}  // namespace zerva
