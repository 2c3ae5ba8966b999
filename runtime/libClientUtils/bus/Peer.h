#pragma once

#include <asio/steady_timer.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/libClientUtils/Envelope.h"
#include "runtime/libClientUtils/bus/AskedRequests.h"
#include "runtime/libClientUtils/bus/BusShared.h"
#include "runtime/libClientUtils/bus/Connection.h"
#include "runtime/libClientUtils/bus/Frames.h"
#include "runtime/libClientUtils/bus/Outgoing.h"

namespace zerva {

/**
 * Another process, and the one ordered stream to and from it: requests, messages and replies of
 * both sides. When the stream has ended the peer is of no more use; another one may begin.
 */
class Peer final : public ReplyReceiver, public std::enable_shared_from_this<Peer> {
 public:
  /** @param ended is called once, on the bus thread, before those who wait are told. */
  using Ended = std::function<void(const std::shared_ptr<Peer>& peer, bool otherVersion)>;

  Peer(std::string id, std::shared_ptr<const BusShared> bus, Ended ended);
  virtual ~Peer();

  const std::string& id() const { return id_; }

  // On any thread.

  /** Begins the stream from this side. Once, before anybody else knows the peer. */
  void begin(std::shared_ptr<Connection> connection);

  /** As `Destination::deliver`. */
  bool deliver(Envelope& envelope);

  /** @returns whether messages are still taken. */
  bool takes() const { return !outgoing_.isEnded(); }

  /** Answers a request of the other process: `answerer` is what it knows the request by. */
  void receiveReply(std::uint32_t requestId, std::uint64_t answerer, Payload data,
                    const std::string& error) override;

  /** @returns where its answers come from; null when there is no connection now. */
  std::shared_ptr<Input> input() const { return outgoing_.connection(); }

  /** Waits until all is handed to the system. @returns false at the deadline. */
  bool waitUntilSent(Clock::time_point deadline) { return outgoing_.waitUntilSent(deadline); }

  // On the bus thread.

  /** What is to be done with a connection that the other process has begun. */
  enum class Offer { Adopt, Cross, Replace };
  Offer considers() const;

  /** @returns whether the other process still holds the stream. */
  bool isHeld() const;

  /** Uses a connection that the other process has begun, instead of the own one, if any. */
  void adopt(std::shared_ptr<Connection> connection);

  /** Ends the stream. @param cause what those are told who wait for an answer. */
  void end(const std::string& cause);

  /** Waits until what has arrived is not handed on any more. After it was ended. */
  void waitForReader();

 private:
  enum class State { Connecting, Crossed, Open, Ended };

  void awaitGreeting(std::shared_ptr<Connection> connection);
  void takeGreeting(std::string_view body);
  void take(const WelcomeFrame& frame);
  void take(const CrossedFrame& frame);
  void open(std::shared_ptr<Connection> connection);
  void takeFrame(std::string_view body, Payload data,
                 const std::shared_ptr<Connection>& connection);
  void take(const MessageFrame& frame, Payload data, const std::shared_ptr<Connection>& connection);
  void take(const RequestFrame& frame, Payload data, const std::shared_ptr<Connection>& connection);
  Callee calleeIn(const RequestFrame& frame);
  static const SharedName& named(SharedName& last, std::string_view name);
  void take(const ReplyFrame& frame, Payload data);
  void take(const FailureFrame& frame);
  void takeEnvelope(Envelope& envelope);
  void connectionEnded(const std::string& why);
  std::vector<ReplyTicket> giveUp();
  static void failAll(std::vector<ReplyTicket> tickets, const std::string& cause);
  bool sendRequest(Envelope& envelope, const MessageFrame& message);
  bool settle(Envelope& envelope, Outgoing::Result result);
  void sendFailure(std::uint32_t wireId, const std::string& error);

  const std::string id_;
  const std::shared_ptr<const BusShared> bus_;
  const Ended ended_;
  Outgoing outgoing_;
  AskedRequests asked_;

  // Of the bus thread, once the peer is known.
  State state_ = State::Connecting;
  bool otherVersion_ = false;
  std::shared_ptr<Connection> connection_;
  asio::steady_timer patience_;

  // Of the thread that reads the connection once it is open.
  Callee lastCallee_;
  SharedName lastFrom_;
  SharedName lastTo_;
};

}  // namespace zerva
