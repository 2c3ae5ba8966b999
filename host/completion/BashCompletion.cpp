#include "host/completion/CommandPaths.h"
#include "host/completion/Completion.h"

namespace zerva {
namespace {

/** What bash makes of a value that is to be completed. */
std::string action(ValueKind kind) {
  if (kind == ValueKind::Other || kind == ValueKind::None) return ":";
  const std::string flag = kind == ValueKind::File ? "-f" : "-d";
  return "compopt -o filenames; mapfile -t COMPREPLY < <(compgen " + flag + " -- \"$current\")";
}

/** What comes after a command: values of options, options, commands, words. */
std::string branch(const std::string& path, const CommandDescription& command) {
  std::string text = "    '" + path + "')\n      case $previous in\n";
  for (const OptionDescription& option : command.options) {
    if (option.choices.empty()) continue;
    text += "        " + option.name + ") mapfile -t COMPREPLY < <(compgen -W '" +
            wordList(option.choices) + "' -- \"$current\"); return ;;\n";
  }
  for (const ValueKind kind : {ValueKind::File, ValueKind::Directory, ValueKind::Other}) {
    const std::string names = optionsThatTake(command, kind);
    if (!names.empty()) text += "        " + names + ") " + action(kind) + "; return ;;\n";
  }
  text += "      esac\n      options='";
  for (const OptionDescription& option : command.options) text += option.name + " ";
  text += "'\n      commands='";
  for (const CommandDescription& below : command.commands) text += below.name + " ";
  for (const std::string& choice : command.choices) text += choice + " ";
  text += "'\n      words='";
  if (!command.words.empty() && command.words.front() == ValueKind::File) text += "-f";
  return text + "'\n      ;;\n";
}

}  // namespace

std::string bashCompletion(const CommandDescription& command) {
  const auto paths = commandPaths(command);
  std::string text =
      "# bash completion for " + command.name + ", written by `" + command.name +
      " completion bash`\n\n_" + command.name +
      "() {\n"
      "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
      "  local path='" +
      command.name +
      "' options='' commands='' words='' i\n"
      "  COMPREPLY=()\n"
      "  for ((i = 1; i < COMP_CWORD; ++i)); do\n"
      "    case \"$path ${COMP_WORDS[i]}\" in\n";
  text += stepsInto(command, "path");
  text += "    esac\n  done\n  case $path in\n";
  for (const auto& [path, what] : paths) text += branch(path, *what);
  text +=
      "  esac\n"
      "  if [[ $current == -* ]]; then\n"
      "    mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$current\")\n"
      "  elif [[ -n $commands ]]; then\n"
      "    mapfile -t COMPREPLY < <(compgen -W \"$commands\" -- \"$current\")\n"
      "  elif [[ -n $words ]]; then\n"
      "    compopt -o filenames\n"
      "    mapfile -t COMPREPLY < <(compgen \"$words\" -- \"$current\")\n"
      "  fi\n"
      "}\n"
      "complete -F _" +
      command.name + " " + command.name + " " + command.name + "32 " + command.name + "64\n";
  return text;
}

}  // namespace zerva
