#pragma once

#include <string>

#include "framework/Export.h"

class Readable;
class Writable;

/**
 * The way from a proxy to the service that it stands for. One object serves all threads that call
 * through the proxy at once.
 */
class ZERVA_EXPORT ProxyRequest {
 public:
  /** @returns the name of the service's channel, as given at construction. Never blocks. */
  virtual const std::string& getSvcChannel() const = 0;

  /** @returns the qualifying string, as given at construction. Never blocks. */
  virtual const std::string& getQualifier() const = 0;

  /**
   * Calls a method of the service and waits for its result, as
   * `CommsChannelIfc::receiveReply` does.
   *
   * @param method the name of the method.
   * @param arguments what it is called with.
   * @param result is read from the reply.
   * @throws CallException when no channel, no peer, no answer in time, an exception of the service
   *     or bytes that could not be read stood in the way.
   */
  virtual void call(const std::string& method, const Writable& arguments, Readable& result) = 0;

  virtual ~ProxyRequest();
};
