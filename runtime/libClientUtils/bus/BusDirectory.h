#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/libClientUtils/bus/FileDescriptor.h"

namespace zerva {

/**
 * The directory in which the processes of a bus find each other: a socket and a list of names for
 * each. It is the user's alone. Any thread.
 */
class BusDirectory {
 public:
  /**
   * Opens it, and makes it when it is missing.
   *
   * @throws std::runtime_error with directory and cause: no directory, somebody else's, open to
   *     others, too long a path.
   */
  explicit BusDirectory(const std::string& path);

  /** @returns the absolute path. */
  const std::string& path() const { return path_; }

  /** @returns the address of a process's socket. */
  std::string socketPath(const std::string& id) const { return path_ + "/" + socketName(id); }

  static std::string socketName(const std::string& id) { return id + ".sock"; }
  static std::string journalName(const std::string& id) { return id + ".names"; }
  static std::string unfinishedName(const std::string& id) { return id + ".names.new"; }

  /** Opens or makes a file in it, closed on exec, following no link. Sets `errno`. */
  FileDescriptor open(const std::string& name, int flags) const;

  /** @returns whether the file was renamed, replacing what had the name. Sets `errno`. */
  bool rename(const std::string& from, const std::string& to) const;

  void remove(const std::string& name) const;

  /** @returns the names in it, or nothing when it cannot be read. Sets `errno`. */
  std::optional<std::vector<std::string>> list() const;

  /** @returns the processes that have a list of names in it, or nothing. Sets `errno`. */
  std::optional<std::vector<std::string>> processes() const;

  /** @returns an error's text with the directory before it. */
  std::string describe(const std::string& cause) const;

 private:
  void check() const;

  const std::string path_;
  FileDescriptor directory_;
};

}  // namespace zerva
