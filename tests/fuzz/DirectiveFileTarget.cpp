// Input: a directive file. On the recording platform no library is opened and no process started.

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "ServiceConfigurator.h"
#include "ServiceRepository.h"
#include "framework/CCInterceptorDispatcher.h"
#include "framework/CommsChannel.h"
#include "framework/InvokeInterceptorDispatcher.h"
#include "host/DirectiveFileCheck.h"
#include "tests/fakes/Creators.h"
#include "tests/fakes/Platform.h"
#include "tests/fakes/RecordingInvoker.h"
#include "tests/fakes/RecordingProtocols.h"
#include "tests/fakes/RecordingService.h"
#include "tests/fakes/SemaphoreTable.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/MemoryFile.h"

using namespace zerva;
using namespace zerva::fuzz;

namespace {

/** A host on a platform that knows two libraries. */
class World {
 public:
  World() {
    protocols_.add("zerva_simple_rmi", &adapter_);
    offer("a.so", "s",
          fakes::Creators::service([]() -> Service* { return new fakes::RecordingService; }));
    offer("a.so", "n", fakes::Creators::service([]() -> Service* { return nullptr; }));
    offer("libServiceRegistry.so", "createServiceRegistryInvoker",
          fakes::Creators::invoker([]() -> Invoker* { return new fakes::RecordingInvoker; }));
    configurator_ = std::make_unique<ServiceConfigurator>(&channel_, &repository_, &protocols_,
                                                          &interceptors_, &invokeInterceptors_);
  }

  void processDirectives(const std::string& path) { configurator_->processDirectives(path); }

 private:
  static void offer(const std::string& lib, const std::string& creator, void* function) {
    fakes::Platform::library(lib).symbols[creator] = fakes::Symbol{function, std::nullopt};
  }

  CommsChannel channel_{"host", nullptr};
  CCInterceptorDispatcher interceptors_;
  InvokeInterceptorDispatcher invokeInterceptors_;
  fakes::RecordingProtocols protocols_;
  fakes::NamedAdapter adapter_{"zerva_simple_rmi"};
  ServiceRepository repository_;
  std::unique_ptr<ServiceConfigurator> configurator_;
};

bool breaksOff(const std::string& path) {
  World world;
  try {
    world.processDirectives(path);
  } catch (const std::out_of_range&) {
    return true;
  }
  return false;
}

}  // namespace

// Whether it comes back is watched from outside, by the time limit of one input.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const MemoryFile file(textOf(data, size));
  fakes::Platform::reset();
  const auto findings = checkDirectiveFile(file.path());
  bool hangs = false;
  for (const Finding& finding : findings) {
    hangs = hangs || formatFinding(finding).find("would never end") != std::string::npos;
  }
  if (!hangs) {
    require(breaksOff(file.path()) == !findings.empty(),
            "a file breaks a start off if that was found in it, and only then");
  }
  require(fakes::SemaphoreTable::held().empty(), "no semaphore stays taken");
  require(!testing::UnitTest::GetInstance()->Failed(), "the platform is used as it wants to be");
  fakes::Platform::reset();
  return 0;
}
