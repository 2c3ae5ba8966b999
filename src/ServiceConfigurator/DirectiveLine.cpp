#include "src/ServiceConfigurator/DirectiveLine.h"

namespace zerva {

std::string joinFrom(const std::vector<std::string>& tokens, std::size_t first) {
  std::string joined;
  for (std::size_t index = first; index < tokens.size(); ++index) {
    joined += tokens[index];
    if (index + 1 < tokens.size()) {
      joined += ' ';
    }
  }
  return joined;
}

DirectiveFields readFields(const std::vector<std::string>& tokens) {
  const std::string& mode = tokens.at(1);
  const std::size_t first = mode == "MT" || mode == "ST" ? 2 : 1;
  DirectiveFields fields;
  fields.flag = mode != "ST";
  fields.lib = tokens.at(first);
  fields.creator = tokens.at(first + 1);
  fields.chan = tokens.at(first + 2);
  fields.ifc = tokens.at(first + 3);
  fields.ifcList = joinFrom(tokens, first + 3);
  return fields;
}

}  // namespace zerva
