#include "host/completion/CommandPaths.h"

namespace zerva {

std::vector<std::pair<std::string, const CommandDescription*>> commandPaths(
    const CommandDescription& command, const std::string& before) {
  const std::string path = before.empty() ? command.name : before + " " + command.name;
  std::vector<std::pair<std::string, const CommandDescription*>> paths{{path, &command}};
  for (const CommandDescription& below : command.commands) {
    const auto more = commandPaths(below, path);
    paths.insert(paths.end(), more.begin(), more.end());
  }
  return paths;
}

std::string stepsInto(const CommandDescription& command, const std::string& variable) {
  std::string text;
  for (const auto& [path, what] : commandPaths(command)) {
    if (what == &command) continue;
    std::string quoted = "'";
    quoted.append(path).append("'");
    text.append("      ").append(quoted).append(") ").append(variable).append("=");
    text.append(quoted).append(" ;;\n");
  }
  return text;
}

std::string quotedHelp(const std::string& help) {
  std::string quoted = "'";
  for (const char character : help.substr(0, help.find(';'))) {
    // Colons end the name in some shells, and quotes the text.
    quoted += character == '\'' || character == ':' ? ' ' : character;
  }
  return quoted + "'";
}

std::string wordList(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string optionsThatTake(const CommandDescription& command, ValueKind kind) {
  std::string names;
  for (const OptionDescription& option : command.options) {
    if (option.value == kind) names += (names.empty() ? "" : "|") + option.name;
  }
  return names;
}

}  // namespace zerva
