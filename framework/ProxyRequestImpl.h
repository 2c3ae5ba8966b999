#pragma once

#include <memory>
#include <string>

#include "framework/Export.h"
#include "framework/ProxyRequest.h"

class CommsChannelIfc;
class FrameworkContext;
class ProtocolAdapter;

/**
 * The platform's `ProxyRequest`. It owns neither the channel nor the adapter nor the context; all
 * three outlive it.
 */
class ZERVA_EXPORT ProxyRequestImpl : public ProxyRequest {
 public:
  /**
   * @param channel the proxy's private channel, on which calls are sent and answers awaited.
   * @param svcChannel the name of the service's channel.
   * @param ifc the name of the interface that is called.
   * @param protocol the name of the protocol that calls are written in.
   * @param adapter the adapter of that protocol; null is stored as it is.
   * @param qualifier a string that tells apart several proxies to the same channel.
   * @param context the framework side of the run-time context.
   */
  ProxyRequestImpl(CommsChannelIfc* channel, const std::string& svcChannel, const std::string& ifc,
                   const std::string& protocol, ProtocolAdapter* adapter,
                   const std::string& qualifier, FrameworkContext* context);
  ~ProxyRequestImpl() override;
  ProxyRequestImpl(const ProxyRequestImpl&) = delete;
  ProxyRequestImpl& operator=(const ProxyRequestImpl&) = delete;

  const std::string& getSvcChannel() const override;
  const std::string& getQualifier() const override;
  void call(const std::string& method, const Writable& arguments, Readable& result) override;

 private:
  struct State;
  std::unique_ptr<State> state_;
};
