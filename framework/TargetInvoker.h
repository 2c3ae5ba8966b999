#pragma once

#include <string>

#include "framework/Export.h"
#include "framework/Invoker.h"

/**
 * An invoker that finds its way from a service to the service's interface once, and not for each
 * call. Whoever calls one service again and again asks for the target first. Invokers that are
 * derived from `zerva::rmi::InvokerOf` are such ones.
 */
class ZERVA_EXPORT TargetInvoker : public Invoker {
 public:
  /**
   * Any thread; does not block.
   *
   * @param service not owned.
   * @returns what calls of the service go to: for `invokeTarget` of this invoker alone, and as long
   *     as the service lives. Null when the service does not have the interface.
   */
  virtual void* targetOf(Executable& service) = 0;

  /**
   * As `invoke`, for a service whose target is known.
   *
   * @param target not null.
   */
  virtual void invokeTarget(void* target, ProtocolAdapter& adapter, const std::string& call,
                            std::string& reply) = 0;

  ~TargetInvoker() override;
};
