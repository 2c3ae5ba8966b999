#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "framework/Threadable.h"
#include "runtime/libClientUtils/Description.h"
#include "runtime/libClientUtils/Mailbox.h"
#include "runtime/libClientUtils/ServingThread.h"
#include "runtime/libClientUtils/trace/TraceNames.h"
#include "runtime/libServiceExecutor/KnownInvokers.h"
#include "runtime/libServiceExecutor/Progress.h"
#include "runtime/libServiceExecutor/QueuePlaces.h"

class CommsChannelIfc;
class Executable;
class FrameworkContext;
class InvokeInterceptorDispatcher;
class ServiceExecutor;
class ServiceThreadPoolIfc;
class Threader;

namespace zerva {

/** What an executor was made with. */
struct ExecutorSettings {
  ServiceExecutor* owner;
  /** Null for a service that is still to be made. */
  Executable* service;
  bool lazy;
  std::string lib;
  std::string creator;
  std::string interfaces;
  CommsChannelIfc* channel;
  FrameworkContext* context;
  ServiceThreadPoolIfc* pool;
  InvokeInterceptorDispatcher* dispatcher;
  bool multiThreaded;
};

/**
 * The inside of an executor, shared with its channel and with the pool, so that a message that is
 * on its way when the executor is deleted meets a closed executor and not a deleted one.
 *
 * Requests wait in one queue. A service with one thread takes them on the executor's thread; for
 * the others each request puts one task into the pool, which takes whichever is first. No lock is
 * held while the context, an interceptor, the log or the service is called.
 */
class ExecutorCore final : public RequestReceiver,
                           public Serving,
                           public std::enable_shared_from_this<ExecutorCore> {
 public:
  explicit ExecutorCore(ExecutorSettings settings);
  ~ExecutorCore() override;

  /** Lets requests in; see `ServiceExecutor::startThread`. */
  void start(Threader& threader, unsigned long& threadId);

  /** See `ServiceExecutor::shutdown`. */
  void shutdown();

  /** See `ServiceExecutor::initService`. */
  void awaitService();

  /** @returns whether no request and no creation is under way. */
  bool isIdle() const;

  /** Waits until no request and no creation is under way. @returns false when time ran out. */
  bool waitUntilIdle(Clock::time_point deadline);
  void waitUntilIdle();

  /** Waits until the executor's own thread has ended. Called after `shutdown`. */
  void waitForThread() { thread_.waitForThreadCompletion(); }

  /** @returns the service, its interfaces and its channel, for people; also when they are gone. */
  std::string description() const;

  /** @returns the service; null as long as it is not made. */
  Executable* service() const;

  /** @returns how far it has come. */
  ExecutorProgress progress() const;

  bool receive(Envelope& envelope) override;
  bool waitsForCaller() const override;
  bool isStarted() const override { return started_.load(std::memory_order_relaxed); }
  const Executable* object() const override { return service(); }
  bool isMaking() const override;

  void waitBegins(const std::shared_ptr<Parker>& parker) override;
  void waitEnds(const std::shared_ptr<Parker>& parker) override;
  bool isShutDown() override { return closed_.load(std::memory_order_acquire); }
  bool serveNext(const CallChain& chain) override;
  std::string_view channelName() const override { return channelName_; }

 private:
  /** A list, since an executor that has nothing to do should take no memory for it. */
  using Queue = std::list<Envelope, QueuePlaces<Envelope>>;

  /** The body of the executor's own thread. */
  class OwnThread : public Threadable {
   public:
    explicit OwnThread(ExecutorCore& core) : core_(core) {}
    void run() override { core_.serveOnOwnThread(); }

   private:
    ExecutorCore& core_;
  };

  /** How the making of a lazy service ended. */
  struct Made {
    Executable* service;
    std::string error;
    bool final;
  };

  /** What a service gets that is handed a message; kept for the next one. */
  struct Handed;

  /**
   * While it lives, a request or the making of the service is under way. Made under the lock, which
   * may be released meanwhile, and is held again afterwards.
   */
  class UnderWay {
   public:
    UnderWay(ExecutorCore& core, std::unique_lock<std::mutex>& lock) : core_(core), lock_(lock) {
      ++core_.underWay_;
    }
    ~UnderWay() {
      if (!lock_.owns_lock()) lock_.lock();
      if (--core_.underWay_ == 0 && core_.awaitingIdle_ > 0) core_.ended_.notify_all();
    }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

   private:
    ExecutorCore& core_;
    std::unique_lock<std::mutex>& lock_;
  };

  class Taken;

  /** While it lives, a task of the pool that runs, or is refused. Lives under the lock. */
  class InPool {
   public:
    /** @param last gets the executor when it was the last one, which may be its end. */
    InPool(ExecutorCore& core, std::shared_ptr<ExecutorCore>& last) : core_(core), last_(last) {}
    ~InPool() {
      if (--core_.inPool_ == 0) last_ = std::move(core_.heldByPool_);
    }
    InPool(const InPool&) = delete;
    InPool& operator=(const InPool&) = delete;

   private:
    ExecutorCore& core_;
    std::shared_ptr<ExecutorCore>& last_;
  };

  bool runsOnPool() const { return settings_.multiThreaded && service_ != nullptr; }
  void serveOnOwnThread();
  void serveOne(Parker& parker, std::unique_lock<std::mutex>& lock);
  void serveOneOnPool();
  void serve(Taken& taken, Executable& service);
  void serveMessage(Taken& taken, Executable& service);
  void failNested(Envelope& envelope, const std::string& error);
  std::string handOver(Executable& service, Taken& taken, Payload& answer);
  std::string call(Executable& service, const Taken& taken, std::string* method, Payload& answer);
  std::string lookUp(Executable& service, const Callee& callee, KnownInvoker& found);
  void keep(const Executable& service, const Callee& callee, std::uint32_t age,
            const KnownInvoker& found);
  void fire(Expiry& expiry, const Executable& service);
  void countFailure() { failed_.fetch_add(1, std::memory_order_relaxed); }
  void enterPool(std::size_t tasks);
  void handToPool(std::size_t requests);
  void refuse(Queue& requests, const std::string& error);
  void trace(TraceKind kind) const;
  void traceFirst(const Envelope& envelope);

  void wish(const CallChain& chain);
  void makeService(std::unique_lock<std::mutex>& lock);
  Made callContext(const CallChain& chain);
  void settle(const Made& made);
  Executable* serviceInTheMaking();
  bool nothingToAwait(const CallChain& chain) const;

  const ExecutorSettings settings_;
  const std::uint64_t id_;
  const std::string channelName_;
  const std::shared_ptr<Mailbox> mailbox_;  // null for a channel that is not the platform's
  const std::thread::id builder_;
  OwnThread thread_;
  std::atomic<bool> requested_{false};  // as far as the trace knows
  std::atomic<std::uint64_t> failed_{0};

  mutable std::mutex mutex_;
  std::condition_variable ended_;
  // Guarded by mutex_; the first two are also read without it.
  std::atomic<bool> closed_{false};
  std::atomic<bool> started_{false};
  Executable* service_;
  std::optional<Description> what_;  // the service, as soon as there is one
  Queue queue_;
  std::unique_ptr<Handed> spareHanded_;
  KnownInvokers knownInvokers_;
  // Tasks that the pool has of this executor, and what keeps it alive meanwhile: a task that did so
  // itself would take memory for each request.
  std::size_t inPool_ = 0;
  std::shared_ptr<ExecutorCore> heldByPool_;
  std::uint64_t begun_ = 0;  // how many messages and makings of the service were begun
  unsigned underWay_ = 0;
  unsigned awaitingIdle_ = 0;                     // how many wait until nothing is under way
  std::vector<std::shared_ptr<Parker>> waiting_;  // threads of the executor that wait for a reply
  std::shared_ptr<Parker> ownParker_;             // of the executor's own thread
  bool ownThreadIdle_ = false;
  std::uint64_t ownChain_ = 0;  // id of what the own thread serves or makes the service for

  // Making of a lazy service; guarded by mutex_.
  bool wished_ = false;
  CallChain wishChain_;  // of who asked first
  CallChain making_;     // of the making itself, while it is under way
  bool creating_ = false;
  bool causeQueued_ = false;  // the request that the service is being made for is in the queue
  std::thread::id creatingThread_;
  unsigned attempts_ = 0;
  std::string finalError_;
  std::vector<std::shared_ptr<Parker>> awaitingService_;
};

}  // namespace zerva
