#pragma once

#include <map>
#include <string>

#include "framework/AbstractProtocolRepository.h"
#include "framework/ProtocolAdapter.h"

namespace zerva::fakes {

/** An adapter that has a name and records what it is asked to write or read. */
class NamedAdapter : public ProtocolAdapter {
 public:
  explicit NamedAdapter(std::string protocol);
  ~NamedAdapter() override;
  const std::string& getProtocol() const override;
  void writeCall(const std::string& method, const Writable& arguments, std::string& call) override;
  std::string methodOf(const std::string& call) override;
  void readCall(const std::string& call, Readable& arguments) override;
  void writeReply(const Writable& result, std::string& reply) override;
  void readReply(const std::string& reply, Readable& result) override;

 private:
  std::string protocol;
};

/** A protocol repository that records what it is asked: Protocols#1. */
class RecordingProtocols final : public AbstractProtocolRepository {
 public:
  RecordingProtocols();
  ~RecordingProtocols();

  /** Gives the protocol an adapter that the caller owns. */
  void add(const std::string& protocol, ProtocolAdapter* adapter);

  ProtocolAdapter* findProtocolAdapter(std::string protocol) override;

 private:
  std::map<std::string, ProtocolAdapter*> adapters;
};

}  // namespace zerva::fakes
