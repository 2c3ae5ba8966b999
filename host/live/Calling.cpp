#include "host/live/Calling.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>

#include "framework/CallException.h"
#include "framework/CommsChannel.h"
#include "framework/DecodeException.h"
#include "framework/ProtocolAdapter.h"
#include "framework/ProxyRequestImpl.h"
#include "framework/Readable.h"
#include "host/live/CallArguments.h"
#include "host/live/LiveBus.h"
#include "host/live/ProcessStatusJson.h"
#include "host/live/RegistryQuestions.h"
#include "host/live/TextTable.h"
#include "host/live/XmlReply.h"
#include "runtime/libClientUtils/ProtocolRepository.h"

namespace zerva {
namespace {

constexpr const char* kProtocol = "zerva_svc_xml";

void complain(const std::string& text) {
  std::fprintf(stderr, "zerva: %s\n", printable(text).c_str());
}

/** Keeps the reply as it came, since nobody here knows what the method returns. */
class KeepingAdapter final : public ProtocolAdapter {
 public:
  explicit KeepingAdapter(ProtocolAdapter& adapter) : adapter_(adapter) {}

  const std::string& getProtocol() const override { return adapter_.getProtocol(); }
  void writeCall(const std::string& method, const Writable& arguments, std::string& call) override {
    adapter_.writeCall(method, arguments, call);
  }
  std::string methodOf(const std::string& call) override { return adapter_.methodOf(call); }
  void readCall(const std::string& call, Readable& arguments) override {
    adapter_.readCall(call, arguments);
  }
  void writeReply(const Writable& result, std::string& reply) override {
    adapter_.writeReply(result, reply);
  }
  void readReply(const std::string& reply, Readable& /*result*/) override {
    value_ = readXmlReply(reply);
  }

  const nlohmann::ordered_json& value() const { return value_; }

 private:
  ProtocolAdapter& adapter_;
  nlohmann::ordered_json value_;
};

struct Nothing final : Readable {
  void read(ValueReader& /*reader*/) override {}
};

void print(const nlohmann::ordered_json& value, bool json) {
  if (!json && value.is_null()) return;
  const bool bare = !json && value.is_string();
  const std::string text = bare ? value.get<std::string>() : textOf(value, json ? 2 : -1);
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
}

LiveExit callOn(const std::string& channel, CommsChannel& from, const CallArguments& arguments,
                const CallOptions& options) {
  ProtocolRepository protocols;
  KeepingAdapter adapter(*protocols.findProtocolAdapter(kProtocol));
  ProxyRequestImpl request(&from, channel, options.interface, kProtocol, &adapter, "", nullptr);
  try {
    Nothing nothing;
    request.call(options.method, arguments, nothing);
  } catch (const CallException& failure) {
    complain(failure.what());
    return LiveExit::Trouble;
  }
  print(adapter.value(), options.json);
  return LiveExit::Good;
}

LiveExit lookUpAndCall(const CallArguments& arguments, const CallOptions& options) {
  CommsChannel from("/zerva/live", nullptr);
  RegistryQuestions registry(from);
  if (!registry.isThere()) {
    complain("nobody serves the registry on this bus");
    return LiveExit::NoRegistry;
  }
  const auto channel = registry.findChannel(options.interface);
  if (!channel) {
    complain("the registry does not know the interface " + options.interface);
    return LiveExit::Unknown;
  }
  if (!registry.hasInvoker(options.interface, kProtocol)) {
    complain("no invoker of " + options.interface + " is recorded for the protocol " + kProtocol +
             "; a directive records one: invoker_info: LIBRARY CREATOR " + options.interface + " " +
             kProtocol);
    return LiveExit::NoInvoker;
  }
  return callOn(*channel, from, arguments, options);
}

}  // namespace

LiveExit call(const CallOptions& options) {
  std::optional<CallArguments> arguments;
  try {
    arguments.emplace(options.arguments);
  } catch (const std::invalid_argument& error) {
    complain(error.what());
    return LiveExit::Usage;
  }
  std::unique_ptr<LiveBus> bus;
  try {
    bus = std::make_unique<LiveBus>(options.bus, options.timeout);
  } catch (const std::runtime_error& error) {
    complain(error.what());
    return LiveExit::NoBus;
  }
  try {
    return lookUpAndCall(*arguments, options);
  } catch (const std::runtime_error& error) {
    complain(error.what());
    return LiveExit::Trouble;
  }
}

}  // namespace zerva
