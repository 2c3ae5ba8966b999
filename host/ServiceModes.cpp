#include "host/ServiceModes.h"

#include "host/DirectiveLines.h"

namespace zerva {
namespace {

std::vector<std::string> splitInterfaces(const std::string& interfaces) {
  std::vector<std::string> names;
  std::size_t begin = 0;
  for (std::size_t end; (end = interfaces.find(' ', begin)) != std::string::npos; begin = end + 1) {
    names.push_back(interfaces.substr(begin, end - begin));
  }
  names.push_back(interfaces.substr(begin));
  return names;
}

/** The fill of a short line counts as one empty interface name, as the configurator joins it. */
std::vector<std::string> keyOf(const std::string& library, const std::string& creator,
                               const std::string& channel, const std::string& interfaces) {
  std::vector<std::string> key = {library, creator, channel};
  const std::vector<std::string> names = splitInterfaces(interfaces);
  key.insert(key.end(), names.begin(), names.end());
  return key;
}

}  // namespace

ServiceModes::ServiceModes(const std::string& path) {
  for (const DirectiveLine& line :
       readDirectiveLines(path).value_or(std::vector<DirectiveLine>())) {
    const std::vector<std::string>& tokens = line.tokens;
    if (tokens.empty() || (tokens[0] != "service_instance" && tokens[0] != "service_info"))
      continue;
    const bool given = tokens[1] == "MT" || tokens[1] == "ST";
    const auto first = tokens.begin() + (given ? 2 : 1);
    modes_.emplace(std::vector<std::string>(first, tokens.end()), given ? tokens[1] : "MT");
  }
}

std::string ServiceModes::find(const std::string& library, const std::string& creator,
                               const std::string& channel, const std::string& interfaces) const {
  const auto found = modes_.find(keyOf(library, creator, channel, interfaces));
  return found == modes_.end() ? std::string() : found->second;
}

}  // namespace zerva
