#include "host/completion/CommandPaths.h"
#include "host/completion/Completion.h"

namespace zerva {
namespace {

/** What holds when this command, and none that is below it, was written. */
std::string condition(const std::string& path, const CommandDescription& command) {
  const std::size_t blank = path.rfind(' ');
  std::string text = blank == std::string::npos
                         ? std::string()
                         : "__fish_seen_subcommand_from " + path.substr(blank + 1);
  if (!command.commands.empty()) {
    text += text.empty() ? "" : "; and ";
    text += "not __fish_seen_subcommand_from";
    for (const CommandDescription& below : command.commands) text += " " + below.name;
  }
  return text;
}

std::string value(ValueKind kind) {
  switch (kind) {
    case ValueKind::None:
      return "";
    case ValueKind::Other:
      return " -x";
    case ValueKind::File:
      return " -r -F";
    case ValueKind::Directory:
      return " -x -a '(__fish_complete_directories)'";
  }
  return "";
}

/** A long option, or one of one letter. */
std::string flag(const std::string& name) {
  return name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
}

}  // namespace

std::string fishCompletion(const CommandDescription& command) {
  std::string text = "# fish completion for " + command.name + ", written by `" + command.name +
                     " completion fish`\n";
  for (const auto& [path, what] : commandPaths(command)) {
    const std::string begin =
        "complete -c " + command.name + " -n '" + condition(path, *what) + "'";
    const bool takesFiles = !what->words.empty() && what->words.front() == ValueKind::File;
    if (!takesFiles) text += begin + " -f\n";
    for (const CommandDescription& below : what->commands) {
      text += begin + " -a " + below.name + " -d " + quotedHelp(below.help) + "\n";
    }
    for (const std::string& choice : what->choices)
      text.append(begin).append(" -a ").append(choice + "\n");
    for (const OptionDescription& option : what->options) {
      text +=
          begin + flag(option.name) + value(option.value) + " -d " + quotedHelp(option.help) + "\n";
    }
  }
  return text;
}

}  // namespace zerva
