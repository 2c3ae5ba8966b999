#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "framework/Export.h"
#include "runtime/libClientUtils/CallChain.h"
#include "runtime/libClientUtils/Input.h"

class Executable;

namespace zerva {

/** The bytes of a message; shared, so that they are not copied on their way. */
using Payload = std::shared_ptr<const std::string>;

/** @returns data that stay the caller's; who keeps them longer than a call takes what is `kept`. */
inline Payload borrowed(const std::string& data) { return {Payload(), &data}; }

inline bool isBorrowed(const Payload& data) { return data != nullptr && data.use_count() == 0; }

/** A name that many messages carry. */
using SharedName = std::shared_ptr<const std::string>;

inline SharedName sharedName(std::string_view name) {
  return std::make_shared<const std::string>(name);
}

/** @returns the name; empty when there is none. Any thread, also while the process ends. */
ZERVA_EXPORT const std::string& textOf(const SharedName& name);

/** What a call is made to. */
struct CalledIn {
  std::string interface;
  std::string protocol;
};

/** Shared by all calls of a proxy; null on a message that is no call of an interface method. */
using Callee = std::shared_ptr<const CalledIn>;

/** Takes the replies to requests that were sent: the channel that asked. */
class ZERVA_EXPORT ReplyReceiver {
 public:
  /**
   * @param requestId of the request.
   * @param answerer what the receiver said, when it asked, that the reply is to be known by; a
   *     reply with another is not heard.
   * @param data the reply; null when the request failed.
   * @param error why it failed; empty when it did not.
   */
  virtual void receiveReply(std::uint32_t requestId, std::uint64_t answerer, Payload data,
                            const std::string& error) = 0;

 protected:
  ~ReplyReceiver() = default;
};

/** The obligation to answer a request, once. A request that is dropped answers with an error. */
class ZERVA_EXPORT ReplyTicket {
 public:
  /** For a message that nobody waits for. */
  ReplyTicket() = default;

  /**
   * @param receiver who asked; a receiver that is gone is not answered.
   * @param requestId the id that it asked with.
   */
  ReplyTicket(std::weak_ptr<ReplyReceiver> receiver, std::uint32_t requestId);
  ~ReplyTicket();
  ReplyTicket(ReplyTicket&& other) noexcept;
  ReplyTicket& operator=(ReplyTicket&& other) noexcept;

  /** Says what the receiver knows the reply by. */
  void answerAs(std::uint64_t answerer) { answerer_ = answerer; }

  /** @returns what the receiver knows the reply by. */
  std::uint64_t answerer() const { return answerer_; }

  void answer(Payload data);
  void fail(const std::string& error);

  /** Answers nobody any more: the sender knows already. */
  void cancel() { requestId_ = 0; }

  /** @returns the request id; 0 when nobody waits. */
  std::uint32_t requestId() const { return requestId_; }

 private:
  void send(Payload data, const std::string& error);

  std::weak_ptr<ReplyReceiver> receiver_;
  std::uint32_t requestId_ = 0;
  std::uint64_t answerer_ = 0;
};

/** A timer's expiry on its way to the timer's owner. It never leaves the process. */
class ZERVA_EXPORT Expiry {
 public:
  virtual ~Expiry() = default;

  /** @returns whose timer it is; only to be compared, it may be gone. */
  virtual const Executable* owner() const = 0;

  /** Calls the owner, unless the timer was stopped meanwhile. */
  virtual void fire() = 0;
};

/** A message on its way. */
struct Envelope {
  /** @returns the name of the channel that sent it; empty when no channel did. */
  const std::string& from() const { return textOf(sender); }

  /** @returns the name of the channel that it is for; empty when it has none: see `receiver`. */
  const std::string& to() const { return textOf(receiver); }

  /** Name of the channel that sent it; null when no channel did. */
  SharedName sender;
  /** Name of the channel that it is for; may be null on its way to one of this process. */
  SharedName receiver;
  Callee callee;
  /** Those of a message that nobody answers may be borrowed until it is delivered. */
  Payload data;
  CallChain chain;
  ReplyTicket ticket;
  /** When it is a timer's expiry; then there are no data and no sender. */
  std::unique_ptr<Expiry> expiry;
  /** Why the destination did not take it; empty when it takes nothing at all any more. */
  std::string refusal;
  /** Where it came from, when that was outside of the process; null when it did not. */
  std::shared_ptr<Input> input;
};

}  // namespace zerva
