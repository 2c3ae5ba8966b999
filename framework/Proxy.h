#pragma once

#include "framework/Executable.h"
#include "framework/Export.h"

class ProxyRequest;

/**
 * What a proxy library's creator function returns: `extern "C" Proxy* createXProxy()`. It stands
 * for a service that may live elsewhere and is used by many threads at once. A proxy also
 * implements the interface that it stands for; callers get it as an `Executable*` and cast.
 */
class ZERVA_EXPORT Proxy : public Executable {
 public:
  /** A proxy needs no run-time context; the default does nothing. */
  void init(SvcRTEContext* context) override;

  /**
   * Hands the proxy the object through which it sends its calls. Called once, before the proxy is
   * given to anybody. It makes no lookup and waits for no reply.
   *
   * @param request not owned by the proxy; lives as long as the proxy.
   */
  virtual void initialise(ProxyRequest* request) = 0;

  ~Proxy() override;
};
