#include "host/live/RegistryQuestions.h"

#include <stdexcept>

#include "framework/CommsChannelDataContainerMessage.h"

namespace zerva {
namespace {

constexpr const char* kRegistry = "/zerva/serviceregistry";
constexpr long kOnlyRequest = 1;

}  // namespace

bool RegistryQuestions::isThere() { return from_.isServed(kRegistry); }

std::optional<std::string> RegistryQuestions::findChannel(const std::string& interface) {
  // The name of no interface has one, and the registry would read it as the end of the name.
  if (interface.find(',') != std::string::npos) return std::nullopt;
  return ask("find:" + interface + "," + from_.getName(), "found:");
}

bool RegistryQuestions::hasInvoker(const std::string& interface, const std::string& protocol) {
  return ask("find_invoker:" + interface + "," + protocol, "found_invoker:").has_value();
}

/** @returns what stands behind the word in the answer; nothing when the answer is another one. */
std::optional<std::string> RegistryQuestions::ask(const std::string& question,
                                                  const std::string& word) {
  CommsChannelDataContainerMessage message;
  message.setChannel(kRegistry);
  message.setData(question);
  message.setRequestId(kOnlyRequest);
  // One that could not be sent has an answer too: the reason.
  from_.send(message);
  if (!from_.receiveReply(message, kOnlyRequest)) {
    throw std::runtime_error("the registry does not answer: " + message.getError());
  }
  const std::string answer = message.getData();
  if (!answer.starts_with(word)) return std::nullopt;
  return answer.substr(word.size());
}

}  // namespace zerva
