#pragma once

#include <memory>
#include <string>

#include "framework/CommsChannelIfc.h"
#include "framework/Export.h"

class CCInterceptorDispatcher;

/**
 * The platform's channel. It is open from construction until destruction, unless an executor that
 * serves it closes it earlier by its shutdown. Two open channels may have one name; requests then
 * go to the older one that is served, replies always to the very channel that asked.
 */
class ZERVA_EXPORT CommsChannel : public CommsChannelIfc {
 public:
  /**
   * Opens the channel. It gets no requests until an executor serves it.
   *
   * @param name the channel's name; any characters, copied.
   * @param dispatcher is told of every message that the channel sends or receives; not owned, lives
   *     longer than the channel; may be null.
   */
  CommsChannel(const std::string& name, CCInterceptorDispatcher* dispatcher);

  /**
   * Closes the channel: wakes everyone who waits on it, then waits for deliveries under way. No
   * other operation may be called any more.
   */
  ~CommsChannel() override;
  CommsChannel(const CommsChannel&) = delete;
  CommsChannel& operator=(const CommsChannel&) = delete;

  const std::string& getName() const override;
  bool send(CommsChannelDataContainerMessage& message) override;
  bool sendTo(const std::string& channel, const std::string& data) override;
  bool receiveReply(CommsChannelDataContainerMessage& message, long requestId) override;
  bool isServed(const std::string& channel) override;

  /**
   * Tells who serves a name now, so that it can be known later whether it is still the same one.
   * Sends nothing, creates no lazy service and does not block.
   *
   * @returns a text that belongs to this serving of the name alone: another process, or the same
   *     one serving the name anew, has another. Empty when nobody serves the name.
   */
  std::string whoServes(const std::string& channel);

  /** The implementation's state, for the platform's own libraries; opaque to everybody else. */
  struct State;
  State& state();

 private:
  std::unique_ptr<State> state_;
};
