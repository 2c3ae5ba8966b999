#pragma once

#include <cstddef>
#include <string>

#include "framework/Export.h"

/** A message on its way, as an interceptor sees it. Valid during the call only. */
struct InterceptedMessage {
  /** Name of the channel that sent it. */
  const std::string& from;
  /** Name of the channel that it is for. */
  const std::string& to;
  /** Size of the payload in bytes. */
  std::size_t size;
  /** The request's id, as unsigned 32-bit number; 0 when no reply is wanted. */
  unsigned long requestId;
  /** Whether it is the reply to a request. */
  bool reply;
  /** For a reply that reports a failure, why; else empty. */
  const std::string& error;
};

/**
 * Sees every message of the channels that were made with the dispatcher that it is added to.
 * Called on the thread that sends or receives, with no lock of the platform held, several at once;
 * it must not throw, waits for no reply and should return quickly. What comes from another process
 * is received by one of the platform's threads, or by any that waits for something from there: take
 * no lock that such a thread may hold. It is called before the message goes on: whoever gets a
 * request or a reply finds that it was seen.
 */
class ZERVA_EXPORT CCInterceptor {
 public:
  /** A channel sends a message or a reply. */
  virtual void messageSent(const InterceptedMessage& message) = 0;
  /** A message or a reply has come to a channel. */
  virtual void messageReceived(const InterceptedMessage& message) = 0;

 protected:
  ~CCInterceptor() = default;
};
