#include "runtime/libClientUtils/protocols/SvcXmlAdapter.h"

#include "framework/Readable.h"
#include "framework/Writable.h"
#include "runtime/libClientUtils/protocols/SvcXmlReader.h"
#include "runtime/libClientUtils/protocols/SvcXmlWriter.h"
#include "runtime/libClientUtils/protocols/XmlText.h"

namespace zerva {

const std::string& SvcXmlAdapter::getProtocol() const {
  static const std::string protocol = "zerva_svc_xml";
  return protocol;
}

void SvcXmlAdapter::writeCall(const std::string& method, const Writable& arguments,
                              std::string& call) {
  call = "<call method=\"" + xmlEscaped(method) + "\">";
  SvcXmlWriter writer(call);
  arguments.write(writer);
  call += "</call>";
}

std::string SvcXmlAdapter::methodOf(const std::string& call) {
  return SvcXmlReader(call, "call").method();
}

void SvcXmlAdapter::readCall(const std::string& call, Readable& arguments) {
  SvcXmlReader reader(call, "call");
  arguments.read(reader);
  reader.end();
}

void SvcXmlAdapter::writeReply(const Writable& result, std::string& reply) {
  reply = "<reply>";
  SvcXmlWriter writer(reply);
  result.write(writer);
  reply += "</reply>";
}

void SvcXmlAdapter::readReply(const std::string& reply, Readable& result) {
  SvcXmlReader reader(reply, "reply");
  result.read(reader);
  reader.end();
}

}  // namespace zerva
