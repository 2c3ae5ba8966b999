#pragma once

#include <exception>
#include <string>
#include <utility>

#include "SvcRTEContext.h"
#include "framework/Logging.h"

/**
 * Another service, known by its interface only: neither where it runs nor which library its proxy
 * comes from. It may not be there yet, or not any more; the user then goes on without it.
 *
 * Used by one thread at a time.
 */
template <typename Interface>
class FoundService {
 public:
  /**
   * @param user who uses it, for the log.
   * @param ifc the name of the interface.
   */
  FoundService(std::string user, std::string ifc) : user_(std::move(user)), ifc_(std::move(ifc)) {}

  /**
   * Uses the service: looks it up, if there was none so far, and calls `use(service)`.
   *
   * @returns false when there is none or a call failed. That is told once, until it works again.
   */
  template <typename Use>
  bool use(SvcRTEContext& context, Use use) {
    // Looked up when it is needed, and again as long as there is none.
    if (service_ == nullptr) service_ = dynamic_cast<Interface*>(context.findService(ifc_));
    if (service_ == nullptr) return fails("nobody has " + ifc_ + " yet");
    try {
      use(*service_);
    } catch (const std::exception& exception) {
      return fails(exception.what());
    }
    failing_ = false;
    return true;
  }

 private:
  bool fails(const std::string& why) {
    if (!failing_) {
      logAppUni("Example", "FoundService", 3, __LINE__, "%s: %s", user_.c_str(), why.c_str());
    }
    failing_ = true;
    return false;
  }

  const std::string user_;
  const std::string ifc_;
  Interface* service_ = nullptr;  // the proxy; the configurator's
  bool failing_ = false;
};
