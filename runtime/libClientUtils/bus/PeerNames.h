#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "runtime/libClientUtils/Envelope.h"
#include "runtime/libClientUtils/bus/BusDirectory.h"
#include "runtime/libClientUtils/bus/FileDescriptor.h"
#include "runtime/libClientUtils/bus/NameRecords.h"

namespace zerva {

/** The names that another process serves, as far as its file was read. One thread at a time. */
class PeerNames {
 public:
  /** @param directory lives longer. */
  PeerNames(const BusDirectory& directory, std::string_view id);

  /** @returns the bus name of the process. */
  const SharedName& id() const { return id_; }

  /**
   * Reads what is new. Does not wait for the other process.
   *
   * @returns what is wrong with the file, once for each file; else empty.
   */
  std::string refresh();

  /** @returns since when a name is served; nothing when it is not. */
  std::optional<std::uint64_t> servedSince(const std::string& name) const;

  /** @returns all of them. */
  const ServedNames& all() const { return parser_.names(); }

 private:
  bool openCurrent(off_t& size, std::string& complaint);
  std::string readOn();
  std::string complain(const std::string& cause);

  const BusDirectory& directory_;
  const SharedName id_;
  FileDescriptor file_;
  off_t offset_ = 0;
  bool complained_ = false;
  JournalParser parser_;
};

}  // namespace zerva
