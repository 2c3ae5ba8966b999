#include "framework/ProxyRequestImpl.h"

/** Constant after construction, so any number of threads may call through one request. */
struct ProxyRequestImpl::State {
  CommsChannelIfc* channel;
  std::string svcChannel;
  std::string ifc;
  std::string protocol;
  ProtocolAdapter* adapter;
  std::string qualifier;
  FrameworkContext* context;
};

ProxyRequestImpl::ProxyRequestImpl(CommsChannelIfc* channel, const std::string& svcChannel,
                                   const std::string& ifc, const std::string& protocol,
                                   ProtocolAdapter* adapter, const std::string& qualifier,
                                   FrameworkContext* context)
    : state_(new State{channel, svcChannel, ifc, protocol, adapter, qualifier, context}) {}

ProxyRequestImpl::~ProxyRequestImpl() = default;

const std::string& ProxyRequestImpl::getSvcChannel() const { return state_->svcChannel; }

const std::string& ProxyRequestImpl::getQualifier() const { return state_->qualifier; }
