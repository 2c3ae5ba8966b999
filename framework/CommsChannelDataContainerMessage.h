#pragma once

#include <memory>
#include <string>

#include "framework/Export.h"

/**
 * A message of bytes between channels: a request with the place for its reply, or a message that
 * nobody answers. It lives on the stack of whoever sends it and is used by one thread at a time.
 */
class ZERVA_EXPORT CommsChannelDataContainerMessage {
 public:
  /** An empty message to nowhere. */
  CommsChannelDataContainerMessage();
  ~CommsChannelDataContainerMessage();
  CommsChannelDataContainerMessage(CommsChannelDataContainerMessage&& other) noexcept;
  CommsChannelDataContainerMessage& operator=(CommsChannelDataContainerMessage&& other) noexcept;

  /** Sets the name of the channel that the message is for. */
  void setChannel(const std::string& channel);

  /** @returns the name of the channel that the message is for; in a message that was received, of
   * the channel that it came from; valid until the next `setChannel`. */
  const std::string& getChannel() const;

  /** Sets the bytes that are sent; any bytes, zeros included. */
  void setData(const std::string& data);

  /** @returns a copy of the bytes: of the request until a reply was received, then of the reply. */
  std::string getData() const;

  /**
   * Sets the id by which the reply is matched to the request.
   *
   * @param requestId compared as an unsigned 32-bit number; 0 means that no reply is wanted.
   */
  void setRequestId(long requestId);

  /** @returns the request id; 0 when no reply is wanted. */
  long getRequestId() const;

  /** Sets why the message could not be delivered or answered; empty when nothing failed. */
  void setError(const std::string& error);

  /** @returns why sending failed or no reply came; empty when nothing failed. */
  const std::string& getError() const;

  /** The implementation's state, for the platform's own libraries; opaque to everybody else. */
  struct State;
  State& state();
  const State& state() const;

 private:
  std::unique_ptr<State> state_;
};
