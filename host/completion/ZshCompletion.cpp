#include "host/completion/CommandPaths.h"
#include "host/completion/Completion.h"

namespace zerva {
namespace {

/** A list of names with what they mean, as `_describe` takes it. */
template <typename Described>
std::string described(const std::vector<Described>& list) {
  std::string text;
  for (const Described& one : list) {
    std::string help = quotedHelp(one.help);
    text += "        '" + one.name + ":" + help.substr(1) + "\n";
  }
  return text;
}

std::string branch(const std::string& path, const CommandDescription& command) {
  std::string text = "    '" + path + "')\n      case $words[CURRENT-1] in\n";
  for (const OptionDescription& option : command.options) {
    if (option.choices.empty()) continue;
    text += "        " + option.name + ") compadd -- " + wordList(option.choices) + "; return ;;\n";
  }
  for (const auto& [kind, action] :
       {std::pair{ValueKind::File, "_files"}, std::pair{ValueKind::Directory, "_files -/"},
        std::pair{ValueKind::Other, "_message value"}}) {
    const std::string names = optionsThatTake(command, kind);
    if (!names.empty()) text += "        " + names + ") " + action + "; return ;;\n";
  }
  text += "      esac\n      options=(\n" + described(command.options) + "      )\n";
  text += "      commands=(\n" + described(command.commands);
  for (const std::string& choice : command.choices) {
    text.append("        '").append(choice).append("'\n");
  }
  text += "      )\n      ;;\n";
  return text;
}

}  // namespace

std::string zshCompletion(const CommandDescription& command) {
  const std::string& name = command.name;
  const auto paths = commandPaths(command);
  std::string text = "#compdef " + name + " " + name + "32 " + name + "64\n";
  text += "# zsh completion for " + name + ", written by `" + name + " completion zsh`\n\n_" +
          name +
          "() {\n"
          // Not `path`: that is zsh's list of directories of programs.
          "  local at='" +
          name +
          "' i\n  local -a options commands\n"
          "  for ((i = 2; i < CURRENT; ++i)); do\n    case \"$at $words[i]\" in\n";
  text += stepsInto(command, "at");
  text += "    esac\n  done\n  case $at in\n";
  for (const auto& [path, what] : paths) text += branch(path, *what);
  return text +
         "  esac\n"
         "  if [[ $words[CURRENT] == -* ]]; then\n    _describe option options\n"
         "  elif (( $#commands )); then\n    _describe command commands\n"
         "  else\n    _files\n  fi\n}\n\n"
         "if [[ $funcstack[1] == _" +
         name + " ]]; then\n  _" + name + " \"$@\"\nelse\n  compdef _" + name + " " + name + " " +
         name + "32 " + name + "64\nfi\n";
}

}  // namespace zerva
