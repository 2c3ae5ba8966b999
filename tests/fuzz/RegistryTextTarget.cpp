// Input: texts for the registry, one a line.

#include <optional>
#include <string>
#include <vector>

#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/ZervaException.h"
#include "registry/RegistryText.h"
#include "registry/ServiceRegistry.h"
#include "tests/fuzz/FuzzTarget.h"

using namespace zerva;
using namespace zerva::fuzz;

namespace {

std::optional<RegistryText> parsed(const std::string& text) {
  try {
    return parseRegistryText(text);
  } catch (const ZervaException& refusal) {
    const std::string why = refusal.what();
    require(!why.empty() && why.find('\n') == std::string::npos, "a refusal is one line");
    return std::nullopt;
  }
}

std::optional<std::string> answer(ServiceRegistry& registry, const std::string& text) {
  CommsChannelDataContainerMessage message;
  message.setData(text);
  CommsChannelDataContainerMessage reply;
  try {
    registry.messageReceived(message, reply);
  } catch (const ZervaException&) {
    return std::nullopt;
  }
  return reply.getData();
}

std::string joined(const RegistryText& text) {
  std::string whole = text.word + ":";
  for (std::size_t at = 0; at < text.fields.size(); ++at) {
    whole += (at == 0 ? "" : ",") + text.fields[at];
  }
  return whole;
}

void checkRecord(ServiceRegistry& registry, const RegistryText& text, const std::string& reply) {
  const auto& fields = text.fields;
  require(reply.empty(), "nobody answers a record");
  const bool proxy = text.word == "reg_proxy";
  const std::string question =
      proxy ? "find_proxy:" + fields[2] : "find_invoker:" + fields[2] + "," + fields[3];
  require(answer(registry, question) ==
              (proxy ? "found_proxy:" : "found_invoker:") + fields[0] + "," + fields[1],
          "what was recorded is found");
}

void checkText(ServiceRegistry& registry, const std::string& text) {
  const auto parts = parsed(text);
  const auto reply = answer(registry, text);
  require(parts.has_value() == reply.has_value(), "the registry takes what can be taken apart");
  if (!parts) return;
  require(joined(*parts) == text, "nothing of a text is lost");
  if (parts->word.compare(0, 4, "reg_") == 0) {
    checkRecord(registry, *parts, *reply);
  } else {
    require(*reply == "unknown:" || reply->compare(0, 5, "found") == 0, "a question is answered");
    // None of the names is served by anybody in this process.
    require(parts->word != "find" || *reply == "unknown:", "a channel is found if it is served");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view texts = textOf(data, size);
  ServiceRegistry registry;
  do {
    checkText(registry, std::string(takeLine(texts)));
  } while (!texts.empty());
  return 0;
}
