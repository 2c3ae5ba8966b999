#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "host/check/ElfFile.h"
#include "host/check/LoaderDirectories.h"

namespace zerva {

/** The machine on which directive files are to run, and where it has its libraries. */
struct LibraryPlaces {
  /** Its tree; empty for this machine. */
  std::string root;
  ElfKind kind;
  /** Where the host looks first. */
  std::vector<std::string> hostDirectories;
  /** What the environment adds to the loader's directories. */
  std::vector<std::string> environment;
  /** Where the platform's own library says that libraries are, and its directory. */
  std::string platformRunpath;
  std::string platformDirectory;
  /** The names of the libraries that a host has loaded before it reads a file. */
  std::set<std::string> loaded;
  /** The host's program and those libraries, as paths; empty when nobody knows them. */
  std::vector<std::string> hostFiles;
};

/** A library that was found. */
struct FoundLibrary {
  /** As the machine names it. */
  std::string path;
  std::variant<ElfFile, ElfError> content;

  const ElfFile* file() const { return std::get_if<ElfFile>(&content); }
};

/** Finds libraries as a host and its loader would, and reads them without running them. */
class LibraryTree {
 public:
  explicit LibraryTree(LibraryPlaces places);

  const LibraryPlaces& places() const { return places_; }

  /** @returns where a file of the machine is on this one. */
  std::string realPath(const std::string& path) const;

  /**
   * Finds what a line names.
   *
   * @returns the path of the first file that the host would take; nothing when there is none.
   */
  std::optional<std::string> find(const std::string& name) const;

  /**
   * Finds what a library needs.
   *
   * @param chain the library that needs it, the one that needs that, and so on.
   */
  std::optional<std::string> findNeeded(const std::string& name,
                                        const std::vector<const FoundLibrary*>& chain) const;

  /** @returns what is in a file of the machine; null when it cannot be read. */
  const FoundLibrary* read(const std::string& path) const;

  /** @returns what a host itself exports to all libraries; null when nobody knows. */
  const std::set<std::string>* hostExports() const;

  /** @returns the names of libraries that a line could name without a slash. */
  std::vector<std::string> names() const;

 private:
  bool isOfKind(const std::string& path) const;
  std::optional<std::string> among(const std::vector<std::string>& directories,
                                   const std::string& name) const;
  std::optional<std::string> amongLoaders(const std::string& name) const;
  std::vector<std::string> expanded(const std::string& list, const std::string& origin) const;

  const LibraryPlaces places_;
  const LoaderPlaces loader_;
  mutable std::map<std::string, std::unique_ptr<FoundLibrary>> read_;
  mutable std::optional<std::set<std::string>> hostExports_;
};

/** @returns the parts of a list with colons; an empty one stands for the current directory. */
std::vector<std::string> splitPath(const std::string& list);

/** @returns the directory part of a path. */
std::string directoryOf(const std::string& path);

}  // namespace zerva
