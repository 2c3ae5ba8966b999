#pragma once

#include <cstddef>
#include <functional>

class Invoker;
class Proxy;
class Service;

namespace zerva::fakes {

/**
 * Creator functions as libraries export them, without arguments, each bound to a body of the test's
 * choice, which may record, return null or throw. There are 32 of each kind in a test.
 */
class Creators {
 public:
  static void* service(std::function<Service*()> body);
  static void* proxy(std::function<Proxy*()> body);
  static void* invoker(std::function<Invoker*()> body);

  /** Unbinds all; calling one that was bound is an error from here on. */
  static void clear();
};

}  // namespace zerva::fakes
