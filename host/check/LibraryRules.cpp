#include "host/check/LibraryRules.h"

#include <filesystem>
#include <set>

#include "host/check/LibraryUse.h"

namespace zerva {
namespace {

void addFault(const CheckSubject& subject, Findings& findings, LibraryFault fault) {
  for (const LibraryUse& use : subject.libraries) {
    if (use.fault != fault) continue;
    const Word& word = use.line->library();
    const bool elsewhere = !use.path.empty() && use.path != word.text;
    findings.add(*use.file, *use.line, word,
                 "the library " + quoted(word.text) + (elsewhere ? " (" + use.path + ") " : " ") +
                     use.why + ".",
                 use.suggestion);
  }
}

void notFound(const CheckSubject& subject, Findings& findings) {
  addFault(subject, findings, LibraryFault::NotFound);
}

void unreadable(const CheckSubject& subject, Findings& findings) {
  addFault(subject, findings, LibraryFault::Unreadable);
}

void notElf(const CheckSubject& subject, Findings& findings) {
  addFault(subject, findings, LibraryFault::NotElf);
}

void broken(const CheckSubject& subject, Findings& findings) {
  addFault(subject, findings, LibraryFault::Broken);
}

void notALibrary(const CheckSubject& subject, Findings& findings) {
  addFault(subject, findings, LibraryFault::NotALibrary);
}

void wrongMachine(const CheckSubject& subject, Findings& findings) {
  addFault(subject, findings, LibraryFault::WrongMachine);
}

void neededNotFound(const CheckSubject& subject, Findings& findings) {
  for (const LibraryUse& use : subject.libraries) {
    const Word& word = use.line->library();
    for (const NeededLibrary& missing : use.missing) {
      const bool direct = missing.neededBy == std::filesystem::path(use.path).filename().string();
      findings.add(*use.file, *use.line, word,
                   quoted(missing.name) + ", which " +
                       quoted(direct ? word.text : missing.neededBy) + " needs, " + missing.why +
                       ".");
    }
  }
}

void symbolNotFound(const CheckSubject& subject, Findings& findings) {
  for (const LibraryUse& use : subject.libraries) {
    if (use.undefined.empty()) continue;
    const UndefinedSymbol& first = use.undefined.front();
    const std::size_t more = use.undefined.size() - 1;
    findings.add(*use.file, *use.line, use.line->library(),
                 quoted(first.usedBy) + " uses " + quoted(first.name) +
                     (more == 0 ? "" : " and " + std::to_string(more) + " more") +
                     ", which neither the host nor any library that is needed has.");
  }
}

void creatorNotFound(const CheckSubject& subject, Findings& findings) {
  for (const LibraryUse& use : subject.libraries) {
    if (use.creator != CreatorFault::NotFound) continue;
    const Word& word = use.line->creator();
    findings.add(
        *use.file, *use.line, word,
        "the library " + quoted(use.line->library().text) + " does not export " +
            quoted(word.text) +
            (use.mangled ? ", only a C++ function of that name: it is not extern \"C\"." : "."),
        use.creatorSuggestion);
  }
}

void creatorNotAFunction(const CheckSubject& subject, Findings& findings) {
  for (const LibraryUse& use : subject.libraries) {
    if (use.creator != CreatorFault::NotAFunction) continue;
    const Word& word = use.line->creator();
    findings.add(*use.file, *use.line, word,
                 quoted(word.text) + " of the library " + quoted(use.line->library().text) +
                     " is no function: calling it ends the process.");
  }
}

void writable(const CheckSubject& subject, Findings& findings) {
  std::set<std::string> told;
  for (const LibraryUse& use : subject.libraries) {
    if (use.writable.empty() || !told.insert(use.path).second) continue;
    findings.add(
        *use.file, *use.line, use.line->library(),
        "everybody may write to " + quoted(use.writable) + ", and so change what is run here.");
  }
}

void loadFailed(const CheckSubject& subject, Findings& findings) {
  for (const LibraryUse& use : subject.libraries) {
    if (use.loadFault.empty()) continue;
    const Word& word = use.line->library();
    findings.add(*use.file, *use.line, word,
                 "opening " + quoted(word.text) + " for real: " + use.loadFault + ".");
  }
}

}  // namespace

const std::vector<Rule>& libraryRules() {
  static const std::vector<Rule> rules = {
      {"library-not-found", Severity::Error, "a library that is not where libraries are looked for",
       notFound},
      {"library-unreadable", Severity::Error,
       "a library that cannot be read, or is no regular file", unreadable},
      {"library-not-elf", Severity::Error, "a library that is no ELF file", notElf},
      {"library-damaged", Severity::Error, "a library that is cut off or contradicts itself",
       broken},
      {"library-wrong-machine", Severity::Error,
       "a library for another word size or machine than the host's", wrongMachine},
      {"library-not-shared", Severity::Error, "a program or object file in the place of a library",
       notALibrary},
      {"needed-not-found", Severity::Error,
       "a library that another one needs, and that is not where the loader looks", neededNotFound},
      {"symbol-not-found", Severity::Error,
       "a library that uses something that nobody has, and so cannot be opened", symbolNotFound},
      {"creator-not-found", Severity::Error, "a creator that its library does not export",
       creatorNotFound},
      {"creator-not-function", Severity::Error, "a creator that is no function",
       creatorNotAFunction},
      {"library-writable", Severity::Warning,
       "a library that everybody may change or put another one in the place of", writable},
      {"load-failed", Severity::Error,
       "a library that could not be opened for real, hung or crashed (`--load` only)", loadFailed},
  };
  return rules;
}

}  // namespace zerva
