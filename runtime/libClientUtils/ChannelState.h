#pragma once

#include <memory>

#include "framework/CommsChannel.h"
#include "runtime/libClientUtils/Mailbox.h"

/** The channel is the handle; the mailbox lives as long as anybody sends to it. */
struct CommsChannel::State {
  std::shared_ptr<zerva::Mailbox> mailbox;
};
