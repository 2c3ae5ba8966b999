#pragma once

#include <string>

#include "host/check/CheckSubject.h"

namespace zerva {

/** Where a line finds the registry. */
struct RegistryAhead {
  enum class Where {
    /** A line before it has brought the registry up. */
    Here,
    /** No line does: another process has to. */
    Elsewhere,
    /** A line behind it does. */
    Later,
    /** The line that should have does not. */
    Failed,
  };
  Where where = Where::Elsewhere;
  /** The line of the registry; null where no line has it. */
  const ParsedLine* line = nullptr;

  bool isReached() const { return where == Where::Here || where == Where::Elsewhere; }
};

/** What a line can know of the rest of its file when it is explained. */
class Outlook {
 public:
  /** @param subject has one file, and its libraries when somebody looked; outlives this. */
  explicit Outlook(const CheckSubject& subject);

  /** @returns the line with which reading ends before the end of the file; null when none does. */
  const ParsedLine* end() const { return end_; }
  /** Whether the start gets as far as this line. */
  bool isRead(const ParsedLine& line) const;

  /** @returns what is known of the library of a line; null when nobody looked. */
  const LibraryUse* libraryOf(const ParsedLine& line) const;
  /** @returns where programs are; null when nobody is to look. */
  const ProgramSearch* programs() const { return subject_.programs; }

  /** @returns where a line finds the registry that it tells something. */
  RegistryAhead registryFor(const ParsedLine& line) const;

  /** @returns the line whose proxy record for an interface holds in the end; null for none. */
  const ParsedLine* proxyOf(const std::string& interface) const;
  /** The same for the invoker that proxies need. */
  const ParsedLine* invokerOf(const std::string& interface) const;

 private:
  const ParsedLine* recordOf(Keyword keyword, const std::string& interface) const;

  const CheckSubject& subject_;
  const ParsedLine* end_ = nullptr;
  const ParsedLine* registry_ = nullptr;
};

/** Whether the registry is asked here: it is the service of this line, on the registry's channel.
 */
bool servesRegistryChannel(const ParsedLine& line);

/** Whether the registry refuses what a service or record tells it: a name has a comma in it. */
bool isRefused(const ParsedLine& line);

/** The protocol of all proxies. */
extern const char proxiesProtocol[];

}  // namespace zerva
