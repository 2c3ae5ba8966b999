#pragma once

#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "framework/DecodeException.h"
#include "framework/Executable.h"
#include "framework/ProtocolAdapter.h"
#include "framework/TargetInvoker.h"
#include "framework/ZervaException.h"
#include "rmi/Carried.h"
#include "rmi/Method.h"

namespace zerva::rmi {

/**
 * Base of the invoker for an interface. Each method is one line:
 *
 *     class WindSensorInvoker : public zerva::rmi::InvokerOf<WindSensor> {
 *      public:
 *       WindSensorInvoker() : InvokerOf(ZERVA_METHOD(WindSensor::speed),
 *                                       ZERVA_METHOD(WindSensor::reset)) {}
 *     };
 *
 * To do something around each call, derive from `Invoker` and call one of these there.
 */
template <typename Interface>
class InvokerOf : public TargetInvoker {
 public:
  template <auto... Pointers>
  explicit InvokerOf(Method<Pointers>... methods)
      : calls_{{std::string(methods.name), &invokeMethod<Pointers>}...} {
    static_assert((... && std::is_base_of_v<typename Method<Pointers>::Class, Interface>),
                  "the method is of another interface");
  }

  void invoke(Executable& service, ProtocolAdapter& adapter, const std::string& call,
              std::string& reply) final {
    void* const target = targetOf(service);
    if (target == nullptr) throw DecodeException("the service does not have the interface");
    invokeTarget(target, adapter, call, reply);
  }

  void* targetOf(Executable& service) final { return dynamic_cast<Interface*>(&service); }

  void invokeTarget(void* target, ProtocolAdapter& adapter, const std::string& call,
                    std::string& reply) final {
    const auto found = calls_.find(adapter.methodOf(call));
    if (found == calls_.end()) {
      throw DecodeException("method '" + adapter.methodOf(call) + "' is not known");
    }
    found->second(*static_cast<Interface*>(target), adapter, call, reply);
  }

 private:
  using Call = void (*)(Interface&, ProtocolAdapter&, const std::string&, std::string&);

  template <auto Pointer>
  static void invokeMethod(Interface& service, ProtocolAdapter& adapter, const std::string& call,
                           std::string& reply) {
    using Result = typename Method<Pointer>::Result;
    Received<typename Method<Pointer>::Arguments> arguments;
    try {
      adapter.readCall(call, arguments);
    } catch (const DecodeException& exception) {
      throw DecodeException(std::string("the arguments did not decode: ") + exception.what());
    }
    const auto make = [&](auto&&... values) -> Result {
      try {
        return std::invoke(Pointer, service, std::forward<decltype(values)>(values)...);
      } catch (const DecodeException& exception) {
        // Of something that the service decoded; this call did get there.
        throw ZervaException(exception.what());
      }
    };
    if constexpr (std::is_void_v<Result>) {
      std::apply(make, std::move(arguments.value));
      adapter.writeReply(Sent<void>(), reply);
    } else {
      adapter.writeReply(Sent<Result>(std::apply(make, std::move(arguments.value))), reply);
    }
  }

  const std::map<std::string, Call> calls_;
};

}  // namespace zerva::rmi
