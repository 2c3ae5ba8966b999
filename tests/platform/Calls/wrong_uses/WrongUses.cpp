// Proxies and invokers that must not compile, each for a reason that its author is told. WRONG says
// which; with 0 everything is right.

#include <string>

#include "rmi/InvokerOf.h"
#include "rmi/ProxyOf.h"

class Sensor {
 public:
  virtual double speed(int seconds) = 0;
  virtual void read(std::string& into) = 0;
  virtual void name(const char* text) = 0;

 protected:
  ~Sensor() = default;
};

class Other {
 public:
  virtual void something() = 0;

 protected:
  ~Other() = default;
};

struct Unknown {};

class SensorProxy : public zerva::rmi::ProxyOf<Sensor> {
 public:
  double speed(int seconds) override {
#if WRONG == 1
    return call(ZERVA_METHOD(Sensor::speed), seconds, 2);
#elif WRONG == 2
    call(ZERVA_METHOD(Other::something));
    return seconds;
#elif WRONG == 3
    zerva::rmi::Sent<std::tuple<Unknown> > sent{{}};
    return seconds + static_cast<double>(sizeof sent);
#else
    return call(ZERVA_METHOD(Sensor::speed), seconds);
#endif
  }
  void read(std::string& into) override {
#if WRONG == 4
    call(ZERVA_METHOD(Sensor::read), into);
#else
    into.clear();
#endif
  }
  void name(const char* text) override {
#if WRONG == 5
    call(ZERVA_METHOD(Sensor::name), text);
#else
    static_cast<void>(text);
#endif
  }
};

class SensorInvoker : public zerva::rmi::InvokerOf<Sensor> {
 public:
#if WRONG == 6
  SensorInvoker() : InvokerOf(ZERVA_METHOD(Other::something)) {}
#else
  SensorInvoker() : InvokerOf(ZERVA_METHOD(Sensor::speed)) {}
#endif
#if WRONG == 7
  void invoke(Executable& service, ProtocolAdapter& adapter, const std::string& call,
              std::string& reply) override {
    InvokerOf::invoke(service, adapter, call, reply);
  }
#endif
};

double useBoth() {
  SensorInvoker invoker;
  static_cast<void>(invoker);
  return SensorProxy().speed(1);
}
