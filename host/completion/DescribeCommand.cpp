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

/** The words that a parser takes, which it writes as "{one,another}" behind the type. */
std::vector<std::string> choicesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t begin = type.find('{');
  const std::size_t end = type.find('}', begin);
  if (end == std::string::npos) return {};
  return CLI::detail::split(type.substr(begin + 1, end - begin - 1), ',');
}

}  // namespace

CommandDescription describeCommand(const CLI::App& app) {
  CommandDescription command;
  command.name = app.get_name();
  command.help = app.get_description();
  for (const CLI::Option* option : app.get_options()) {
    if (option->nonpositional()) {
      OptionDescription described{"", option->get_description(), kindOf(*option),
                                  choicesOf(*option)};
      for (const std::string& name : option->get_snames()) {
        described.name = "-" + name;
        command.options.push_back(described);
      }
      for (const std::string& name : option->get_lnames()) {
        described.name = "--" + name;
        command.options.push_back(described);
      }
    } else {
      if (command.words.empty()) command.choices = choicesOf(*option);
      command.words.push_back(kindOf(*option));
    }
  }
  // One without a group is for the program itself; no help names it.
  for (const CLI::App* below :
       app.get_subcommands([](const CLI::App* each) { return !each->get_group().empty(); })) {
    command.commands.push_back(describeCommand(*below));
  }
  return command;
}

}  // namespace zerva
