#pragma once

#include <chrono>
#include <set>
#include <string>
#include <vector>

namespace zerva {

/** What `zerva check` was asked to do. */
struct CheckOptions {
  /** The directive files. */
  std::vector<std::string> files;
  /** Whether the files are those of processes on one bus, with one registry. */
  bool together = false;
  /** Whether a warning fails too. */
  bool strict = false;
  /** Whether the findings are written for a program. */
  bool json = false;
  /** Whether all codes are listed, and nothing else is done. */
  bool listCodes = false;
  /** Codes that nobody wants to hear of. */
  std::set<std::string> ignored;
  /** Whether libraries and programs are looked for. */
  bool libraries = true;
  /** The tree of the machine that the files are for; empty for this machine. */
  std::string root;
  /** The name of that machine's kind; empty: found out. */
  std::string machine;
  /** Where libraries without a slash in their name are searched first; empty for the default. */
  std::vector<std::string> libraryDirectories;
  /** Whether libraries are opened for real. */
  bool load = false;
  /** How long opening one may take. */
  std::chrono::milliseconds loadTimeout{10000};
  /** Traces of a run, to see who was looked up. */
  std::vector<std::string> traces;
};

/** What the hidden verb that opens a library is told. */
struct LoadOptions {
  std::string library;
  std::string creator;
  std::vector<std::string> libraryDirectories;
};

}  // namespace zerva
