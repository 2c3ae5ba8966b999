#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <utility>

#include "host/live/Calling.h"
#include "host/live/LiveCommandLine.h"
#include "host/live/LiveVerbs.h"

namespace zerva {
namespace {

/** Shows that more words may follow, which the parser itself does not know. */
class WithArguments final : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* app, std::string name) const override {
    std::string usage = Formatter::make_usage(app, std::move(name));
    return usage.insert(usage.find_last_not_of('\n') + 1, " [ARGUMENT...]");
  }
};

}  // namespace

void addCall(CLI::App& app, Verb& verb) {
  CLI::App* command =
      app.add_subcommand("call", "Make one call of a service on a bus, and print what it answers");
  command->formatter(std::make_shared<WithArguments>());
  command->footer(
      "Whatever stands behind METHOD is an argument. An argument is TYPE=VALUE or NAME:TYPE=VALUE "
      "with a type of bool, integer, real, text, bytes (hexadecimal digits) and list (as in JSON); "
      "without a type its form tells: true, 3, 3.0, [1, \"a\"], and a text otherwise. A name is "
      "for the reader; arguments go by their order.\n"
      "The call is made in the protocol zerva_svc_xml, for which an invoker of the interface has "
      "to be recorded.\n\n" +
      describeCallExits());
  const auto options = std::make_shared<CallOptions>();
  addBusOption(*command, options->bus);
  command->add_flag("--json", options->json, "Write the answer as JSON");
  addSeconds(*command, "--timeout", options->timeout,
             "How long a request waits for its answer; default: 10");
  command->add_option("INTERFACE", options->interface, "What is called")->required();
  command->add_option("METHOD", options->method, "Which of its methods")->required();
  // As they stand: brackets mean a list to the service and nothing to the command line.
  command->prefix_command();
  command->callback([command, options, &verb] {
    options->arguments = command->remaining();
    verb = [options] { return static_cast<int>(call(*options)); };
  });
}

}  // namespace zerva
