#include "host/explain/ExplainCommand.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <memory>

#include "host/Complaint.h"
#include "host/check/TargetOptions.h"
#include "host/explain/Explain.h"

namespace zerva {

void addExplain(CLI::App& app, Verb& verb) {
  CLI::App* command = app.add_subcommand(
      "explain", "Say in words what the lines of a directive file do, and start nothing of it");
  command->footer(describeExplainExits());
  const auto options = std::make_shared<ExplainOptions>();
  command->add_option("FILE", options->file, "The directive file")->required();
  command->add_option("LINE|NAME", options->wanted,
                      "Only this line, or those that have this interface, channel, library, "
                      "creator or program");
  command->add_flag("--json", options->json, "Write it as JSON");
  addTargetOptions(*command, options->target);
  command->callback([options, &verb] {
    verb = [options] {
      try {
        return static_cast<int>(explain(*options));
      } catch (const std::exception& error) {
        // The code of the program for that is the one for lines that do not do what they ask for.
        complain(error.what());
      }
      return static_cast<int>(ExplainExit::NotDone);
    };
  });
}

}  // namespace zerva
