#pragma once

#include <string>

#include "framework/Export.h"
#include "framework/ProtocolAdapter.h"

namespace zerva {

/**
 * "zerva_svc_xml", the protocol for people, tools and other languages: a small part of XML 1.0
 * (https://www.w3.org/TR/xml/) in UTF-8.
 *
 *     <call method="speed"><list><integer>3</integer></list></call>
 *     <reply><real>4.5</real></reply>
 *
 * The elements are `nothing`, `bool` (true, false), `integer`, `real` (also inf, -inf, nan),
 * `text`, `bytes` (a text that XML cannot hold, in hexadecimal digits) and `list`. They may be set
 * apart by white space; comments and document types are refused, attributes other than `method`
 * ignored.
 */
class ZERVA_EXPORT SvcXmlAdapter final : public ProtocolAdapter {
 public:
  const std::string& getProtocol() const override;
  void writeCall(const std::string& method, const Writable& arguments, std::string& call) override;
  std::string methodOf(const std::string& call) override;
  void readCall(const std::string& call, Readable& arguments) override;
  void writeReply(const Writable& result, std::string& reply) override;
  void readReply(const std::string& reply, Readable& result) override;
};

}  // namespace zerva
