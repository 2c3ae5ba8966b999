#include <nlohmann/json.hpp>

#include "host/explain/ExplainReport.h"
#include "host/explain/ExplanationSum.h"
#include "host/explain/Words.h"

namespace zerva {
namespace {

using Json = nlohmann::ordered_json;

void addUnlessEmpty(Json& object, const char* name, const std::string& text) {
  if (!text.empty()) object[name] = text;
}

/** The fields of a line as the configurator takes them. */
void addFields(Json& object, const ParsedLine& line) {
  if (line.keyword() == Keyword::None) return;
  object["keyword"] = line.words()[0].text;
  if (line.isChannelService()) object["mode"] = line.hasMode() ? line.words()[1].text : "MT";
  if (!line.isService() && !line.isRecord()) return;
  addUnlessEmpty(object, "library", line.library().text);
  addUnlessEmpty(object, "creator", line.creator().text);
  if (line.isChannelService()) addUnlessEmpty(object, "channel", line.channel().text);
  object["interfaces"] = textsOf(line.interfaces());
  if (line.isRecord()) addUnlessEmpty(object, "protocol", line.protocol().text);
}

Json findingsOf(const LineExplanation& line) {
  Json list = Json::array();
  for (const Finding& finding : line.findings) {
    Json object = {{"column", finding.column},
                   {"length", finding.length},
                   {"severity", severityName(finding.severity)},
                   {"code", finding.code},
                   {"text", finding.text}};
    addUnlessEmpty(object, "suggestion", finding.suggestion);
    list.push_back(std::move(object));
  }
  return list;
}

}  // namespace

std::string explanationAsJson(const FileExplanation& file,
                              const std::vector<LineExplanation>& lines) {
  Json list = Json::array();
  for (const LineExplanation& line : lines) {
    Json object = {{"line", line.line->number()},
                   {"outcome", outcomeName(line.outcome)},
                   {"title", line.title},
                   {"steps", line.steps}};
    addFields(object, *line.line);
    addUnlessEmpty(object, "path", line.path);
    object["findings"] = findingsOf(line);
    list.push_back(std::move(object));
  }
  const ExplanationSum sum = sumOf(lines);
  const Json whole = {
      {"file", file.path},        {"lines", std::move(list)}, {"immediate", sum.immediate},
      {"lazy", sum.lazy},         {"legacy", sum.legacy},     {"records", sum.records},
      {"programs", sum.programs}, {"failed", sum.failed},     {"not_read", sum.notRead}};
  // A file may hold any bytes; what is no character becomes the sign for that.
  return whole.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace zerva
