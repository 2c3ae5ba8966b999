#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ServiceRepository.h"
#include "framework/CCInterceptorDispatcher.h"
#include "framework/CommsChannel.h"
#include "framework/InvokeInterceptorDispatcher.h"
#include "tests/conformance/Lines.h"
#include "tests/conformance/TestConfigurator.h"
#include "tests/fakes/Creators.h"
#include "tests/fakes/Platform.h"
#include "tests/fakes/RecordingInvoker.h"
#include "tests/fakes/RecordingProtocols.h"
#include "tests/fakes/RecordingProxy.h"
#include "tests/fakes/RecordingRepository.h"
#include "tests/fakes/RecordingService.h"
#include "tests/fakes/SemaphoreTable.h"

namespace zerva::conformance {

using fakes::Platform;
using fakes::Trace;

/** @returns what the exception of a kind says that a call throws. */
template <class Exception, class Call>
std::string messageOf(const Call& call) {
  try {
    call();
  } catch (const Exception& exception) {
    return exception.what();
  }
  return "nothing was thrown";
}

/** What the bounds-tested access to a list of tokens says. */
inline std::string outOfRange(int place, int size) {
  return "vector::_M_range_check: __n (which is " + std::to_string(place) +
         ") >= this->size() (which is " + std::to_string(size) + ")";
}

/**
 * A test on the recording platform. An operation under test is expected to do exactly the calls
 * that the test lists, in that order; a call that is not listed fails the test. At the end nothing
 * that was made may be left, unless the test says what.
 */
class ConformanceTest : public testing::Test {
 protected:
  ConformanceTest();
  ~ConformanceTest() override;

  /** The calls since the last look, all of them, in order. Deeper ones are not looked at. */
  void expectTrace(const Lines& expected);

  /** As `expectTrace`; when the local thread starter ends is left open, except that it does. */
  void expectTraceButEndOfThreader(const Lines& expected);

  /** Forgets what was done so far: the arrangement of a test. */
  static void forget() { Trace::clear(); }

  /** Says that an object of this name lives on after the test, because nobody deletes it. */
  void leaves(const std::string& name) { left.push_back(name); }

  /** The level that is on for the module of all messages; 5 is progress. */
  static void logLevel(int level) { Platform::logLevel("Service Config", level); }

  /**
   * Puts a creator into a library. Calling it is a line of the trace that consists of its name and
   * parentheses.
   */
  template <class Made = fakes::RecordingService>
  static void offerService(const std::string& lib, const std::string& creator) {
    offer(lib, creator, fakes::Creators::service([creator]() -> Service* {
            Trace::record(creator + "()");
            return new Made;
          }));
  }

  template <class Made = fakes::RecordingProxy>
  static void offerProxy(const std::string& lib, const std::string& creator) {
    offer(lib, creator, fakes::Creators::proxy([creator]() -> Proxy* {
            Trace::record(creator + "()");
            return new Made;
          }));
  }

  static void offerInvoker(const std::string& lib, const std::string& creator);

  /** Creators that give null. */
  static void offerNoService(const std::string& lib, const std::string& creator);
  static void offerNoInvoker(const std::string& lib, const std::string& creator);

  static void offer(const std::string& lib, const std::string& creator, void* function) {
    Platform::library(lib).symbols[creator] = fakes::Symbol{function, std::nullopt};
  }

  /** The lines of a library that is opened, and whose creator is resolved, without a failure. */
  static std::string opened(const std::string& dll, const std::string& lib);
  static std::string resolved(const std::string& dll, const std::string& creator);

 private:
  std::vector<std::string> left;
};

/** A test with everything that a host gives a configurator. */
class HostTest : public ConformanceTest {
 protected:
  HostTest();

  template <class... Arguments>
  static std::string progress(const std::string& format, const Arguments&... arguments) {
    return guarded(5, logLine("src/ServiceConfigurator", 5, format, arguments...));
  }

  template <class... Arguments>
  static std::string error(const std::string& format, const Arguments&... arguments) {
    return logLine("src/ServiceConfigurator", 2, format, arguments...);
  }

  /** The line that tells how long `init` took, for an `init` that took no time. */
  static std::string initTook(const std::string& ifc, long seconds = 0, long milliseconds = 0);

  /** The lines of a query to the registry that is the n-th of the configurator. */
  static std::string query(const std::string& request, int n = 1);

  /** Makes a configurator of the given kind; its two sides and semaphores have names from the start
   * on. Afterwards the trace is empty, and numbers start at 1. */
  template <class Kind, class... Arguments>
  std::unique_ptr<Kind> make(Arguments... arguments) {
    auto configurator = makeRecorded<Kind>(arguments...);
    configurator->nameParts();
    fakes::Objects::renumber();
    forget();
    return configurator;
  }

  /** As `make`, with the trace of the construction. */
  template <class Kind, class... Arguments>
  std::unique_ptr<Kind> makeRecorded(Arguments... arguments) {
    Platform::nameSemaphores({"proxySem", "invokerSem", "registrySem"});
    void* memory = operator new(sizeof(Kind));
    // What a constructor forgets to set is seen. Volatile, since the compiler knows that nobody may
    // read from an object what was there before it.
    std::fill_n(static_cast<volatile unsigned char*>(memory), sizeof(Kind), 0xa5);
    Kind::nameSides(memory);
    try {
      return std::unique_ptr<Kind>(new (memory) Kind(arguments...));
    } catch (...) {
      operator delete(memory);
      throw;
    }
  }

  CommsChannel channel;
  CCInterceptorDispatcher interceptors;
  InvokeInterceptorDispatcher invokeInterceptors;
  fakes::RecordingProtocols protocols;
  fakes::NamedAdapter adapter;
  ServiceRepository inner;
  fakes::RecordingRepository repository;
};

/** A test of a configurator of all parts, which can script its lookups. */
class ConfiguratorTest : public HostTest {
 protected:
  ConfiguratorTest();

  /** Deletes the configurator. */
  void end() { sut.reset(); }

  /** Records objects in the repository, whose they are then, and forgets the trace. */
  Service* recordService(const std::string& ifc, const std::string& chan);
  Service* recordLegacyService(const std::string& ifc);
  Proxy* recordProxy(std::string ifc, const std::string& svcChannel, const std::string& qualifier);

  std::unique_ptr<TestConfigurator> sut;
};

}  // namespace zerva::conformance
