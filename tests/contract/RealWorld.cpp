#include "tests/contract/ContractWorld.h"
#include "tests/support/WaitUntil.h"

namespace zerva::contract {

void startAfresh() {}

// Real time goes by on its own; the condition says when enough of it has.
bool advanceAndSettle(std::chrono::milliseconds /*time*/, const std::function<bool()>& until) {
  return waitUntil(until);
}

std::string library() { return ZERVA_CONTRACT_LIBRARY; }

void programExists(const std::string& /*program*/) {}

void programIsMissing(const std::string& /*program*/) {}

}  // namespace zerva::contract
