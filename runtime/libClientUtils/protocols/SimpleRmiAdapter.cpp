#include "runtime/libClientUtils/protocols/SimpleRmiAdapter.h"

#include <cstddef>

#include "framework/Readable.h"
#include "framework/Writable.h"
#include "runtime/libClientUtils/protocols/SimpleRmiReader.h"
#include "runtime/libClientUtils/protocols/SimpleRmiWriter.h"

namespace zerva {
namespace {

// Most calls and replies fit, so that their bytes are allocated once.
constexpr std::size_t kUsualSize = 120;

}  // namespace

const std::string& SimpleRmiAdapter::getProtocol() const {
  static const std::string protocol = "zerva_simple_rmi";
  return protocol;
}

void SimpleRmiAdapter::writeCall(const std::string& method, const Writable& arguments,
                                 std::string& call) {
  call.clear();
  call.reserve(kUsualSize);
  SimpleRmiWriter writer(call);
  writer.writeText(method);
  arguments.write(writer);
}

std::string SimpleRmiAdapter::methodOf(const std::string& call) {
  return SimpleRmiReader(call).readText();
}

void SimpleRmiAdapter::readCall(const std::string& call, Readable& arguments) {
  SimpleRmiReader reader(call);
  reader.readView();  // the method
  arguments.read(reader);
  reader.end();
}

void SimpleRmiAdapter::writeReply(const Writable& result, std::string& reply) {
  reply.clear();
  reply.reserve(kUsualSize);
  SimpleRmiWriter writer(reply);
  result.write(writer);
}

void SimpleRmiAdapter::readReply(const std::string& reply, Readable& result) {
  SimpleRmiReader reader(reply);
  result.read(reader);
  reader.end();
}

}  // namespace zerva
