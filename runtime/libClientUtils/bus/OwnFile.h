#pragma once

#include <string>
#include <utility>

#include "runtime/libClientUtils/bus/BusDirectory.h"

namespace zerva {

/** A file of this process in the bus directory, whether it is there yet or not; it goes with it. */
class OwnFile {
 public:
  OwnFile(const BusDirectory& directory, std::string name)
      : directory_(directory), name_(std::move(name)) {}
  ~OwnFile() { remove(); }
  OwnFile(const OwnFile&) = delete;
  OwnFile& operator=(const OwnFile&) = delete;

  void remove() const { directory_.remove(name_); }

 private:
  const BusDirectory& directory_;
  const std::string name_;
};

}  // namespace zerva
