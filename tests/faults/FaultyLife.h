#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"

namespace zerva {

/**
 * A life of a host, as a process, in which one call of the system fails: the registry, relays (one
 * of them lazy), a service with a thread and a timer that calls them, and a second host as a
 * started process, that calls and is called.
 */
class FaultyLife {
 public:
  /**
   * Begins it.
   *
   * @param kind as `faulty_life` has it; with "_away" behind it the registry is in the second host,
   *     which then is there before, so that this one connects to it; else the second one connects
   *     to this.
   * @param nth which call of the kind fails, none when it is 0; or the limit.
   * @param environment in addition to what is there.
   */
  FaultyLife(const std::string& kind, long nth,
             const std::map<std::string, std::string>& environment = {});

  /** Waits for its end. @returns what is wrong with how it went; empty when nothing is. */
  std::string complaint();

  /** @returns whether the call that was to fail came. */
  bool reached() const;

  /** @returns whether the call came, and failed in the making of a proxy. */
  bool inMakingAProxy() const;

  /** @returns whether the watchdog ended it, or it gave up waiting for a request under way. */
  bool hung();

  /** @returns what a life without a fault does and this one did not; empty when it did all. */
  std::string lost() const;

  /** @returns how many calls of the kind there were; for one that ended by itself. */
  long calls() const;

  const std::string& kind() const { return kind_; }
  long nth() const { return nth_; }
  std::string output() const { return process_.output(); }
  std::string errors() const { return process_.errors(); }

  /** @returns what the watchdog says that its threads wait in; empty when it has said nothing. */
  std::string waits() const;

 private:
  bool away() const { return kind_.ends_with("_away"); }
  bool hasFault() const { return nth_ > 0 || kind_.starts_with("space"); }
  std::unique_ptr<ChildProcess> other() const;
  std::vector<std::string> arguments(const std::string& call, long nth) const;
  std::string faultStack() const;
  bool failsWhatIsMade() const;
  bool leaksWhatWasMade() const;
  std::string wrongInWhatIsSaid(int code) const;
  std::string wrong();
  std::string wrongWith(std::optional<int> code) const;
  std::string wrongWithAnother() const;
  std::string wrongWithWhatIsLeft();

  const std::string kind_;
  const long nth_;
  const TempDirectory directory_;
  std::unique_ptr<ChildProcess> other_;  // the second host, when the registry is there
  ChildProcess process_;
};

}  // namespace zerva
