#pragma once

#include <string>

#include "framework/Export.h"

class Executable;
class ProtocolAdapter;

/**
 * What an invoker library's creator function returns: `extern "C" Invoker* createXInvoker()`. It
 * turns a message that carries a call of one interface into the call itself. One object serves all
 * threads and all protocols at once, so it keeps no state of a call and is handed the protocol's
 * adapter with each.
 */
class ZERVA_EXPORT Invoker {
 public:
  /**
   * Makes the call that a message carries.
   *
   * @param service the service that is called; not owned.
   * @param adapter the adapter of the protocol that the call is written in; not owned.
   * @param call the call as written by the caller's adapter.
   * @param reply gets the result, as written by `adapter`.
   * @throws DecodeException when the call does not get to the service: it could not be read, names
   *     a method that is not known, or the service does not have the interface. Besides, whatever
   * the service throws. The caller gets the text as an error.
   */
  virtual void invoke(Executable& service, ProtocolAdapter& adapter, const std::string& call,
                      std::string& reply) = 0;

  virtual ~Invoker();
};
