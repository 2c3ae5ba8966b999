#include "host/explain/Selection.h"

#include <algorithm>
#include <filesystem>

#include "host/check/NearMiss.h"
#include "host/explain/Words.h"

namespace zerva {
namespace {

bool isNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

/** Without zeros before it, so that numbers of any length can be compared as texts. */
std::string withoutZeros(const std::string& number) {
  return number.substr(std::min(number.find_first_not_of('0'), number.size()));
}

void addFile(std::vector<std::string>& names, const std::string& path) {
  if (path.empty()) return;
  names.push_back(path);
  names.push_back(std::filesystem::path(path).filename().string());
}

std::string notThere(const FileExplanation& file, const std::string& wanted) {
  if (isNumber(wanted)) {
    return file.path + " has " + counted(file.lines.size(), "line") + ", and no line " + wanted +
           ".";
  }
  std::vector<std::string> all;
  for (const LineExplanation& line : file.lines) {
    for (const std::string& name : namesOf(line)) all.push_back(name);
  }
  const std::string near = nearMiss(wanted, all);
  return "nothing in " + file.path + " is called '" + wanted + "'." +
         (near.empty() ? "" : " Did you mean '" + near + "'?");
}

}  // namespace

std::vector<std::string> namesOf(const LineExplanation& explained) {
  const ParsedLine& line = *explained.line;
  std::vector<std::string> names;
  if (line.keyword() == Keyword::StartProcess) {
    const auto& words = line.words();
    if (!words[1].empty()) addFile(names, words[1].text);
  } else if (line.isService() || line.isRecord()) {
    addFile(names, line.library().text);
    if (!line.creator().empty()) names.push_back(line.creator().text);
    if (line.isChannelService() && !line.channel().empty()) names.push_back(line.channel().text);
    for (const std::string& name : textsOf(line.interfaces())) names.push_back(name);
  }
  addFile(names, explained.path);
  return names;
}

std::variant<std::vector<LineExplanation>, std::string> selectLines(const FileExplanation& file,
                                                                    const std::string& wanted) {
  if (wanted.empty()) return file.lines;
  std::vector<LineExplanation> selected;
  for (const LineExplanation& line : file.lines) {
    const std::vector<std::string> names = namesOf(line);
    const bool isWanted = isNumber(wanted)
                              ? withoutZeros(wanted) == std::to_string(line.line->number())
                              : std::find(names.begin(), names.end(), wanted) != names.end();
    if (isWanted) selected.push_back(line);
  }
  if (selected.empty()) return notThere(file, wanted);
  return selected;
}

}  // namespace zerva
