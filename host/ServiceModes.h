#pragma once

#include <map>
#include <string>
#include <vector>

namespace zerva {

/**
 * Which mode each service line of a directive file has. The configurator does not tell it, so it is
 * read from the file, and found by the fields that the configurator does tell.
 *
 * Constant after construction; any thread may ask.
 */
class ServiceModes {
 public:
  /** Knows nothing. */
  ServiceModes() = default;

  /** Reads a file; one that cannot be read gives nothing. */
  explicit ServiceModes(const std::string& path);

  /** @returns "MT", "ST", or an empty text when the file has no such line. */
  std::string find(const std::string& library, const std::string& creator,
                   const std::string& channel, const std::string& interfaces) const;

 private:
  std::map<std::vector<std::string>, std::string> modes_;
};

}  // namespace zerva
