#include "host/explain/ProgramExplanation.h"

#include "host/check/ProgramSearch.h"
#include "host/explain/Outlook.h"
#include "host/explain/Words.h"

namespace zerva {
namespace {

/** What is written; a mode counts as the program, and empty fields do not count. */
std::vector<std::string> argumentsOf(const ParsedLine& line) {
  std::vector<std::string> arguments;
  for (std::size_t at = 1; at < line.words().size(); ++at) {
    if (!line.words()[at].empty()) arguments.push_back(line.words()[at].text);
  }
  return arguments;
}

std::string argumentWords(std::vector<std::string> arguments) {
  arguments.erase(arguments.begin());
  if (arguments.empty()) return "Its only argument is the framework's version.";
  std::string text = "Its arguments are";
  for (const std::string& argument : arguments) text += " " + argument;
  return text + ", and last the framework's version.";
}

}  // namespace

LineExplanation explainProgram(const ParsedLine& line, const Outlook& outlook) {
  LineExplanation told;
  told.line = &line;
  const std::vector<std::string> arguments = argumentsOf(line);
  if (arguments.empty()) {
    told.outcome = Outcome::Failed;
    told.title = "starts nothing: no program is named";
    told.steps = {"An error in the log tells: \"Empty 'start_process' directive was received\"."};
    return told;
  }
  const std::string& program = arguments.front();
  if (outlook.programs() != nullptr) {
    told.path = outlook.programs()->find(program);
    if (told.path.empty()) {
      told.outcome = Outcome::Failed;
      told.title = "does not start the program " + program;
      told.steps = {
          "An error in the log tells: \"start_process failed to start process\". The next line "
          "follows."};
      return told;
    }
  }
  told.title = "starts the program " + program;
  told.steps = {
      "Runs " + (told.path.empty() ? program : told.path) + ", and does not wait for it.",
      argumentWords(arguments),
      "When the host ends, it ends the program: the one that was started last comes first."};
  return told;
}

}  // namespace zerva
