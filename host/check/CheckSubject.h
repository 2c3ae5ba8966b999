#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/check/ParsedLine.h"

namespace zerva {

class ProgramSearch;
struct LibraryUse;

/** A directive file that was read. */
struct CheckedFile {
  std::string path;
  /** In which way it is no file that the configurator can read to its end; empty when it is one. */
  std::string unreadable;
  std::vector<ParsedLine> lines;
};

/** What is looked over: the file of a process, or those of processes that share a bus. */
struct CheckSubject {
  std::vector<CheckedFile> files;
  /** What is in the libraries that lines name; empty when nobody looked. */
  std::vector<LibraryUse> libraries;
  /** Where programs are; null when nobody is to look. */
  const ProgramSearch* programs = nullptr;
  /** Which interfaces were looked up in a run; nothing when that is not known. */
  std::optional<std::set<std::string>> lookedUp;

  CheckSubject();
  CheckSubject(const CheckSubject&) = delete;
  CheckSubject& operator=(const CheckSubject&) = delete;
  ~CheckSubject();

  using LineVisitor = std::function<void(const CheckedFile&, const ParsedLine&)>;

  /** Calls somebody with each line that is read and cut without ending the start, in order. */
  void forEachLine(const LineVisitor& visitor) const;

  /** The same with each line at all. */
  void forEachLineAtAll(const LineVisitor& visitor) const;
};

/** The registry's interface, and the channel at which everybody asks it. */
extern const char registryInterface[];
extern const char registryChannelName[];

/** Whether this line brings up the registry, by the rule of the configurator. */
bool isRegistry(const ParsedLine& line);

}  // namespace zerva
