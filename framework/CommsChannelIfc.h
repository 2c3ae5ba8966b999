#pragma once

#include <string>

#include "framework/Export.h"

class CommsChannelDataContainerMessage;

/**
 * A named mailbox: messages are sent from it, replies are awaited on it, and an executor may serve
 * the requests that are sent to its name. Names are the only addresses between channels and may
 * hold any characters.
 *
 * All operations may be called from any thread, several at once. Results tell whether an operation
 * did its work; a caller that ignores them finds the same in the message.
 */
class ZERVA_EXPORT CommsChannelIfc {
 public:
  /** @returns the name that the channel was made with. Never blocks. */
  virtual const std::string& getName() const = 0;

  /**
   * Sends a message to the channel that it names. Does not wait for the receiver. What one thread
   * sends to one channel arrives in the order in which it was sent, from whichever channel.
   *
   * With a request id, the reply is awaited with `receiveReply`; the id is outstanding from here
   * until then and is not used twice at a time.
   *
   * @param message keeps its data. When sending fails its error text says why.
   * @returns false when nobody serves the channel, when this channel is closed, or when the id is
   *     outstanding already, in which case the request that has it is not touched. In the other
   *     cases `receiveReply` for the id returns at once, with the same error.
   */
  virtual bool send(CommsChannelDataContainerMessage& message) = 0;

  /**
   * Sends bytes that nobody answers. Does not wait for the receiver.
   *
   * @param channel the name of the channel that they are for.
   * @param data any bytes.
   * @returns false when nobody serves the channel, or when this channel is closed.
   */
  virtual bool sendTo(const std::string& channel, const std::string& data) = 0;

  /**
   * Waits for the reply to a request that was sent from this channel. Many threads may wait on one
   * channel, each for an id of its own; each gets its own reply, only from the channel that it
   * asked. A reply that comes when its wait is over is dropped, also when its id is used again.
   *
   * A thread that serves a service with one thread, or makes a lazy one, serves nested, while it
   * waits, the requests of its own call chain.
   *
   * @param message the message that was sent. On success its data is the reply's; otherwise its
   *     data stays the request's and its error text says why.
   * @param requestId the id that was sent, compared as an unsigned 32-bit number.
   * @returns false when the request failed: not outstanding, nobody served it, the peer went away
   *     or answered with an error, no answer came in time, this channel was closed, or the waiting
   *     thread's executor was shut down.
   */
  virtual bool receiveReply(CommsChannelDataContainerMessage& message, long requestId) = 0;

  /**
   * Tells whether requests to a name are served now, without sending any and without creating a
   * lazy service. Does not block.
   */
  virtual bool isServed(const std::string& channel) = 0;

  virtual ~CommsChannelIfc();
};
