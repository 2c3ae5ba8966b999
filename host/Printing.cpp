#include "host/Printing.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include "host/Complaint.h"

namespace zerva {

bool print(std::string_view text) {
  const bool taken = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (taken && std::fflush(stdout) == 0) return true;
  complain("cannot print it: " + std::generic_category().message(errno));
  return false;
}

}  // namespace zerva
