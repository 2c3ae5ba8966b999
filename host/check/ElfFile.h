#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zerva {

/** For which kind of machine a file is. */
struct ElfKind {
  int bits = 0;
  bool bigEndian = false;
  /** The number that ELF has for the machine. */
  unsigned machine = 0;

  bool operator==(const ElfKind&) const = default;
};

/** @returns the kind for a reader: "32-bit x86", "64-bit ARM", "32-bit machine 94". */
std::string describe(const ElfKind& kind);

/** @returns the kind that a name stands for, as "i386" or "aarch64"; nothing for another name. */
std::optional<ElfKind> elfKindNamed(const std::string& name);

/** @returns all names that stand for a kind. */
std::vector<std::string> elfKindNames();

/** What a shared library says about itself. */
struct ElfFile {
  ElfKind kind;
  /** Whether it can be opened at run time: no program, no object file. */
  bool isLibrary = false;
  std::string soname;
  /** The libraries that it needs, in order. */
  std::vector<std::string> needed;
  std::string rpath;
  std::string runpath;
  bool hasRunpath = false;
  /** What it exports, and whether that is a function. */
  std::map<std::string, bool> exported;
  /** What it uses of others and cannot do without. */
  std::vector<std::string> undefined;
};

/** Why a file could not be read as ELF. */
struct ElfError {
  enum class Kind { NotElf, Broken };
  Kind kind;
  std::string text;
};

/**
 * Reads a library without running any of it. Nothing in the file is trusted.
 *
 * @param bytes the whole file.
 */
std::variant<ElfFile, ElfError> readElf(const std::string& bytes);

/** @returns the kind of machine that this program is for. */
ElfKind ownElfKind();

}  // namespace zerva
