#include "tests/faults/LifeOutput.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace zerva {

namespace {

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

bool isIn(const std::string& line, const std::string& part) {
  return line.find(part) != std::string::npos;
}

/** @returns whether a line of standard error is the log's, the host's or the file checker's. */
bool isComplaint(const std::string& line) {
  return line.starts_with("zerva: ") || line.starts_with("A log line of ") ||
         isIn(line, ": error: ") || isIn(line, " fatal    [") || isIn(line, " error    [") ||
         isIn(line, " warning  [");
}

/** @returns whether a caller says what it got, and not what it makes of having got nothing. */
bool isCallersException(const std::string& line) {
  return line.starts_with("busy: ") && !line.ends_with(": done") &&
         !line.ends_with("it does not expire") && !line.ends_with(" is not found");
}

/** What the services say of themselves, in the order in which they do, each once. */
std::vector<std::string> journalOf(const std::string& output) {
  const std::string mark = "journal: ";
  std::vector<std::string> said;
  for (const std::string& line : linesOf(output)) {
    const std::size_t at = line.find(mark);
    if (at == std::string::npos) continue;
    const std::string text = line.substr(at + mark.size());
    // A service is stopped more than once: when the host goes down and when the services are
    // deleted. Nothing else is done twice.
    const bool again = std::find(said.begin(), said.end(), text) != said.end();
    if (!again || !text.ends_with(" stopped")) said.push_back(text);
  }
  return said;
}

/** The names come in the order of the repository; first all are stopped. */
struct Order {
  std::vector<std::string> services;  // those that are stopped: the legacy one is not
  std::vector<std::string> deleted;
};

const Order kFirstHost{{"First", "Third"}, {"BusyIfc", "First", "Third"}};
const Order kSecondHost{{"Second"}, {"Second"}};

bool holds(const std::vector<std::string>& said, const std::string& what) {
  return std::find(said.begin(), said.end(), what) != said.end();
}

/** @returns what has to be said, by those services that have said that they came up. */
std::vector<std::string> expectedOf(const Order& order, const std::vector<std::string>& said,
                                    bool someAreLost) {
  std::vector<std::string> expected;
  for (const std::string& service : order.services) {
    // Whether one that is recorded is stopped before its `init` is the moment's.
    if (holds(said, service + " initialised") || holds(said, service + " stopped")) {
      expected.push_back(service + " stopped");
    }
  }
  if (holds(said, "BusyIfc begun")) expected.emplace_back("BusyIfc over");
  for (const std::string& service : order.deleted) {
    const bool lost =
        someAreLost && !holds(said, service + " initialised") && !holds(said, service + " deleted");
    if (holds(said, service + " made") && !lost) expected.push_back(service + " deleted");
  }
  return expected;
}

std::string disorderOf(const Order& order, const std::string& output, bool someAreLost) {
  std::vector<std::string> said = journalOf(output);
  const std::vector<std::string> expected = expectedOf(order, said, someAreLost);
  // The thread ends when it likes, before its service is deleted.
  const auto isOfGoingDown = [&](const std::string& text) {
    const std::string name = text.substr(0, text.find(' '));
    return holds(order.deleted, name) && (text.ends_with(" stopped") || text.ends_with(" deleted"));
  };
  const auto over = std::find(said.begin(), said.end(), "BusyIfc over");
  if (holds(expected, "BusyIfc over") &&
      over > std::find(said.begin(), said.end(), "BusyIfc deleted")) {
    return "the legacy service is deleted before its thread is over";
  }
  std::vector<std::string> down;
  std::copy_if(said.begin(), said.end(), std::back_inserter(down), isOfGoingDown);
  std::vector<std::string> wanted;
  std::copy_if(expected.begin(), expected.end(), std::back_inserter(wanted), isOfGoingDown);
  if (down == wanted) return {};
  std::string text = "the services go down wrongly; expected:";
  for (const std::string& each : wanted) text += " " + each + ",";
  return text + " and nothing else";
}

/** @returns what the host says came up and does not say went down. */
std::string notDown(const std::vector<std::string>& lines) {
  const std::string up = "up       ";
  for (const std::string& line : lines) {
    const std::size_t colon = line.find(": ");
    // A started program has no initialisation.
    if (!line.starts_with(up) || !isIn(line, ", init took ") || colon == std::string::npos)
      continue;
    const std::string name = line.substr(up.size(), colon - up.size());
    if (!holds(lines, "deleted  " + name)) return name + " came up and is not deleted";
    if (!isIn(line, "no channel") && !holds(lines, "stopped  " + name)) {
      return name + " came up and is not stopped";
    }
  }
  return {};
}

}  // namespace

LifeOutput::LifeOutput(std::string output, std::string errors, bool registryHere)
    : output_(std::move(output)), errors_(std::move(errors)), registryHere_(registryHere) {}

std::string LifeOutput::lost() const {
  std::vector<std::string> all{"up       First", "up       BusyIfc", "up       Third"};
  for (const char* const what : {"timer", "here", "lazy", "again", "there", "and back"}) {
    all.push_back(std::string("busy: ") + what + ": done");
  }
  if (registryHere_) {
    all.insert(all.end(), {"up       ServiceRegistryIfc", "up       process", "up       Second",
                           ": with status 0", "1 service and 0 started processes came up and went",
                           "4 services and 1 started process came up and went down"});
  } else {
    all.emplace_back("3 services and 0 started processes came up and went down");
  }
  const auto missing = std::find_if(all.begin(), all.end(), [this](const std::string& text) {
    return output_.find(text) == std::string::npos;
  });
  return missing == all.end() ? "" : *missing;
}

bool LifeOutput::tells() const {
  const std::vector<std::string> errors = linesOf(errors_);
  const std::vector<std::string> output = linesOf(output_);
  return std::any_of(errors.begin(), errors.end(), isComplaint) ||
         std::any_of(output.begin(), output.end(), [](const std::string& line) {
           return line.starts_with("failed   ") || isCallersException(line);
         });
}

std::string LifeOutput::disorder(bool someAreLost) const {
  const std::string wrong = disorderOf(kFirstHost, output_, someAreLost);
  return wrong.empty() ? notDown(linesOf(output_)) : wrong;
}

std::string LifeOutput::disorderOfSecond(const std::string& output) {
  return disorderOf(kSecondHost, output, false);
}

}  // namespace zerva
