#include "host/live/StatusWanted.h"

#include <cstdlib>
#include <string_view>

namespace zerva {
namespace {

constexpr const char* kVariable = "ZERVA_STATUS";

}  // namespace

// No other thread is there yet.
// NOLINTBEGIN(concurrency-mt-unsafe)
bool statusWanted(bool asked) {
  if (asked) ::setenv(kVariable, "1", 1);
  const char* const set = ::getenv(kVariable);
  return set != nullptr && *set != '\0' && std::string_view(set) != "0";
}
// NOLINTEND(concurrency-mt-unsafe)

}  // namespace zerva
