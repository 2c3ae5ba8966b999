#include "framework/ProxyRequestImpl.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <typeinfo>
#include <utility>

#include "framework/CallException.h"
#include "framework/CommsChannel.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/DecodeException.h"
#include "framework/ProtocolAdapter.h"
#include "runtime/libClientUtils/ChannelState.h"
#include "runtime/libClientUtils/MessageState.h"
#include "runtime/libClientUtils/Texts.h"
#include "runtime/libClientUtils/trace/Trace.h"

namespace {

/** @returns the inside of a channel of this platform, unless somebody derived another; else null.
 */
std::shared_ptr<zerva::Mailbox> mailboxOf(CommsChannelIfc* channel) {
  auto* const own = dynamic_cast<CommsChannel*>(channel);
  return own != nullptr && typeid(*own) == typeid(CommsChannel) ? own->state().mailbox : nullptr;
}

/** Asks through a channel that somebody else wrote. */
zerva::Mailbox::Outcome callThrough(CommsChannelIfc& channel, const zerva::SharedName& to,
                                    const zerva::Callee& callee, zerva::Payload data,
                                    long requestId) {
  CommsChannelDataContainerMessage message;
  auto& request = message.state();
  request.channel = to;
  request.callee = callee;
  request.data = std::move(data);
  request.requestId = requestId;
  // A request that could not be sent has an answer too: the reason. From here on the message may be
  // another one, and its id.
  channel.send(message);
  if (!channel.receiveReply(message, message.getRequestId())) return {nullptr, message.getError()};
  return {std::move(message.state().data), {}};
}

}  // namespace

/** Constant after construction but for the counter, so any number of threads may call at once. */
struct ProxyRequestImpl::State {
  CommsChannelIfc* channel;
  std::shared_ptr<zerva::Mailbox> mailbox;  // the channel's, when it is the platform's own
  zerva::SharedName svcChannel;
  zerva::Callee callee;
  ProtocolAdapter* adapter;
  std::string qualifier;
  FrameworkContext* context;
  std::atomic<std::uint32_t> lastId{0};

  State(CommsChannelIfc* theChannel, const std::string& theSvcChannel, std::string theIfc,
        std::string theProtocol, ProtocolAdapter* theAdapter, std::string theQualifier,
        FrameworkContext* theContext)
      : channel(theChannel),
        mailbox(mailboxOf(theChannel)),
        svcChannel(zerva::sharedName(theSvcChannel)),
        callee(std::make_shared<const zerva::CalledIn>(
            zerva::CalledIn{std::move(theIfc), std::move(theProtocol)})),
        adapter(theAdapter),
        qualifier(std::move(theQualifier)),
        context(theContext) {}

  /** @returns an id that no other call of this proxy has now; 0 would mean that nobody waits. */
  long newId() {
    std::uint32_t id = 0;
    while (id == 0) {
      id = lastId.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    return static_cast<long>(id);
  }
};

ProxyRequestImpl::ProxyRequestImpl(CommsChannelIfc* channel, const std::string& svcChannel,
                                   const std::string& ifc, const std::string& protocol,
                                   ProtocolAdapter* adapter, const std::string& qualifier,
                                   FrameworkContext* context)
    : state_(std::make_unique<State>(channel, svcChannel, ifc, protocol, adapter, qualifier,
                                     context)) {}

ProxyRequestImpl::~ProxyRequestImpl() = default;

const std::string& ProxyRequestImpl::getSvcChannel() const { return *state_->svcChannel; }

const std::string& ProxyRequestImpl::getQualifier() const { return state_->qualifier; }

void ProxyRequestImpl::call(const std::string& method, const Writable& arguments,
                            Readable& result) {
  const std::int64_t begin = zerva::Trace::beginOfCall();
  const auto fail = [&](const std::string& cause) {
    zerva::Trace::called(*state_->svcChannel, state_->callee->interface, method, begin, cause);
    throw CallException(state_->callee->interface, method, *state_->svcChannel, cause);
  };
  if (state_->adapter == nullptr) {
    fail("protocol '" + state_->callee->protocol + "' is not known here");
  }
  std::shared_ptr<std::string> bytes = zerva::newText();
  state_->adapter->writeCall(method, arguments, *bytes);

  zerva::Mailbox* const mailbox = state_->mailbox.get();
  const long id = state_->newId();
  const zerva::Mailbox::Outcome outcome =
      mailbox != nullptr
          ? mailbox->call(state_->svcChannel, state_->callee, std::move(bytes),
                          static_cast<std::uint32_t>(id))
          : callThrough(*state_->channel, state_->svcChannel, state_->callee, std::move(bytes), id);
  if (!outcome.error.empty()) fail(outcome.error);
  // What failed without a text has failed all the same.
  if (outcome.reply == nullptr) fail("no reason was given");
  try {
    state_->adapter->readReply(*outcome.reply, result);
  } catch (const DecodeException& error) {
    fail(std::string("the result did not decode: ") + error.what());
  }
  if (begin != 0) {
    zerva::Trace::called(*state_->svcChannel, state_->callee->interface, method, begin, {});
  }
}
