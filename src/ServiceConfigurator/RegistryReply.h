#pragma once

#include <string>
#include <vector>

namespace zerva {

/** Where the code of a proxy or an invoker lives, as the registry answered. */
struct CodeReply {
  std::string status;
  std::string lib;
  std::string creator;
};

/**
 * Reads the answer to a question for a proxy or an invoker.
 *
 * @param tokens the cut reply; without any, all is empty.
 * @throws std::out_of_range when there are tokens, but too few.
 */
inline CodeReply readCodeReply(const std::vector<std::string>& tokens) {
  CodeReply reply;
  if (!tokens.empty()) {
    reply.status = tokens.at(0);
    reply.lib = tokens.at(1);
    reply.creator = tokens.at(2);
  }
  return reply;
}

}  // namespace zerva
