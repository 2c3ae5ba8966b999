#include "host/check/LookedUp.h"

#include <fstream>
#include <nlohmann/json.hpp>

namespace zerva {

std::optional<std::set<std::string>> readLookedUp(const std::string& path) {
  std::ifstream file(path);
  if (!file) return std::nullopt;
  std::set<std::string> names;
  for (std::string line; std::getline(file, line);) {
    // Most lines are others, and reading each of them whole takes its time.
    if (line.find("lookup") == std::string::npos) continue;
    const auto event = nlohmann::json::parse(line, nullptr, false);
    if (!event.is_object() || event.value("event", nlohmann::json()) != "lookup") continue;
    const auto name = event.find("interface");
    if (name != event.end() && name->is_string()) names.insert(name->get<std::string>());
  }
  if (file.bad()) return std::nullopt;
  return names;
}

}  // namespace zerva
