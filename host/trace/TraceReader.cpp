#include "host/trace/TraceReader.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <system_error>

namespace zerva {
namespace {

using Json = nlohmann::json;

constexpr std::int64_t kVersion = 1;

// In nanoseconds, 36 years: what is between two times of a trace fits into a number too.
constexpr std::int64_t kLargestTime = std::int64_t{1} << 60;

/** @returns a time or a duration. @throws TraceError when it is none. */
std::int64_t timeOf(const Json& value, const std::string& name) {
  const bool large = value.is_number_unsigned() &&
                     value.get<std::uint64_t>() > static_cast<std::uint64_t>(kLargestTime);
  if (value.is_number_integer() && !large) {
    const auto time = value.get<std::int64_t>();
    if (time >= -kLargestTime && time <= kLargestTime) return time;
  }
  throw TraceError("'" + name + "' is no time: " + value.dump());
}

/** A number that is none of a time's. @returns false when it is too large for a count. */
bool readNumber(const Json& value, std::int64_t& number) {
  constexpr std::uint64_t most = std::uint64_t{1} << 62;
  if (value.is_number_unsigned() && value.get<std::uint64_t>() > most) return false;
  number = value.get<std::int64_t>();
  return true;
}

void readField(const std::string& name, const Json& value, TraceLine& line) {
  if (name == "duration" || name == "total") {
    line.numbers[name] = timeOf(value, name);
  } else if (value.is_string()) {
    line.texts[name] = value.get<std::string>();
  } else if (std::int64_t number = 0; value.is_number_integer() && readNumber(value, number)) {
    line.numbers[name] = number;
  }
}

void readTimes(const Json& value, TraceLine& line) {
  for (const Json& pair : value) {
    const Json& count = pair.at(1);
    std::int64_t number = 0;
    if (!count.is_number_unsigned() || !readNumber(count, number)) {
      throw TraceError("'times' has what is no count: " + count.dump());
    }
    line.times.emplace_back(timeOf(pair.at(0), "times"), static_cast<std::uint64_t>(number));
  }
}

TraceLine readLine(const std::string& text) {
  const Json json = Json::parse(text);
  TraceLine line;
  line.event = json.at("event").get<std::string>();
  line.t = timeOf(json.at("t"), "t");
  const Json& id = json.at("thread").at("id");
  if (!id.is_number_integer()) throw TraceError("this is the id of no thread: " + id.dump());
  line.thread = id.get<int>();
  line.threadName = json.at("thread").at("name").get<std::string>();
  for (const auto& [name, value] : json.items()) {
    if (name == "service") {
      line.service = value.get<std::string>();
    } else if (name == "times") {
      readTimes(value, line);
    } else {
      readField(name, value, line);
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
    } catch (const TraceError& error) {
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
  const auto fail = [&](const std::string& why) { throw TraceError(path + ": error: " + why); };
  std::error_code none;
  if (std::filesystem::is_directory(path, none)) fail("this is a directory");
  std::ifstream in(path);
  if (!in) fail("cannot be opened: " + std::generic_category().message(errno));
  auto lines = readTrace(in, path);
  if (in.bad()) fail("cannot be read");
  return lines;
}

}  // namespace zerva
