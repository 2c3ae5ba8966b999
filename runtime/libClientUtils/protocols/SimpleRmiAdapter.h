#pragma once

#include <string>

#include "framework/Export.h"
#include "framework/ProtocolAdapter.h"

namespace zerva {

/**
 * "zerva_simple_rmi", the compact protocol that proxies use: MessagePack
 * (https://msgpack.org).
 *
 * A call is the method's name, a string, and behind it the arguments, a value of their own. A reply
 * is one value. Nothing is the nil value, numbers take the shortest form, texts are strings, lists
 * are arrays.
 */
class ZERVA_EXPORT SimpleRmiAdapter final : public ProtocolAdapter {
 public:
  const std::string& getProtocol() const override;
  void writeCall(const std::string& method, const Writable& arguments, std::string& call) override;
  std::string methodOf(const std::string& call) override;
  void readCall(const std::string& call, Readable& arguments) override;
  void writeReply(const Writable& result, std::string& reply) override;
  void readReply(const std::string& reply, Readable& result) override;
};

}  // namespace zerva
