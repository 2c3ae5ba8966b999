#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "framework/Export.h"
#include "runtime/libClientUtils/Destination.h"
#include "runtime/libClientUtils/Envelope.h"
#include "runtime/libClientUtils/Parker.h"
#include "runtime/libClientUtils/RequestTable.h"

class CCInterceptorDispatcher;
class Executable;

namespace zerva {

/** Takes the requests that arrive at a channel: an executor. */
class ZERVA_EXPORT RequestReceiver {
 public:
  /** As `Destination::deliver`. */
  virtual bool receive(Envelope& envelope) = 0;

  /** As `Destination::waitsForCaller`. */
  virtual bool waitsForCaller() const = 0;

  /** As `Destination::isStarted`; from then on always. */
  virtual bool isStarted() const { return false; }

  /** @returns the object that the requests are for; null as long as it does not exist. */
  virtual const Executable* object() const = 0;

  /** @returns whether that object is being made now. */
  virtual bool isMaking() const = 0;

  virtual ~RequestReceiver() = default;
};

/**
 * The inside of a channel, shared by everyone who sends to it, so that a channel can be deleted
 * while messages are on their way: requests go through to whoever serves the channel, replies to
 * whoever waits for them.
 *
 * No lock is held while a receiver, an interceptor or another mailbox is called.
 */
class ZERVA_EXPORT Mailbox final : public Destination,
                                   public ReplyReceiver,
                                   public std::enable_shared_from_this<Mailbox> {
 public:
  Mailbox(const std::string& name, CCInterceptorDispatcher* dispatcher);
  virtual ~Mailbox();

  const std::string& name() const { return *name_; }

  /** What serves the channel, from the point of view of an object that looks for its own. */
  enum class Serves { Another, Object, OneInTheMaking };
  Serves serves(const Executable* object) const;

  /** From here on requests go to the receiver. Once a mailbox. */
  void serveWith(std::shared_ptr<RequestReceiver> receiver);

  /** @returns whether requests are taken now. */
  bool isServed() const { return served_.load(std::memory_order_acquire); }

  /** Sends a request or a message; see `CommsChannelIfc::send`. @returns why it failed, or "". */
  std::string send(const SharedName& to, const Callee& callee, Payload data,
                   std::uint32_t requestId);

  /** Sends a message that nobody answers; see `CommsChannelIfc::sendTo`. @returns as `send`. */
  std::string send(const std::string& to, Payload data);

  /** How a request ended. */
  struct Outcome {
    Payload reply;
    std::string error;
  };

  /** Waits for the reply to a request; see `CommsChannelIfc::receiveReply`. */
  Outcome awaitReply(std::uint32_t requestId);

  /** Sends a request and waits for its reply: `send` and `awaitReply` in one. */
  Outcome call(const SharedName& to, const Callee& callee, Payload data, std::uint32_t requestId);

  /**
   * Answers a request that was delivered here.
   *
   * @param data the reply; ignored when there is an error.
   * @param error why the request failed; empty when it did not.
   */
  void answer(Envelope& request, Payload data, const std::string& error);

  /**
   * Ends everything: nothing is sent, received or awaited any more, and whoever waits is woken.
   * Only signals. May be repeated.
   */
  void close();

  /** Waits until no delivery is under way any more, and lets the receiver go. After `close`. */
  void waitForDeliveries();

  bool isHere() const override { return true; }
  std::string server() const override;
  bool deliver(Envelope& envelope) override;
  std::shared_ptr<Input> input() const override { return nullptr; }
  bool waitsForCaller() const override;
  bool isStarted() const override;
  void receiveReply(std::uint32_t requestId, std::uint64_t answerer, Payload data,
                    const std::string& error) override;

 private:
  class Delivery;
  struct Wait;
  struct Target;

  /** A request that was sent and whose end nobody has heard of yet. Guarded by the lock. */
  struct Outstanding {
    std::uint64_t answerer = 0;
    Wait* wait = nullptr;  // of the thread that waits for it
    Clock::time_point deadline;
    std::optional<Outcome> outcome;  // when it ended before anybody waited
    SharedName to;
    std::weak_ptr<Destination> asked;  // only one that a wait may have to wait for
    std::weak_ptr<Input> input;        // where the answer comes from, when not from this process

    /** What is kept is written over by the next request, of the thread that sends it. */
    void end() {
      wait = nullptr;
      outcome.reset();
    }
  };

  bool isSeen() const;
  std::string sendTo(const SharedName& to, const Callee& callee, Payload data,
                     std::uint32_t requestId, Wait* wait);
  std::string sendTo(Target& target, const Callee& callee, Payload data, std::uint32_t requestId,
                     Wait* wait);
  std::string expect(std::uint32_t requestId, const Target& target, Wait* wait,
                     ReplyTicket& ticket);
  ReplyTicket aimAt(std::uint32_t requestId, Outstanding& request,
                    const std::shared_ptr<Destination>& asked, bool isStarted, Wait* wait);
  ReplyTicket aimAgain(ReplyTicket& before, const std::shared_ptr<Destination>& asked, Wait* wait);
  std::string deliverTo(Target& target, Envelope& envelope, Wait* wait);
  void tellReceived(std::unique_lock<std::mutex>& lock, std::uint32_t requestId, std::size_t size,
                    const std::string& error);
  Outstanding* awaited(std::uint32_t requestId, std::uint64_t answerer);
  static std::shared_ptr<Parker> end(Outstanding& request, Outcome how);
  void failUnsent(std::uint32_t requestId, std::uint64_t answerer, const std::string& error);
  Outcome outcomeOf(Wait& wait, std::string error);
  std::string startWaiting(Wait& wait);
  static void note(Wait& wait, Outstanding& request);
  std::string waitFor(Wait& wait);
  std::string channelAsked(std::uint32_t requestId) const;
  void dropForgotten(Clock::time_point now);

  const SharedName name_;
  const std::uint64_t number_;  // no other of this process ever has it
  CCInterceptorDispatcher* const dispatcher_;
  // Set before `served_` is; released when no delivery can look at it any more.
  std::shared_ptr<RequestReceiver> receiver_;
  mutable std::atomic<unsigned> deliveries_{0};
  mutable std::atomic<bool> started_{false};  // once the receiver was found to be

  mutable std::mutex mutex_;
  // Written under mutex_, read without.
  std::atomic<bool> served_{false};
  std::atomic<bool> closed_{false};
  // Guarded by mutex_.
  mutable std::condition_variable delivered_;
  std::uint64_t lastAnswerer_ = 0;
  RequestTable<Outstanding> outstanding_;
};

}  // namespace zerva
