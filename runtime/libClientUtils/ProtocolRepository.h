#pragma once

#include <memory>
#include <string>

#include "framework/AbstractProtocolRepository.h"
#include "framework/Export.h"

/**
 * The platform's protocol repository: knows the framework's two protocols, "zerva_simple_rmi" and
 * "zerva_svc_xml", and those that were added.
 */
class ZERVA_EXPORT ProtocolRepository : public AbstractProtocolRepository {
 public:
  ProtocolRepository();
  virtual ~ProtocolRepository();
  ProtocolRepository(const ProtocolRepository&) = delete;
  ProtocolRepository& operator=(const ProtocolRepository&) = delete;

  /**
   * Adds an adapter under the name of its protocol, instead of one that was added before, which
   * proxies that found it keep. Any thread may call it.
   *
   * @param adapter not owned, outlives the repository; null is ignored.
   */
  void addProtocolAdapter(ProtocolAdapter* adapter);

  ProtocolAdapter* findProtocolAdapter(std::string protocol) override;

 private:
  struct State;
  std::unique_ptr<State> state_;
};
