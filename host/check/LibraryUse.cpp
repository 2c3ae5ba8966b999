#include "host/check/LibraryUse.h"

#include <cxxabi.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <memory>
#include <set>

#include "host/check/CheckSubject.h"
#include "host/check/LibraryTree.h"
#include "host/check/NearMiss.h"

namespace zerva {
namespace {

/** A library on the way through all that is needed, with what needs it. */
struct Opened {
  const FoundLibrary* library;
  std::vector<const FoundLibrary*> chain;
};

std::string fileName(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

void fail(LibraryUse& use, LibraryFault fault, const std::string& why) {
  use.fault = fault;
  use.why = why;
}

/** @returns the library, when it can be opened as far as it alone is concerned. */
const FoundLibrary* openItself(LibraryUse& use, const LibraryTree& tree) {
  const std::string& name = use.line->library().text;
  const auto path = tree.find(name);
  if (!path) {
    fail(use, LibraryFault::NotFound,
         name.find('/') == std::string::npos ? "is in none of the directories that are searched"
                                             : "is not there");
    use.suggestion = nearMiss(name, tree.names());
    return nullptr;
  }
  use.path = *path;
  const FoundLibrary* found = tree.read(*path);
  if (found == nullptr || access(tree.realPath(*path).c_str(), R_OK) != 0) {
    fail(use, LibraryFault::Unreadable, "cannot be read");
    return nullptr;
  }
  if (const auto* error = std::get_if<ElfError>(&found->content)) {
    const bool notElf = error->kind == ElfError::Kind::NotElf;
    fail(use, notElf ? LibraryFault::NotElf : LibraryFault::Broken,
         notElf ? "is no ELF file" : "is damaged: " + error->text);
    return nullptr;
  }
  const ElfFile& file = *found->file();
  if (file.kind != tree.places().kind) {
    fail(use, LibraryFault::WrongMachine,
         "is for " + describe(file.kind) + ", and the host for " + describe(tree.places().kind));
    return nullptr;
  }
  if (!file.isLibrary) {
    fail(use, LibraryFault::NotALibrary, "is an ELF file, but no shared library");
    return nullptr;
  }
  return found;
}

/** Opens what is needed, in the loader's order; @returns everything that was opened. */
std::vector<const FoundLibrary*> openNeeded(LibraryUse& use, const FoundLibrary& first,
                                            const LibraryTree& tree) {
  std::set<std::string> known = tree.places().loaded;
  std::vector<const FoundLibrary*> all;
  std::deque<Opened> ahead = {{&first, {&first}}};
  while (!ahead.empty()) {
    const Opened current = ahead.front();
    ahead.pop_front();
    all.push_back(current.library);
    known.insert(current.library->file()->soname);
    for (const std::string& name : current.library->file()->needed) {
      if (!known.insert(name).second) continue;
      const auto path = tree.findNeeded(name, current.chain);
      const FoundLibrary* found = path ? tree.read(*path) : nullptr;
      if (found == nullptr || found->file() == nullptr) {
        use.missing.push_back(
            {name, fileName(current.library->path),
             found == nullptr ? "is in none of the directories that are searched" : "is damaged"});
        continue;
      }
      Opened next{found, {found}};
      next.chain.insert(next.chain.end(), current.chain.begin(), current.chain.end());
      ahead.push_back(next);
    }
  }
  return all;
}

/** Whether this is how C++ calls a function of that name that is not `extern "C"`. */
bool isMangled(const std::string& symbol, const std::string& name) {
  const std::string part = std::to_string(name.size()) + name;
  return symbol.rfind("_Z", 0) == 0 && symbol.find(part) != std::string::npos;
}

void lookForCreator(LibraryUse& use, const std::vector<const FoundLibrary*>& opened) {
  const std::string& creator = use.line->creator().text;
  if (creator.empty()) return;
  // As the loader does, in all that the library needs too.
  for (const FoundLibrary* library : opened) {
    const auto found = library->file()->exported.find(creator);
    if (found == library->file()->exported.end()) continue;
    if (!found->second) use.creator = CreatorFault::NotAFunction;
    return;
  }
  use.creator = CreatorFault::NotFound;
  std::vector<std::string> names;
  for (const auto& [symbol, isFunction] : opened.front()->file()->exported) {
    use.mangled = use.mangled || isMangled(symbol, creator);
    if (isFunction) names.push_back(symbol);
  }
  if (!use.mangled) use.creatorSuggestion = nearMiss(creator, names);
}

std::string demangled(const std::string& symbol) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> text(
      abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status), &std::free);
  return status == 0 ? text.get() : symbol;
}

/** All that is used has to be there when a library is opened: in the host, or in what is needed. */
void lookForSymbols(LibraryUse& use, const std::vector<const FoundLibrary*>& opened,
                    const LibraryTree& tree) {
  const std::set<std::string>* host = tree.hostExports();
  if (host == nullptr) return;
  const auto isThere = [&](const std::string& symbol) {
    if (host->contains(symbol)) return true;
    for (const FoundLibrary* library : opened) {
      if (library->file()->exported.contains(symbol)) return true;
    }
    return false;
  };
  for (const FoundLibrary* library : opened) {
    // In the order of the names: that of the file depends on how it was compiled.
    std::set<std::string> names;
    for (const std::string& symbol : library->file()->undefined) {
      if (!isThere(symbol)) names.insert(demangled(symbol));
    }
    for (const std::string& name : names) use.undefined.push_back({name, fileName(library->path)});
  }
}

/** Others cannot take a file away from a directory with this bit. */
bool othersMayReplace(const struct stat& status) {
  return (status.st_mode & S_IWOTH) != 0 &&
         !(S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0);
}

std::string writableByOthers(const std::string& path, const LibraryTree& tree) {
  const std::string root = tree.places().root;
  std::error_code error;
  std::filesystem::path at = std::filesystem::canonical(tree.realPath(path), error);
  while (!error && !at.empty() && at.string().size() > root.size()) {
    struct stat status {};
    if (stat(at.c_str(), &status) == 0 && othersMayReplace(status)) return at.string();
    if (at == at.parent_path()) break;
    at = at.parent_path();
  }
  return {};
}

}  // namespace

LibraryUse lookIntoLibrary(const CheckedFile& file, const ParsedLine& line,
                           const LibraryTree& tree) {
  LibraryUse use;
  use.file = &file;
  use.line = &line;
  const FoundLibrary* library = openItself(use, tree);
  if (!use.path.empty()) use.writable = writableByOthers(use.path, tree);
  if (library == nullptr) return use;
  const std::vector<const FoundLibrary*> opened = openNeeded(use, *library, tree);
  for (const FoundLibrary* needed : opened) {
    if (!use.writable.empty()) break;
    use.writable = writableByOthers(needed->path, tree);
  }
  // What is not there might have what is looked for.
  if (!use.missing.empty()) return use;
  lookForCreator(use, opened);
  lookForSymbols(use, opened, tree);
  return use;
}

void lookIntoLibraries(CheckSubject& subject, const LibraryTree& tree) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if ((!line.isService() && !line.isRecord()) || line.library().empty()) return;
    subject.libraries.push_back(lookIntoLibrary(file, line, tree));
  });
}

std::vector<std::string> programAndLibraries(const std::string& program, const LibraryTree& tree) {
  const FoundLibrary* first = tree.read(program);
  // One that is linked with nothing, or in the older way, says nothing of what it has loaded.
  if (first == nullptr || first->file() == nullptr || first->file()->needed.empty()) return {};
  LibraryUse use;
  std::vector<std::string> paths;
  for (const FoundLibrary* opened : openNeeded(use, *first, tree)) paths.push_back(opened->path);
  return use.missing.empty() ? paths : std::vector<std::string>();
}

}  // namespace zerva
