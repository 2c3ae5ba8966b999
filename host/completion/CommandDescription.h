#pragma once

#include <string>
#include <vector>

namespace zerva {

/** What an argument or the value of an option is. */
enum class ValueKind { None, Other, File, Directory };

/** An option of the command line. */
struct OptionDescription {
  /** With its dashes. */
  std::string name;
  std::string help;
  ValueKind value = ValueKind::None;
  /** What its value can be, where that is known. */
  std::vector<std::string> choices;
};

/** A command as its own parser knows it, with what may come after it. */
struct CommandDescription {
  std::string name;
  std::string help;
  std::vector<OptionDescription> options;
  /** Words that stand for a command of their own. */
  std::vector<CommandDescription> commands;
  /** What the words are that are no option. */
  std::vector<ValueKind> words;
  /** What the first of these words can be, where that is known. */
  std::vector<std::string> choices;
};

}  // namespace zerva
