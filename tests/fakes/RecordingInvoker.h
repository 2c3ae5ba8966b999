#pragma once

#include "framework/Invoker.h"

namespace zerva::fakes {

/** An invoker that records what is done with it: Invoker#1, ... */
class RecordingInvoker : public Invoker {
 public:
  RecordingInvoker();
  ~RecordingInvoker() override;

  void invoke(Executable& service, ProtocolAdapter& adapter, const std::string& call,
              std::string& reply) override;
};

}  // namespace zerva::fakes
