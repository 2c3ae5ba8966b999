#pragma once

#include <string>

#include "framework/Export.h"

class Readable;
class Writable;

/**
 * Writes and reads calls in one protocol. Adapters hold no state of a call: one object serves all
 * threads at once. The bytes hold the method, its arguments and its result; which interface is
 * called in which protocol stands on the message that carries them.
 *
 * What is read came from outside and is not trusted.
 */
class ZERVA_EXPORT ProtocolAdapter {
 public:
  /** @returns the name of the protocol, for instance "zerva_simple_rmi". Never blocks. */
  virtual const std::string& getProtocol() const = 0;

  /**
   * Writes a call.
   *
   * @param method the name of the method.
   * @param arguments what the method is called with.
   * @param call gets the bytes; its old contents are replaced.
   */
  virtual void writeCall(const std::string& method, const Writable& arguments,
                         std::string& call) = 0;

  /**
   * @returns the name of the method that a call is for.
   * @throws DecodeException when the bytes are no call.
   */
  virtual std::string methodOf(const std::string& call) = 0;

  /**
   * Reads the arguments of a call.
   *
   * @throws DecodeException when the bytes are no call or hold other arguments.
   */
  virtual void readCall(const std::string& call, Readable& arguments) = 0;

  /** Writes the result of a call; the old contents of `reply` are replaced. */
  virtual void writeReply(const Writable& result, std::string& reply) = 0;

  /**
   * Reads the result of a call.
   *
   * @throws DecodeException when the bytes are no reply or hold another result.
   */
  virtual void readReply(const std::string& reply, Readable& result) = 0;

  virtual ~ProtocolAdapter();
};
