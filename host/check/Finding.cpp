#include "host/check/Finding.h"

namespace zerva {

const char* severityName(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return "error";
    case Severity::Warning:
      return "warning";
    case Severity::Note:
      break;
  }
  return "note";
}

}  // namespace zerva
