#include "host/explain/Explain.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <utility>

#include "host/Printing.h"
#include "host/check/LibraryUse.h"
#include "host/check/ProgramSearch.h"
#include "host/check/ReadFile.h"
#include "host/check/TargetPlaces.h"
#include "host/explain/ExplainReport.h"
#include "host/explain/ExplanationSum.h"
#include "host/explain/Selection.h"

namespace zerva {
namespace {

ExplainExit complain(const std::string& text) {
  std::fprintf(stderr, "zerva: %s\n", text.c_str());
  return ExplainExit::NotDone;
}

ExplainExit explainSubject(const CheckSubject& subject, const ExplainOptions& options) {
  const FileExplanation file = explainFile(subject);
  const auto selected = selectLines(file, options.wanted);
  if (const auto* why = std::get_if<std::string>(&selected)) return complain(*why);
  const auto& lines = std::get<std::vector<LineExplanation>>(selected);
  const std::string report =
      options.json ? explanationAsJson(file, lines) : explanationAsText(file, lines);
  if (!print(report)) return ExplainExit::NotDone;
  return sumOf(lines).isGood() ? ExplainExit::Good : ExplainExit::Bad;
}

}  // namespace

const char* describeExplainExits() {
  return "Exit codes:\n"
         "  0  each line that was explained does what it asks for\n"
         "  1  one of them does not: it fails, is skipped, or is not read\n"
         "  2  nothing was explained: the command line was not understood, the file could not be\n"
         "     read, nothing in it has that number or name, it could not be printed, or an\n"
         "     unexpected error\n";
}

ExplainExit explain(const ExplainOptions& options) {
  errno = 0;
  auto file = readCheckedFile(options.file);
  if (!file) return complain(options.file + ": " + std::strerror(errno));
  if (!file->unreadable.empty()) return complain(options.file + ": " + file->unreadable);
  CheckSubject subject;
  subject.files.push_back(std::move(*file));
  std::optional<LibraryTree> tree;
  std::optional<ProgramSearch> programs;
  if (options.target.libraries) {
    tree.emplace(targetPlaces(options.target));
    lookIntoLibraries(subject, *tree);
    programs.emplace(tree->places().root, programPath(options.target));
    subject.programs = &*programs;
  }
  return explainSubject(subject, options);
}

}  // namespace zerva
