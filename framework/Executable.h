#pragma once

#include "framework/Export.h"

class CommsChannelDataContainerMessage;
class SvcRTEContext;

/**
 * Base of everything that runs in a process of the framework: services and proxies.
 *
 * The order of the virtual operations is part of the binary interface of every library ever built
 * against this header. Operations are only ever appended by deriving.
 */
class ZERVA_EXPORT Executable {
 public:
  /**
   * Prepares the object for work. Called once, before the object gets its first request; the time
   * that it takes is measured and logged.
   *
   * @param context the run-time context through which the object finds others and makes timers. It
   *     outlives the object; the object does not own it.
   * @throws anything: the exception passes to whoever created the object.
   */
  virtual void init(SvcRTEContext* context) = 0;

  /**
   * Tells the object that it is over. Runs on the host's thread, beside requests that are still
   * being served, once for each interface name of the object and also after an `init` that failed.
   * It only signals: it must not wait, make a lookup, or call another service. The default does
   * nothing.
   */
  virtual void stop();

  /**
   * One of the object's timers has expired. Runs under the same threading rule as the object's
   * requests, or on the timer's thread when the object has no channel. The default does nothing.
   *
   * @param timer the id that creating the timer gave.
   */
  virtual void timerExpired(int timer);

  /**
   * A message arrived on the object's channel that is no call of an interface method. The default
   * leaves the reply empty.
   *
   * @param message what was sent; valid during the operation only.
   * @param reply what goes back when the sender waits for an answer: its data is sent when the
   *     operation returns. Ignored for a message without a request id.
   * @throws anything: the sender gets the text of the exception as an error.
   */
  virtual void messageReceived(const CommsChannelDataContainerMessage& message,
                               CommsChannelDataContainerMessage& reply);

  virtual ~Executable();
};
