#include "host/completion/CommandPaths.h"
#include "host/completion/Completion.h"

namespace zerva {
namespace {

/** A function that says whether a command, and none that is below it, was written so far. */
std::string position(const CommandDescription& command) {
  std::string text = "function __" + command.name +
                     "_at\n"
                     "  set -l at " +
                     command.name +
                     "\n"
                     "  set -l words (commandline -opc)\n"
                     "  for word in $words[2..]\n"
                     "    switch \"$at $word\"\n";
  for (const auto& [path, what] : commandPaths(command)) {
    if (what == &command) continue;
    text.append("      case '").append(path).append("'\n        set at '").append(path + "'\n");
  }
  return text +
         "    end\n"
         "  end\n"
         "  test \"$at\" = \"$argv\"\n"
         "end\n";
}

std::string value(const OptionDescription& option) {
  if (!option.choices.empty()) return " -x -a '" + wordList(option.choices) + "'";
  switch (option.value) {
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
                     " completion fish`\n" + position(command);
  for (const auto& [path, what] : commandPaths(command)) {
    const std::string begin =
        "complete -c " + command.name + " -n '__" + command.name + "_at " + path + "'";
    const bool takesFiles = !what->words.empty() && what->words.front() == ValueKind::File;
    if (!takesFiles) text += begin + " -f\n";
    for (const CommandDescription& below : what->commands) {
      text += begin + " -a " + below.name + " -d " + quotedHelp(below.help) + "\n";
    }
    for (const std::string& choice : what->choices)
      text.append(begin).append(" -a ").append(choice + "\n");
    for (const OptionDescription& option : what->options) {
      text += begin + flag(option.name) + value(option) + " -d " + quotedHelp(option.help) + "\n";
    }
  }
  for (const std::string bits : {"32", "64"}) {
    text += "complete -c " + command.name + bits + " -w " + command.name + "\n";
  }
  return text;
}

}  // namespace zerva
