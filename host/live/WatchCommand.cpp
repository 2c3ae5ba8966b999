#include <CLI/CLI.hpp>
#include <memory>

#include "host/live/LiveCommandLine.h"
#include "host/live/LiveVerbs.h"
#include "host/live/Looking.h"

namespace zerva {

void addWatch(CLI::App& app, Verb& verb) {
  CLI::App* command =
      app.add_subcommand("watch", "Show what status shows again and again, until a signal");
  command->footer(
      "A service is stuck when something is queued and nothing was taken between two looks. The "
      "last look gives the exit code.\n\n" +
      describeStatusExits());
  const auto options = std::make_shared<LookOptions>();
  command->add_option("NAME", options->name, "As for status");
  addBusOption(*command, options->bus);
  command->add_flag("--json", options->json, "Write it as JSON");
  addSeconds(*command, "--timeout", options->timeout,
             "How long a process has for its answer; default: 2");
  addSeconds(*command, "--every", options->every, "From one look to the next; default: 2");
  command->add_option("--count", options->count, "End after so many looks; default: never")
      ->type_name("NUMBER")
      ->check(CLI::PositiveNumber.description(""));
  command->callback(
      [options, &verb] { verb = [options] { return static_cast<int>(watch(*options)); }; });
}

}  // namespace zerva
