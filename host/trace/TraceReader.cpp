#include "host/trace/TraceReader.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <system_error>

namespace zerva {
namespace {

using Json = nlohmann::json;

constexpr std::int64_t kVersion = 1;

void readTimes(const Json& value, TraceLine& line) {
  for (const Json& pair : value) {
    line.times.emplace_back(pair.at(0).get<std::int64_t>(), pair.at(1).get<std::uint64_t>());
  }
}

TraceLine readLine(const std::string& text) {
  const Json json = Json::parse(text);
  TraceLine line;
  line.event = json.at("event").get<std::string>();
  line.t = json.at("t").get<std::int64_t>();
  line.thread = json.at("thread").at("id").get<int>();
  line.threadName = json.at("thread").at("name").get<std::string>();
  for (const auto& [name, value] : json.items()) {
    if (name == "service") {
      line.service = value.get<std::string>();
    } else if (name == "times") {
      readTimes(value, line);
    } else if (value.is_string()) {
      line.texts[name] = value.get<std::string>();
    } else if (value.is_number_integer()) {
      line.numbers[name] = value.get<std::int64_t>();
    }
  }
  return line;
}

/** @returns what is wrong with a file that begins with this line; empty when nothing is. */
std::string wrongBeginning(const TraceLine& first) {
  if (first.event != "trace") return "this is no trace: it begins with '" + first.event + "'";
  if (first.number("version") > kVersion) {
    return "this is a trace of version " + std::to_string(first.number("version")) +
           "; this program reads version " + std::to_string(kVersion);
  }
  return {};
}

}  // namespace

std::string TraceLine::text(const std::string& name) const {
  const auto found = texts.find(name);
  return found == texts.end() ? std::string() : found->second;
}

std::int64_t TraceLine::number(const std::string& name) const {
  const auto found = numbers.find(name);
  return found == numbers.end() ? 0 : found->second;
}

std::vector<TraceLine> readTrace(std::istream& in, const std::string& name) {
  std::vector<TraceLine> lines;
  std::string read;
  for (unsigned long number = 1; std::getline(in, read); ++number) {
    const bool cut = in.eof();
    const auto fail = [&](const std::string& why) {
      std::string text = name;
      text.append(":").append(std::to_string(number)).append(": error: ").append(why);
      throw TraceError(text);
    };
    std::optional<TraceLine> line;
    try {
      line = readLine(read);
    } catch (const Json::exception& error) {
      if (cut) break;
      fail(std::string("this is no line of a trace: ") + error.what());
    }
    if (number == 1) {
      if (const std::string wrong = wrongBeginning(*line); !wrong.empty()) fail(wrong);
    }
    lines.push_back(std::move(*line));
  }
  if (lines.empty()) throw TraceError(name + ": error: the trace is empty");
  std::stable_sort(lines.begin(), lines.end(),
                   [](const TraceLine& one, const TraceLine& other) { return one.t < other.t; });
  return lines;
}

std::vector<TraceLine> readTraceFile(const std::string& path) {
  std::ifstream in(path);
  if (!in) {
    throw TraceError(path + ": error: cannot be opened: " + std::generic_category().message(errno));
  }
  auto lines = readTrace(in, path);
  if (in.bad()) throw TraceError(path + ": error: cannot be read");
  return lines;
}

}  // namespace zerva
