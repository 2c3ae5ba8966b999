#pragma once

#include <cstddef>
#include <string>

#include "framework/CommsChannelDataContainerMessage.h"
#include "runtime/libClientUtils/Envelope.h"

/** The bytes are shared with the envelope that they travel in. It is kept for the next message. */
struct CommsChannelDataContainerMessage::State {
  static void* operator new(std::size_t size);
  static void operator delete(void* state);

  /** Makes it what it was at first; takes nothing where that is so already. */
  void clear() {
    channel.reset();
    callee.reset();
    data.reset();
    requestId = 0;
    if (!error.empty()) error = std::string();
  }

  zerva::SharedName channel;
  zerva::Callee callee;
  zerva::Payload data;
  long requestId = 0;
  std::string error;
};
