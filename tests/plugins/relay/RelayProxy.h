#pragma once

#include <string>
#include <vector>

#include "rmi/ProxyOf.h"
#include "tests/plugins/relay/Relay.h"

class RelayProxy : public zerva::rmi::ProxyOf<Relay> {
 public:
  std::vector<int> pass(const std::vector<std::string>& way) override {
    return call(ZERVA_METHOD(Relay::pass), way);
  }
};
