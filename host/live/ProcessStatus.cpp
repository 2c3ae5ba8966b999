#include "host/live/ProcessStatus.h"

#include <array>
#include <stdexcept>

#include "host/live/ProcessStatusJson.h"

namespace zerva {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::array kStates = {"waiting",  "lazy",   "initialising", "running",
                                "stopping", "failed", "ended"};

ServiceState stateOf(const std::string& name) {
  for (std::size_t state = 0; state < kStates.size(); ++state) {
    if (name == kStates[state]) return static_cast<ServiceState>(state);
  }
  throw std::runtime_error("'" + name + "' is no state of a service");
}

Json toJson(const ServiceStatus& service) {
  Json json{{"interfaces", service.interfaces},
            {"channel", service.channel},
            {"state", nameOf(service.state)},
            {"state_seconds", service.stateSeconds},
            {"mode", service.mode},
            {"library", service.library},
            {"creator", service.creator},
            {"type", service.type},
            {"doing", service.doing},
            {"why", service.why},
            {"init_seconds", nullptr},
            {"executor", nullptr},
            {"stuck", service.stuck}};
  if (service.initSeconds) json["init_seconds"] = *service.initSeconds;
  if (service.executor) {
    json["executor"] = {{"id", service.executor->id},
                        {"requests", service.executor->requests},
                        {"queued", service.executor->queued},
                        {"serving", service.executor->serving},
                        {"errors", service.executor->errors}};
  }
  return json;
}

ServiceStatus readService(const Json& json) {
  ServiceStatus service;
  json.at("interfaces").get_to(service.interfaces);
  json.at("channel").get_to(service.channel);
  service.state = stateOf(json.at("state").get<std::string>());
  json.at("state_seconds").get_to(service.stateSeconds);
  json.at("mode").get_to(service.mode);
  json.at("library").get_to(service.library);
  json.at("creator").get_to(service.creator);
  json.at("type").get_to(service.type);
  json.at("doing").get_to(service.doing);
  json.at("why").get_to(service.why);
  if (const Json& took = json.at("init_seconds"); !took.is_null()) {
    service.initSeconds = took.get<double>();
  }
  if (const Json& executor = json.at("executor"); !executor.is_null()) {
    service.executor =
        ExecutorStatus{executor.at("id"), executor.at("requests"), executor.at("queued"),
                       executor.at("serving"), executor.at("errors")};
  }
  json.at("stuck").get_to(service.stuck);
  return service;
}

}  // namespace

const char* nameOf(ServiceState state) { return kStates.at(static_cast<std::size_t>(state)); }

nlohmann::ordered_json toJson(const ProcessStatus& status) {
  Json services = Json::array();
  for (const ServiceStatus& service : status.services) services.push_back(toJson(service));
  return {{"process", status.process},      {"file", status.file},
          {"phase", status.phase},          {"waits_for", status.waitsFor},
          {"up_seconds", status.upSeconds}, {"services", std::move(services)}};
}

std::string textOf(const nlohmann::ordered_json& json, int indent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

std::string writeProcessStatus(const ProcessStatus& status) { return textOf(toJson(status), -1); }

ProcessStatus readProcessStatus(const std::string& text) {
  try {
    const Json json = Json::parse(text);
    ProcessStatus status;
    json.at("process").get_to(status.process);
    json.at("file").get_to(status.file);
    json.at("phase").get_to(status.phase);
    json.at("waits_for").get_to(status.waitsFor);
    json.at("up_seconds").get_to(status.upSeconds);
    for (const Json& service : json.at("services")) status.services.push_back(readService(service));
    return status;
  } catch (const Json::exception& error) {
    throw std::runtime_error(std::string("it is no status: ") + error.what());
  }
}

}  // namespace zerva
