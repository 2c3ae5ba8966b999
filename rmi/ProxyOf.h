#pragma once

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "framework/Proxy.h"
#include "framework/ProxyRequest.h"
#include "rmi/Carried.h"
#include "rmi/Method.h"

namespace zerva::rmi {

/**
 * Base of the proxy for an interface. Each method is one line:
 *
 *     class WindSensorProxy : public zerva::rmi::ProxyOf<WindSensor> {
 *       double speed(int station) override { return call(ZERVA_METHOD(WindSensor::speed), station);
 * }
 *     };
 *
 * Its methods may be called by many threads at once, wait for the answer and throw `CallException`.
 */
template <typename Interface>
class ProxyOf : public Proxy, public Interface {
 public:
  void initialise(ProxyRequest* request) override { request_ = request; }

 protected:
  /** Calls the method of the service; see `ProxyRequest::call`. */
  template <auto Pointer, typename... Given>
  typename Method<Pointer>::Result call(Method<Pointer> method, Given&&... given) const {
    using Arguments = typename Method<Pointer>::Arguments;
    using ResultType = typename Method<Pointer>::Result;
    static_assert(std::is_base_of_v<typename Method<Pointer>::Class, Interface>,
                  "the method is of another interface");
    static_assert(std::tuple_size_v<Arguments> == sizeof...(Given), "the arguments do not fit");
    using SentArguments = ArgumentsFrom<Arguments, Given...>;
    const Sent<SentArguments> arguments{SentArguments(std::forward<Given>(given)...)};
    Received<ResultType> result;
    request_->call(std::string(method.name), arguments, result);
    if constexpr (!std::is_void_v<ResultType>) {
      return std::move(result.value);
    }
  }

 private:
  ProxyRequest* request_ = nullptr;
};

}  // namespace zerva::rmi
