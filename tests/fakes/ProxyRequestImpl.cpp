#include "framework/ProxyRequestImpl.h"

#include "tests/fakes/Platform.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"

using zerva::fakes::called;
using zerva::fakes::inQuotes;
using zerva::fakes::Objects;

struct ProxyRequestImpl::State {
  std::string svcChannel;
  std::string qualifier;
};

ProxyRequestImpl::ProxyRequestImpl(CommsChannelIfc* channel, const std::string& svcChannel,
                                   const std::string& ifc, const std::string& protocol,
                                   ProtocolAdapter* adapter, const std::string& qualifier,
                                   FrameworkContext* context)
    : state_(new State{svcChannel, qualifier}) {
  zerva::fakes::constructed(
      this, "ProxyRequestImpl",
      {Objects::name(channel), inQuotes(svcChannel), inQuotes(ifc), inQuotes(protocol),
       Objects::name(adapter), inQuotes(qualifier), Objects::name(context)});
}

ProxyRequestImpl::~ProxyRequestImpl() {
  if (Objects::died(this)) state_.reset();
}

const std::string& ProxyRequestImpl::getSvcChannel() const {
  called(this, "getSvcChannel", {});
  return state_->svcChannel;
}

void ProxyRequestImpl::call(const std::string& method, const Writable&, Readable&) {
  called(this, "call", {inQuotes(method)});
}

const std::string& ProxyRequestImpl::getQualifier() const {
  called(this, "getQualifier", {});
  return state_->qualifier;
}
