#include "host/live/StatusText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

#include "host/live/ProcessStatusJson.h"
#include "host/live/TextTable.h"

namespace zerva {
namespace {

using Json = nlohmann::ordered_json;

/** @returns a time with three digits that count: "0.012 s", "4.20 s", "1234 s". */
std::string timeText(double seconds) {
  std::array<char, 32> text{};
  const int digits = seconds < 1 ? 3 : seconds < 100 ? 1 : 0;
  std::snprintf(text.data(), text.size(), "%.*f s", digits, seconds);
  return text.data();
}

std::string stateText(const ServiceStatus& service) {
  return std::string(nameOf(service.state)) + (service.stuck ? ", stuck" : "");
}

std::string counter(const ServiceStatus& service, std::uint64_t value) {
  return service.executor ? std::to_string(value) : "-";
}

std::vector<std::string> cellsOf(const ServiceStatus& service) {
  const ExecutorStatus executor = service.executor.value_or(ExecutorStatus());
  return {printable(service.interfaces.empty() ? "-" : service.interfaces),
          stateText(service),
          printable(service.channel.empty() ? "-" : service.channel),
          printable(service.mode.empty() ? "-" : service.mode),
          service.initSeconds ? timeText(*service.initSeconds) : "-",
          counter(service, executor.requests),
          counter(service, executor.queued),
          counter(service, executor.errors)};
}

std::string headOf(const Answer& answer) {
  std::string head = "process " + std::to_string(answer.process);
  if (!answer.tells) {
    head += ", does not tell how it is";
    return head + (answer.channels.empty() ? "" : "; it serves:");
  }
  if (!answer.status) return head + ", does not answer: " + printable(answer.why);
  const ProcessStatus& status = *answer.status;
  head += ", " + printable(status.phase) + ", up for " + timeText(status.upSeconds) + ", " +
          printable(status.file);
  return head + (status.waitsFor.empty() ? "" : "\n  waits for " + printable(status.waitsFor));
}

std::string tableOf(const ProcessStatus& status) {
  TextTable table(
      {"INTERFACES", "STATE", "CHANNEL", "MODE", "INIT", "REQUESTS", "QUEUED", "ERRORS"});
  for (const ServiceStatus& service : status.services) {
    table.add(cellsOf(service));
    if (!service.why.empty()) table.remark("failed: " + printable(service.why));
    if (service.state == ServiceState::Initialising) {
      table.remark("for " + timeText(service.stateSeconds) +
                   (service.doing.empty() ? "" : ": " + printable(service.doing)));
    }
  }
  return table.text();
}

void line(std::ostringstream& text, const char* what, const std::string& value) {
  if (value.empty()) return;
  std::string padded = what;
  padded.resize(12, ' ');
  text << padded << printable(value) << '\n';
}

std::string allOf(const Answer& answer, const ServiceStatus& service) {
  std::ostringstream text;
  line(text, "interfaces", service.interfaces);
  line(text, "channel", service.channel.empty() ? "none" : service.channel);
  line(text, "state", stateText(service) + ", for " + timeText(service.stateSeconds));
  line(text, "doing", service.doing);
  line(text, "failed", service.why);
  line(text, "mode", service.mode);
  line(text, "library", service.library);
  line(text, "creator", service.creator);
  line(text, "type", service.type);
  if (service.initSeconds) line(text, "init", timeText(*service.initSeconds));
  if (service.executor) {
    line(text, "requests", std::to_string(service.executor->requests));
    line(text, "serving", std::to_string(service.executor->serving));
    line(text, "queued", std::to_string(service.executor->queued));
    line(text, "errors", std::to_string(service.executor->errors));
  }
  line(text, "process", std::to_string(answer.process) + ", " + answer.status->phase);
  line(text, "file", answer.status->file);
  return text.str();
}

}  // namespace

std::string statusTable(const std::vector<Answer>& answers) {
  if (answers.empty()) return "no process is on the bus\n";
  std::string text;
  for (const Answer& answer : answers) {
    text += (text.empty() ? "" : "\n") + headOf(answer) + "\n";
    if (answer.status) {
      if (!answer.status->services.empty()) text += tableOf(*answer.status);
    } else if (!answer.tells) {
      for (const std::string& channel : answer.channels) text += "  " + printable(channel) + "\n";
    }
  }
  return text;
}

std::string statusOf(const std::string& name, const std::vector<Answer>& answers) {
  std::string text;
  for (const Answer& answer : answers) {
    if (!answer.status) continue;
    for (const ServiceStatus& service : answer.status->services) {
      if (isNamed(service, name)) text += (text.empty() ? "" : "\n") + allOf(answer, service);
    }
  }
  return text;
}

std::string statusJson(const std::string& name, const std::vector<Answer>& answers) {
  Json processes = Json::array();
  for (const Answer& answer : answers) {
    Json process{{"process", answer.process}};
    if (answer.status) {
      ProcessStatus shown = *answer.status;
      if (!name.empty()) {
        std::erase_if(shown.services,
                      [&](const ServiceStatus& service) { return !isNamed(service, name); });
      }
      process = toJson(shown);
    }
    process["answers"] = answer.status ? "yes" : answer.tells ? "no" : "does not tell";
    process["error"] = answer.why;
    process["channels"] = answer.channels;
    processes.push_back(std::move(process));
  }
  return textOf(Json{{"processes", std::move(processes)}}, 2) + "\n";
}

}  // namespace zerva
