#include "framework/Executable.h"

void Executable::stop() {}

void Executable::timerExpired(int /*timer*/) {}

void Executable::messageReceived(const CommsChannelDataContainerMessage& /*message*/,
                                 CommsChannelDataContainerMessage& /*reply*/) {}

Executable::~Executable() = default;
