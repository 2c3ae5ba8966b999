#include <nlohmann/json.hpp>

#include "host/check/CheckReport.h"

namespace zerva {

std::string reportAsJson(const std::vector<Finding>& findings) {
  using Json = nlohmann::ordered_json;
  Json list = Json::array();
  for (const Finding& finding : findings) {
    Json object = {{"file", finding.file},
                   {"line", finding.line},
                   {"column", finding.column},
                   {"length", finding.length},
                   {"severity", severityName(finding.severity)},
                   {"code", finding.code},
                   {"text", finding.text}};
    if (!finding.suggestion.empty()) object["suggestion"] = finding.suggestion;
    list.push_back(std::move(object));
  }
  const Json whole = {{"findings", std::move(list)},
                      {"errors", count(findings, Severity::Error)},
                      {"warnings", count(findings, Severity::Warning)},
                      {"notes", count(findings, Severity::Note)}};
  // A file may hold any bytes; what is no character becomes the sign for that.
  return whole.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace zerva
