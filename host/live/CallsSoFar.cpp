#include "host/live/CallsSoFar.h"

#include <stdexcept>
#include <utility>

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

/** What no count and no duration comes near to, and is added up without harm. */
constexpr std::uint64_t kLargest = std::uint64_t{1} << 48;

std::uint64_t numberOf(const Json& json) {
  if (json.is_number_unsigned() && json.get<std::uint64_t>() <= kLargest) {
    return json.get<std::uint64_t>();
  }
  throw std::runtime_error("these are no calls: " + textOf(json, -1) + " is no such number");
}

CallRun readCall(const Json& json) {
  CallRun call;
  json.at("service").get_to(call.caller);
  json.at("channel").get_to(call.channel);
  json.at("interface").get_to(call.interface);
  json.at("method").get_to(call.method);
  call.count = numberOf(json.at("count"));
  call.failures = numberOf(json.at("failures"));
  for (const Json& pair : json.at("times")) {
    call.times[static_cast<std::int64_t>(numberOf(pair.at(0)))] += numberOf(pair.at(1));
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
    all.others = numberOf(json.at("others"));
    all.failedOthers = numberOf(json.at("failed_others"));
    for (const Json& one : json.at("calls")) {
      CallRun call = readCall(one);
      if (all.calls.size() < SeenCalls::kMostOfAll) {
        all.calls.push_back(std::move(call));
      } else {
        all.others += call.count;
        all.failedOthers += call.failures;
      }
    }
    return all;
  } catch (const Json::exception& error) {
    throw std::runtime_error(std::string("these are no calls: ") + error.what());
  }
}

}  // namespace zerva
