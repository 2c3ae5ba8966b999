#include "host/live/CallsSoFar.h"

#include <stdexcept>

#include "host/live/ProcessStatusJson.h"
#include "runtime/libClientUtils/trace/SeenCalls.h"

namespace zerva {
namespace {

using Json = nlohmann::ordered_json;

Json toJson(const CallRun& call) {
  Json times = Json::array();
  for (const auto& [last, count] : call.times) times.push_back(Json::array({last, count}));
  return {{"service", call.caller},   {"channel", call.channel}, {"interface", call.interface},
          {"method", call.method},    {"count", call.count},     {"failures", call.failures},
          {"times", std::move(times)}};
}

CallRun readCall(const Json& json) {
  CallRun call;
  json.at("service").get_to(call.caller);
  json.at("channel").get_to(call.channel);
  json.at("interface").get_to(call.interface);
  json.at("method").get_to(call.method);
  json.at("count").get_to(call.count);
  json.at("failures").get_to(call.failures);
  for (const Json& pair : json.at("times")) {
    call.times[pair.at(0).get<std::int64_t>()] += pair.at(1).get<std::uint64_t>();
  }
  return call;
}

}  // namespace

CallsSoFar callsOfThisProcess() {
  CallsSoFar all;
  SeenCalls::visit([&](const CallKey& key, const CallFigures& figures) {
    all.calls.push_back({std::string(key.service), std::string(key.channel),
                         std::string(key.interface), std::string(key.method), figures.count,
                         figures.failures, figures.times});
  });
  const SeenCalls::Others others = SeenCalls::others();
  all.others = others.count;
  all.failedOthers = others.failures;
  return all;
}

std::string writeCallsSoFar(const CallsSoFar& calls) {
  Json all = Json::array();
  for (const CallRun& call : calls.calls) all.push_back(toJson(call));
  return textOf(
      {{"calls", std::move(all)}, {"others", calls.others}, {"failed_others", calls.failedOthers}},
      -1);
}

CallsSoFar readCallsSoFar(const std::string& text) {
  try {
    const Json json = Json::parse(text);
    CallsSoFar all;
    for (const Json& call : json.at("calls")) all.calls.push_back(readCall(call));
    json.at("others").get_to(all.others);
    json.at("failed_others").get_to(all.failedOthers);
    return all;
  } catch (const Json::exception& error) {
    throw std::runtime_error(std::string("these are no calls: ") + error.what());
  }
}

}  // namespace zerva
