#pragma once

#include <string>

#include "host/live/HostStatusIfc.h"
#include "rmi/ProxyOf.h"

namespace zerva {

/** Asks another process. */
class HostStatusProxy final : public rmi::ProxyOf<HostStatusIfc> {
 public:
  std::string status() override { return call(ZERVA_METHOD(HostStatusIfc::status)); }
  std::string calls() override { return call(ZERVA_METHOD(HostStatusIfc::calls)); }
};

}  // namespace zerva
