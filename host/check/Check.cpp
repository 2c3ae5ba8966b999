#include "host/check/Check.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <utility>

#include "host/Printing.h"
#include "host/check/CheckReport.h"
#include "host/check/LibraryLoad.h"
#include "host/check/LibraryTree.h"
#include "host/check/LibraryUse.h"
#include "host/check/LookedUp.h"
#include "host/check/ProgramSearch.h"
#include "host/check/ReadFile.h"
#include "host/check/RuleTable.h"
#include "host/check/TargetPlaces.h"
#include "host/trace/TraceReader.h"

namespace zerva {
namespace {

void complain(const std::string& text) { std::fprintf(stderr, "zerva: %s\n", text.c_str()); }

/** Opens libraries for real, each with each creator once. */
class Loader {
 public:
  explicit Loader(const CheckOptions& options, std::vector<std::string> directories)
      : options_(options), directories_(std::move(directories)) {}

  void load(LibraryUse& use) {
    // What was found wrong without opening it is told by other rules.
    if (use.fault != LibraryFault::None || !use.missing.empty() || !use.undefined.empty()) return;
    if (use.creator == CreatorFault::NotFound) return;
    const LoadOptions wanted{use.line->library().text, use.line->creator().text, directories_};
    const auto [at, isNew] = results_.try_emplace({wanted.library, wanted.creator});
    if (isNew) at->second = loadForReal("/proc/self/exe", wanted, options_.loadTimeout);
    use.loadFault = at->second;
  }

 private:
  const CheckOptions& options_;
  const std::vector<std::string> directories_;
  std::map<std::pair<std::string, std::string>, std::string> results_;
};

/** What all files are looked over with. */
struct Surroundings {
  std::optional<LibraryTree> tree;
  std::optional<ProgramSearch> programs;
  std::optional<Loader> loader;
  std::optional<std::set<std::string>> lookedUp;
};

/** @returns whether the traces could be read; if not, it was told which one could not. */
bool readTraces(const CheckOptions& options, Surroundings& surroundings) {
  for (const std::string& trace : options.traces) {
    try {
      const LookedUp run = readLookedUp(trace);
      if (run.lost > 0) {
        complain(trace + ": " + std::to_string(run.lost) +
                 " events are missing: what nobody seems to have looked up may have been");
      }
      if (!surroundings.lookedUp) surroundings.lookedUp.emplace();
      surroundings.lookedUp->insert(run.interfaces.begin(), run.interfaces.end());
    } catch (const TraceError& error) {
      complain(error.what());
      return false;
    }
  }
  return true;
}

/** @returns whether all of it could be read; if not, it was told what could not. */
bool prepare(const CheckOptions& options, Surroundings& surroundings) {
  if (!readTraces(options, surroundings)) return false;
  if (!options.libraries) return true;
  surroundings.tree.emplace(targetPlaces(options));
  surroundings.programs.emplace(surroundings.tree->places().root, programPath(options));
  if (options.load) {
    surroundings.loader.emplace(options, surroundings.tree->places().hostDirectories);
  }
  return true;
}

void lookAtLibraries(CheckSubject& subject, Surroundings& surroundings) {
  if (!surroundings.tree) return;
  lookIntoLibraries(subject, *surroundings.tree);
  if (!surroundings.loader) return;
  for (LibraryUse& use : subject.libraries) surroundings.loader->load(use);
}

/** The files that could be read: each for itself, or all of them in one. */
std::deque<CheckSubject> readSubjects(const CheckOptions& options, bool& complete) {
  std::deque<CheckSubject> subjects;
  for (const std::string& path : options.files) {
    errno = 0;
    auto file = readCheckedFile(path);
    if (!file) {
      complain(path + ": " + std::strerror(errno));
      complete = false;
      continue;
    }
    if (subjects.empty() || !options.together) subjects.emplace_back();
    subjects.back().files.push_back(std::move(*file));
  }
  return subjects;
}

SourceLines linesOf(const std::deque<CheckSubject>& subjects) {
  SourceLines lines;
  for (const CheckSubject& subject : subjects) {
    for (const CheckedFile& file : subject.files) {
      for (const ParsedLine& line : file.lines) lines[{file.path, line.number()}] = line.text();
    }
  }
  return lines;
}

std::vector<Finding> findAll(const CheckOptions& options, std::deque<CheckSubject>& subjects,
                             Surroundings& surroundings) {
  std::vector<Finding> all;
  for (CheckSubject& subject : subjects) {
    subject.lookedUp = surroundings.lookedUp;
    subject.programs = surroundings.programs ? &*surroundings.programs : nullptr;
    lookAtLibraries(subject, surroundings);
    for (Finding& finding : lookOver(subject)) {
      if (!options.ignored.contains(finding.code)) all.push_back(std::move(finding));
    }
  }
  return all;
}

}  // namespace

const char* describeCheckExits() {
  return "Exit codes:\n"
         "  0  no error was found, and with --strict no warning\n"
         "  1  errors were found, or with --strict warnings\n"
         "  2  the command line was not understood, a file could not be read, what was found\n"
         "     could not be printed, or an unexpected error\n";
}

CheckExit check(const CheckOptions& options) {
  if (options.listCodes) {
    return print(describeRules()) ? CheckExit::Good : CheckExit::NotDone;
  }
  Surroundings surroundings;
  if (!prepare(options, surroundings)) return CheckExit::NotDone;
  bool complete = true;
  std::deque<CheckSubject> subjects = readSubjects(options, complete);
  const std::vector<Finding> findings = findAll(options, subjects, surroundings);
  const ReportStyle style = styleOfStandardOutput();
  const std::string report =
      options.json
          ? reportAsJson(findings)
          : reportAsText(findings, style.carets ? linesOf(subjects) : SourceLines(), style);
  if (!print(report)) return CheckExit::NotDone;
  if (!complete) return CheckExit::NotDone;
  const bool bad = count(findings, Severity::Error) > 0 ||
                   (options.strict && count(findings, Severity::Warning) > 0);
  return bad ? CheckExit::Bad : CheckExit::Good;
}

}  // namespace zerva
