#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>

#include "runtime/libClientUtils/bus/BusDirectory.h"
#include "runtime/libClientUtils/bus/FileDescriptor.h"
#include "runtime/libClientUtils/bus/NameRecords.h"

namespace zerva {

/**
 * The names that this process serves, in a file that the others read. It is locked as long as this
 * process lives, so that a leftover is known by its missing lock. Any thread.
 */
class OwnNames {
 public:
  /**
   * Makes the file, with no name in it.
   *
   * @param directory lives longer.
   * @throws std::runtime_error with directory and cause.
   */
  OwnNames(const BusDirectory& directory, std::string id);

  /** Removes the file. */
  ~OwnNames();
  OwnNames(const OwnNames&) = delete;
  OwnNames& operator=(const OwnNames&) = delete;

  /**
   * Writes down whether a name is served. When it returns, other processes see it.
   *
   * @param isServed asked under the lock, so that the last caller writes what holds at the end.
   * @returns why the name is not served to others, although it should be; empty when it is.
   */
  std::string update(const std::string& name, const std::function<bool()>& isServed);

  /** No name but one is served any more, and none will be. @param name empty for none. */
  void closeBut(const std::string& name);

 private:
  std::string add(const std::string& name);
  void remove(const std::string& name);
  std::string write(const std::string& record);
  std::string rewrite();
  std::string replaceFile(const std::string& text);
  void compactIfWorthwhile();

  const BusDirectory& directory_;
  const std::string id_;
  std::mutex mutex_;
  // Guarded by mutex_.
  FileDescriptor file_;
  std::size_t size_ = 0;
  std::size_t nameBytes_ = 0;
  bool closed_ = false;
  ServedNames names_;
};

}  // namespace zerva
