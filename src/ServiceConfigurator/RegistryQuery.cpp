#include "ServiceConfigurator.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/CommsChannelIfc.h"
#include "src/ServiceRepository/SemaphoreHolder.h"

namespace {

/** 0 means that no reply is wanted, so the counter skips it when it wraps. */
std::uint32_t nextRequestId(std::uint32_t& counter, Semaphore& semaphore) {
  const zerva::SemaphoreHolder holder(semaphore);
  ++counter;
  if (counter == 0) {
    counter = 1;
  }
  return counter;
}

}  // namespace

// Only the counter is guarded: everybody waits for his own reply. The results of sending and
// receiving tell nothing that the message does not: after a failure it still holds the request,
// which no caller takes for an answer.
void ServiceConfigurator::findInRegistry(std::string& request, std::string& response) {
  const std::string registryChannel("/zerva/serviceregistry");
  CommsChannelDataContainerMessage message;
  message.setChannel(registryChannel);
  message.setData(request);
  const auto id = static_cast<long>(nextRequestId(registryRequestId, *registrySem));
  message.setRequestId(id);
  commsChannel->send(message);
  commsChannel->receiveReply(message, id);
  response = message.getData();
}
