#pragma once

class CommsChannelIfc;
class Dll;
class Proxy;
class ProxyRequest;

/** What the repository keeps of one proxy. */
struct SvcProxyData {
  /** Made by the proxy library's creator function. */
  Proxy* proxy;
  /** The library that the proxy comes from. */
  Dll* dll;
  /** Sends the proxy's calls; knows the service's channel and the qualifier. */
  ProxyRequest* request;
  /** The proxy's private channel. */
  CommsChannelIfc* channel;
};
