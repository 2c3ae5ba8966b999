#include "host/completion/DescribeCommand.h"

#include <CLI/CLI.hpp>

namespace zerva {
namespace {

ValueKind kindOf(const CLI::Option& option) {
  if (option.get_items_expected_max() == 0) return ValueKind::None;
  const std::string type = option.get_type_name();
  const std::string name = option.get_name();
  if (type == "DIR") return ValueKind::Directory;
  if (type == "PATH" || type == "FILE" || name == "FILE") return ValueKind::File;
  return ValueKind::Other;
}

}  // namespace

CommandDescription describeCommand(const CLI::App& app) {
  CommandDescription command;
  command.name = app.get_name();
  command.help = app.get_description();
  for (const CLI::Option* option : app.get_options()) {
    if (option->nonpositional()) {
      for (const std::string& name : option->get_snames()) {
        command.options.push_back({"-" + name, option->get_description(), kindOf(*option)});
      }
      for (const std::string& name : option->get_lnames()) {
        command.options.push_back({"--" + name, option->get_description(), kindOf(*option)});
      }
    } else {
      command.words.push_back(kindOf(*option));
    }
  }
  for (const CLI::App* below : app.get_subcommands([](const CLI::App*) { return true; })) {
    command.commands.push_back(describeCommand(*below));
  }
  return command;
}

}  // namespace zerva
