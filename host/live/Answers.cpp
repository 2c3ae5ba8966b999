#include "host/live/Answers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

#include "framework/CommsChannel.h"
#include "framework/ProtocolAdapter.h"
#include "framework/ProxyRequestImpl.h"
#include "host/live/AtOnce.h"
#include "host/live/HostStatusProxy.h"
#include "host/live/LiveBus.h"
#include "host/live/TextTable.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/ProtocolRepository.h"

namespace zerva {
namespace {

constexpr const char* kProtocol = "zerva_simple_rmi";

/** @returns what another process may have worded as a line that is not too long to be shown. */
std::string lineOf(std::string text) {
  std::size_t length = 300;
  if (text.size() > length) {
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) --length;
    text.resize(length);
    text += "...";
  }
  return printable(std::move(text));
}

void ask(Answer& answer, Question question, ProtocolAdapter& adapter) {
  const auto error = exceptionOf([&] {
    const std::string to = HostStatusIfc::channelOf(answer.process);
    // Each with a channel of its own, since the ids of their requests are the same.
    CommsChannel from("/zerva/live", nullptr);
    ProxyRequestImpl request(&from, to, HostStatusIfc::name, kProtocol, &adapter, "", nullptr);
    HostStatusProxy proxy;
    proxy.initialise(&request);
    answer.status = readProcessStatus(proxy.status());
    if (question == Question::StatusAndCalls) answer.calls = readCallsSoFar(proxy.calls());
  });
  if (error) answer.why = lineOf(*error);
}

/** What an executor is known by, across processes. */
using ExecutorKey = std::pair<int, std::uint64_t>;

std::map<ExecutorKey, std::uint64_t> queuedBefore(const std::vector<Answer>& answers) {
  std::map<ExecutorKey, std::uint64_t> begun;
  for (const Answer& answer : answers) {
    if (!answer.status) continue;
    for (const ServiceStatus& service : answer.status->services) {
      if (!service.executor || service.executor->queued == 0) continue;
      begun.emplace(ExecutorKey{answer.process, service.executor->id}, service.executor->requests);
    }
  }
  return begun;
}

}  // namespace

std::vector<Answer> askAll(const LiveBus& bus, Question question) {
  std::vector<Answer> answers;
  for (BusProcess& process : bus.processes()) {
    Answer answer;
    answer.process = process.id;
    const std::string channel = HostStatusIfc::channelOf(process.id);
    answer.tells = std::find(process.channels.begin(), process.channels.end(), channel) !=
                   process.channels.end();
    answer.channels = std::move(process.channels);
    answers.push_back(std::move(answer));
  }
  ProtocolRepository protocols;
  ProtocolAdapter& adapter = *protocols.findProtocolAdapter(kProtocol);
  std::vector<Answer*> asked;
  for (Answer& answer : answers) {
    if (answer.tells) asked.push_back(&answer);
  }
  doAtOnce(asked.size(), [&](std::size_t place) { ask(*asked[place], question, adapter); });
  return answers;
}

bool somethingIsQueued(const std::vector<Answer>& answers) {
  return !queuedBefore(answers).empty();
}

void markStuck(std::vector<Answer>& now, const std::vector<Answer>& before) {
  const auto begun = queuedBefore(before);
  for (Answer& answer : now) {
    if (!answer.status) continue;
    for (ServiceStatus& service : answer.status->services) {
      if (!service.executor || service.executor->queued == 0) continue;
      const auto found = begun.find({answer.process, service.executor->id});
      service.stuck = found != begun.end() && found->second == service.executor->requests;
    }
  }
}

bool isNamed(const ServiceStatus& service, const std::string& name) {
  return service.channel == name ||
         (" " + service.interfaces + " ").find(" " + name + " ") != std::string::npos;
}

bool showTrouble(const std::vector<Answer>& answers, const std::string& name) {
  const auto isTrouble = [&](const ServiceStatus& service) {
    return (name.empty() || isNamed(service, name)) &&
           (service.stuck || service.state == ServiceState::Failed);
  };
  return std::any_of(answers.begin(), answers.end(), [&](const Answer& answer) {
    if (!answer.status) return name.empty() && answer.tells;
    const auto& services = answer.status->services;
    return std::any_of(services.begin(), services.end(), isTrouble);
  });
}

}  // namespace zerva
