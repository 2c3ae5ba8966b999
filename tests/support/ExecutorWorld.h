#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "FrameworkContext.h"
#include "framework/CommsChannel.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/InvokeInterceptorDispatcher.h"
#include "framework/Service.h"
#include "framework/ServiceExecutor.h"
#include "framework/ServiceThreadPool.h"
#include "framework/Threader.h"

/** A service whose behaviour a test writes down. */
class ScriptedService : public Service {
 public:
  using Handler = std::function<std::string(const std::string& request)>;

  explicit ScriptedService(Handler handler = [](const std::string& request) { return request; })
      : handler_(std::move(handler)) {}

  void init(SvcRTEContext* /*context*/) override {}

  void messageReceived(const CommsChannelDataContainerMessage& message,
                       CommsChannelDataContainerMessage& reply) override {
    reply.setData(handler_(message.getData()));
  }

  void timerExpired(int timer) override {
    if (onTimer) {
      onTimer(timer);
    }
  }

  std::function<void(int)> onTimer;

 private:
  Handler handler_;
};

/** A context whose operations that executors and timers need are written down by a test. */
class ScriptedContext final : public FrameworkContext {
 public:
  std::function<Service*()> make = [] { return nullptr; };
  std::function<Service*(const std::string&, const std::string&)> real =
      [](const std::string&, const std::string&) { return nullptr; };
  std::function<std::string(Executable*)> channelOf = [](Executable*) { return std::string(); };

  std::function<Invoker*(const std::string&, const std::string&)> invoker =
      [](const std::string&, const std::string&) { return nullptr; };
  std::function<ProtocolAdapter*(const std::string&)> adapter = [](const std::string&) {
    return nullptr;
  };

  Invoker* findInvoker(std::string& interface, std::string& protocol) override {
    return invoker(interface, protocol);
  }
  Proxy* findProxy(std::string&, std::string&) override { return nullptr; }
  Proxy* findProxy(std::string&, std::string&, std::string&) override { return nullptr; }
  std::string findChannel(Executable* executable) override { return channelOf(executable); }
  Service* initialiseService(ServiceExecutor*, std::string, std::string, CommsChannelIfc*,
                             std::string) override {
    return make();
  }
  ProtocolAdapter* findProtocolAdapter(std::string& protocol) override { return adapter(protocol); }
  void removeAndDeleteProxyFromRepository(Proxy*, std::string&) override {}
  Service* findRealService(const std::string& interface, const std::string& channel) override {
    return real(interface, channel);
  }
};

/** How a request ended. */
struct Answer {
  bool ok;
  std::string data;
  std::string error;
};

/** Sends a request from a channel and waits for its end. */
inline Answer ask(CommsChannelIfc& from, const std::string& to, const std::string& data,
                  long id = 1) {
  CommsChannelDataContainerMessage message;
  message.setChannel(to);
  message.setData(data);
  message.setRequestId(id);
  from.send(message);
  const bool ok = from.receiveReply(message, id);
  return {ok, message.getData(), message.getError()};
}

/** Asks from a channel of its own. */
inline Answer ask(const std::string& to, const std::string& data) {
  CommsChannel from("/test/caller", nullptr);
  return ask(from, to, data);
}

enum class Mode { ST, MT };

/** A context, a pool, and the executors that a test makes; taken down in the right order. */
class ExecutorWorld {
 public:
  explicit ExecutorWorld(int poolSize = 4) : pool(poolSize, nullptr) {}

  ~ExecutorWorld() { end(); }

  /**
   * Deletes the executors. The last thing in a test, since services, and what their handlers use,
   * outlive the executors that call them.
   */
  void end() {
    for (const auto& executor : executors_) {
      executor->shutdown();
    }
    executors_.clear();
  }

  /** An executor that is not started. */
  ServiceExecutor& build(Service* service, const std::string& channel, Mode mode,
                         InvokeInterceptorDispatcher* dispatcher = nullptr) {
    executors_.push_back(
        std::make_unique<ServiceExecutor>(service, new CommsChannel(channel, nullptr), "Ifc",
                                          &context, &pool, dispatcher, mode == Mode::MT));
    return *executors_.back();
  }

  ServiceExecutor& buildLazy(const std::string& channel, Mode mode) {
    executors_.push_back(std::make_unique<ServiceExecutor>(
        "libLazy.so", "createLazy", "Ifc OtherIfc", new CommsChannel(channel, nullptr), &context,
        &pool, nullptr, mode == Mode::MT));
    return *executors_.back();
  }

  /** An executor that takes requests. */
  ServiceExecutor& run(Service* service, const std::string& channel, Mode mode,
                       InvokeInterceptorDispatcher* dispatcher = nullptr) {
    return start(build(service, channel, mode, dispatcher));
  }

  ServiceExecutor& runLazy(const std::string& channel, Mode mode) {
    return start(buildLazy(channel, mode));
  }

  static ServiceExecutor& start(ServiceExecutor& executor) {
    Threader threader;
    unsigned long threadId = 0;
    executor.startThread(threader, threadId);
    return executor;
  }

  void remove(ServiceExecutor& executor) {
    std::erase_if(executors_, [&](const auto& known) { return known.get() == &executor; });
  }

  ScriptedContext context;
  ServiceThreadPool pool;

 private:
  std::vector<std::unique_ptr<ServiceExecutor>> executors_;
};

/** What several threads did, in order. */
class Journal {
 public:
  void add(const std::string& entry) {
    const std::lock_guard lock(mutex_);
    entries_.push_back(entry);
  }

  std::vector<std::string> entries() const {
    const std::lock_guard lock(mutex_);
    return entries_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> entries_;
};
