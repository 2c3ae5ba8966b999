#include "registry/ServiceRegistry.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string_view>

#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Logging.h"
#include "framework/ZervaException.h"
#include "registry/RegistryText.h"

namespace zerva {
namespace {

const char* const kModule = "Service Registry";
const char* const kSource = "registry";
const char* const kOwnChannel = "/zerva/serviceregistry";
const char* const kOwnInterface = "ServiceRegistryIfc";
const char* const kOwnLibrary = "libServiceRegistry.so";

std::string codeReply(const std::string& word, const std::optional<CodeRecord>& record) {
  return record ? word + ":" + record->lib + "," + record->creator : "unknown:";
}

void refuseCommas(const char* what, std::initializer_list<std::string_view> fields) {
  for (const std::string_view field : fields) {
    if (field.find(',') != std::string_view::npos) {
      throw ZervaException(std::string("the record of ") + what + " has a comma in '" +
                           std::string(field) + "'");
    }
  }
}

/** Calls a function for each name of a list that has single blanks between them. */
template <typename Function>
void forEachName(const std::string& list, const Function& function) {
  for (std::size_t begin = 0; begin < list.size();) {
    const std::size_t end = std::min(list.find(' ', begin), list.size());
    if (end > begin) {
      function(list.substr(begin, end - begin));
    }
    begin = end + 1;
  }
}

}  // namespace

ServiceRegistry::ServiceRegistry()
    : channel_(std::string(kOwnChannel) + "/asking", nullptr),
      records_([this](const std::string& channel) { return channel_.whoServes(channel); }) {
  records_.announce(kOwnInterface, kOwnChannel);
  records_.recordProxy(kOwnInterface, {kOwnLibrary, "createServiceRegistryProxy"});
  for (const char* protocol : {"zerva_svc_xml", "zerva_simple_rmi"}) {
    records_.recordInvoker(kOwnInterface, protocol, {kOwnLibrary, "createServiceRegistryInvoker"});
  }
}

void ServiceRegistry::init(SvcRTEContext* /*context*/) {}

void ServiceRegistry::messageReceived(const CommsChannelDataContainerMessage& message,
                                      CommsChannelDataContainerMessage& reply) {
  reply.setData(answer(message.getData()));
}

std::string ServiceRegistry::answer(const std::string& text) {
  const RegistryText parsed = parseRegistryText(text);
  const auto& fields = parsed.fields;
  if (parsed.word == "find") {
    const auto channel = records_.findChannel(fields[0]);
    return channel ? "found:" + *channel : "unknown:";
  }
  if (parsed.word == "find_proxy") {
    return codeReply("found_proxy", records_.findProxy(fields[0]));
  }
  if (parsed.word == "find_invoker") {
    return codeReply("found_invoker", records_.findInvoker(fields[0], fields[1]));
  }
  if (parsed.word == "reg_proxy") {
    registerProxy(fields[0], fields[1], fields[2], fields[3]);
  } else {
    registerInvoker(fields[0], fields[1], fields[2], fields[3]);
  }
  return {};
}

void ServiceRegistry::registerInterface(const std::string& ifc, const std::string& channel) {
  refuseCommas("an interface", {ifc, channel});
  forEachName(ifc, [&](const std::string& name) {
    records_.announce(name, channel);
    if (loggingOnAppUni(kModule, 5)) {
      logAppUni(kModule, kSource, 5, __LINE__, "interface '%s' is served on channel '%s'",
                name.c_str(), channel.c_str());
    }
  });
}

void ServiceRegistry::unregisterInterface(const std::string& ifc, const std::string& channel) {
  forEachName(ifc, [&](const std::string& name) { records_.withdraw(name, channel); });
}

void ServiceRegistry::registerProxy(const std::string& lib, const std::string& creator,
                                    const std::string& ifc, const std::string& prot) {
  refuseCommas("a proxy", {lib, creator, ifc, prot});
  records_.recordProxy(ifc, {lib, creator});
}

void ServiceRegistry::registerInvoker(const std::string& lib, const std::string& creator,
                                      const std::string& ifc, const std::string& prot) {
  refuseCommas("an invoker", {lib, creator, ifc, prot});
  records_.recordInvoker(ifc, prot, {lib, creator});
}

}  // namespace zerva

extern "C" ZERVA_EXPORT Service* createServiceRegistry() { return new zerva::ServiceRegistry; }
