#pragma once

#include <string>

#include "framework/CommsChannelDataContainerMessage.h"
#include "runtime/libClientUtils/Envelope.h"

/** The bytes are shared with the envelope that they travel in. */
struct CommsChannelDataContainerMessage::State {
  zerva::SharedName channel;
  zerva::Callee callee;
  zerva::Payload data;
  long requestId = 0;
  std::string error;
};
