// What a directive throws ends the processing of its file, and of that file only.

#include <stdexcept>

#include "tests/conformance/DirectiveFileTest.h"

namespace zerva::conformance {
namespace {

/** A line, and the call in its processing that throws. */
struct ThrowingLine {
  const char* name;
  const char* line;
  const char* call;
};

class AThrowingDirective : public DirectiveFileTest,
                           public testing::WithParamInterface<ThrowingLine> {
 protected:
  AThrowingDirective() {
    sut->services["ServiceRegistryIfc"] = &registry;
    forget();
    offerService("libfoo.so", "createFoo");
  }

  /** Processes the line and one that would be reported after it. */
  void processAndThrow() {
    Platform::once(GetParam().call, [] { throw std::runtime_error("thrown here"); });
    EXPECT_EQ(messageOf<std::runtime_error>(
                  [this] { process(GetParam().line + std::string("\nbad: 1\n")); }),
              "thrown here");
  }

  fakes::RecordingRegistryProxy registry;
};

TEST_P(AThrowingDirective, LetsItPassAndEndsTheProcessing) {
  processAndThrow();
  Lines lines = Trace::lines();
  std::erase_if(lines, [](const std::string& line) { return line.rfind("~Threader#", 0) == 0; });
  ASSERT_FALSE(lines.empty());
  EXPECT_THAT(lines.back(), testing::StartsWith(GetParam().call));
}

TEST_P(AThrowingDirective, LeavesNothingForTheNextFile) {
  processAndThrow();
  forget();
  process("bad: 2\n");
  expectTrace({invalid("bad: 2")});
}

INSTANTIATE_TEST_SUITE_P(
    OfEachKind, AThrowingDirective,
    testing::Values(
        ThrowingLine{"ServiceInstance", "service_instance:ST libfoo.so createFoo c A B C",
                     "RegistryProxy#1.registerInterface("},
        ThrowingLine{"ServiceInstancesThread", "service_instance:ST libfoo.so createFoo c A B C",
                     "ServiceExecutor#1.startThread("},
        ThrowingLine{"ServiceInfo", "service_info:ST libfoo.so createFoo c A B C",
                     "RegistryProxy#1.registerInterface("},
        ThrowingLine{"ServiceLegacy", "service_legacy:libfoo.so createFoo A B C",
                     "Service#1.init("},
        ThrowingLine{"ServiceLegacysThread", "service_legacy:libfoo.so createFoo A B C",
                     "Threader#1.spawn("},
        ThrowingLine{"InvokerInfo", "invoker_info:libA.so createA FooIfc tcp",
                     "RegistryProxy#1.registerInvoker("},
        ThrowingLine{"ProxyInfo", "proxy_info:libA.so createA FooIfc tcp",
                     "RegistryProxy#1.registerProxy("},
        ThrowingLine{"TheRegistrysInvokerInfo", "invoker_info:libA.so createA ServiceRegistryIfc x",
                     "host.sendTo("},
        ThrowingLine{"TheRegistrysProxyInfo", "proxy_info:libA.so createA ServiceRegistryIfc x",
                     "host.sendTo("},
        ThrowingLine{"StartProcess", "start_process:worker -v 3", "Process#1 = "}),
    [](const auto& parameter) { return parameter.param.name; });

class AfterAThrowingDirective : public DirectiveFileTest {};

TEST_F(AfterAThrowingDirective, ItsModeAndItsInterfacesAreForgotten) {
  Platform::once("CommsChannel#1 = ", [] { throw std::runtime_error("no channel"); });
  EXPECT_THROW(process("service_info:ST libfoo.so create c A B C\n"), std::runtime_error);
  forget();
  process("service_info:libfoo.so create d D\n");
  EXPECT_THAT(Trace::lines(),
              testing::Contains("ServiceExecutor#1 = ServiceExecutor(\"libfoo.so\", \"create\", "
                                "\"D\", CommsChannel#2, FrameworkContext, pool, "
                                "invokeInterceptors, true)"));
}

}  // namespace
}  // namespace zerva::conformance
