#pragma once

#include <string>
#include <vector>

namespace zerva {

struct CheckedFile;
struct CheckSubject;
class LibraryTree;
class ParsedLine;

/** What is wrong with a library as such. */
enum class LibraryFault { None, NotFound, Unreadable, NotElf, Broken, NotALibrary, WrongMachine };

/** What is wrong with the function that a line names in its library. */
enum class CreatorFault { None, NotFound, NotAFunction };

/** A library that a library needs, directly or not, and that cannot be had. */
struct NeededLibrary {
  std::string name;
  /** The file name of the library that needs it. */
  std::string neededBy;
  /** What is wrong with it; one of a sentence's ends. */
  std::string why;
};

/** Something that a library uses and nobody has. */
struct UndefinedSymbol {
  /** As a reader of C++ knows it. */
  std::string name;
  /** The file name of the library that uses it. */
  std::string usedBy;
};

/** What is known of the library that a line names. */
struct LibraryUse {
  const CheckedFile* file = nullptr;
  const ParsedLine* line = nullptr;
  /** Where it is on its machine; empty when it was not found. */
  std::string path;
  LibraryFault fault = LibraryFault::None;
  /** What is wrong with it in words, as an end of a sentence. */
  std::string why;
  /** The library that was probably meant. */
  std::string suggestion;
  std::vector<NeededLibrary> missing;
  std::vector<UndefinedSymbol> undefined;
  CreatorFault creator = CreatorFault::None;
  /** The function that was probably meant. */
  std::string creatorSuggestion;
  /** Whether the function is there under the name that C++ gave it. */
  bool mangled = false;
  /**
   * What others can write to: the library itself, one that it needs and the host has not loaded
   * yet, or a directory above one of them; empty for nothing.
   */
  std::string writable;
  /** Why it could not be opened for real; empty also when nobody tried. */
  std::string loadFault;
};

/**
 * Looks into the library of a line, and into those that it needs.
 *
 * @param line names a library.
 */
LibraryUse lookIntoLibrary(const CheckedFile& file, const ParsedLine& line,
                           const LibraryTree& tree);

/** Looks into the libraries of all lines that name one, and keeps what is known of them there. */
void lookIntoLibraries(CheckSubject& subject, const LibraryTree& tree);

/**
 * @param program a program of the tree's machine.
 * @returns the program and all libraries that it is started with, as paths; nothing when one of
 *     them is not found.
 */
std::vector<std::string> programAndLibraries(const std::string& program, const LibraryTree& tree);

}  // namespace zerva
