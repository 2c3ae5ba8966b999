#include "host/check/LibraryTree.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <utility>

#include "host/check/FileBytes.h"
#include "host/check/RootedPath.h"

namespace zerva {
namespace {

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
    text.replace(at, from.size(), to);
    at += to.size();
  }
}

}  // namespace

std::vector<std::string> splitPath(const std::string& list) {
  std::vector<std::string> parts;
  std::istringstream stream(list);
  for (std::string part; std::getline(stream, part, ':');) {
    parts.push_back(part.empty() ? "." : part);
  }
  return parts;
}

std::string directoryOf(const std::string& path) {
  const std::string directory = std::filesystem::path(path).parent_path().string();
  return directory.empty() ? "." : directory;
}

LibraryTree::LibraryTree(LibraryPlaces places)
    : places_(std::move(places)), loader_(readLoaderPlaces(places_.root, places_.kind)) {}

std::string LibraryTree::realPath(const std::string& path) const {
  return rootedPath(places_.root, path);
}

const FoundLibrary* LibraryTree::read(const std::string& path) const {
  auto& known = read_[path];
  if (known == nullptr) {
    const auto bytes = bytesOf(realPath(path));
    if (!bytes) return nullptr;
    known = std::make_unique<FoundLibrary>(FoundLibrary{path, readElf(*bytes)});
  }
  return known.get();
}

/** The loader passes over libraries for other machines, but not over broken ones. */
bool LibraryTree::isOfKind(const std::string& path) const {
  if (access(realPath(path).c_str(), R_OK) != 0) return false;
  const FoundLibrary* found = read(path);
  return found != nullptr && (found->file() == nullptr || found->file()->kind == places_.kind);
}

std::optional<std::string> LibraryTree::among(const std::vector<std::string>& directories,
                                              const std::string& name) const {
  for (const std::string& directory : directories) {
    std::string path = directory;
    path += "/" + name;
    if (isOfKind(path)) return path;
  }
  return std::nullopt;
}

std::optional<std::string> LibraryTree::amongLoaders(const std::string& name) const {
  const auto [begin, end] = loader_.cached.equal_range(name);
  for (auto at = begin; at != end; ++at) {
    if (isOfKind(at->second)) return at->second;
  }
  return among(loader_.directories, name);
}

std::vector<std::string> LibraryTree::expanded(const std::string& list,
                                               const std::string& origin) const {
  std::vector<std::string> directories = splitPath(list);
  const std::string lib = places_.kind.bits == 64 ? "lib64" : "lib";
  for (std::string& directory : directories) {
    replaceAll(directory, "${ORIGIN}", origin);
    replaceAll(directory, "$ORIGIN", origin);
    replaceAll(directory, "${LIB}", lib);
    replaceAll(directory, "$LIB", lib);
  }
  return directories;
}

std::optional<std::string> LibraryTree::find(const std::string& name) const {
  const auto exists = [this](const std::string& path) {
    return access(realPath(path).c_str(), F_OK) == 0;
  };
  if (name.find('/') != std::string::npos) {
    return exists(name) ? std::optional(name) : std::nullopt;
  }
  for (const std::string& directory : places_.hostDirectories) {
    // The host takes the first that is there, whatever is in it.
    const std::string path = (directory.empty() ? "." : directory) + "/" + name;
    if (exists(path)) return path;
  }
  if (auto found = among(places_.environment, name)) return found;
  if (auto found = among(expanded(places_.platformRunpath, places_.platformDirectory), name)) {
    return found;
  }
  return amongLoaders(name);
}

std::optional<std::string> LibraryTree::findNeeded(
    const std::string& name, const std::vector<const FoundLibrary*>& chain) const {
  if (name.find('/') != std::string::npos)
    return isOfKind(name) ? std::optional(name) : std::nullopt;
  const FoundLibrary* needing = chain.front();
  // The older kind of entry counts only where there is none of the newer kind, but for all that
  // is loaded on the way as well.
  if (!needing->file()->hasRunpath) {
    for (const FoundLibrary* library : chain) {
      if (library->file()->hasRunpath) continue;
      const auto directories = expanded(library->file()->rpath, directoryOf(library->path));
      if (auto found = among(directories, name)) return found;
    }
  }
  if (auto found = among(places_.environment, name)) return found;
  const auto directories = expanded(needing->file()->runpath, directoryOf(needing->path));
  if (auto found = among(directories, name)) return found;
  return amongLoaders(name);
}

const std::set<std::string>* LibraryTree::hostExports() const {
  if (places_.hostFiles.empty()) return nullptr;
  if (!hostExports_) {
    hostExports_.emplace();
    for (const std::string& path : places_.hostFiles) {
      const FoundLibrary* found = read(path);
      if (found == nullptr || found->file() == nullptr) continue;
      for (const auto& [symbol, isFunction] : found->file()->exported) {
        hostExports_->insert(symbol);
      }
    }
  }
  return &*hostExports_;
}

std::vector<std::string> LibraryTree::names() const {
  std::vector<std::string> names;
  for (const std::string& directory : places_.hostDirectories) {
    std::error_code error;
    for (std::filesystem::directory_iterator at(realPath(directory), error), end;
         !error && at != end; at.increment(error)) {
      names.push_back(at->path().filename().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace zerva
