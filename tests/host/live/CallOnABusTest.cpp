// Calls that a person makes of services on a bus.

#include <signal.h>

#include "tests/host/live/HostsOnABus.h"

namespace zerva {
namespace {

using testing::HasSubstr;

class ACall : public HostsOnABus {
 protected:
  /** Starts a relay with the registry. @param protocol for which there is an invoker. */
  ChildProcess& startRelay(const std::string& protocol = "zerva_svc_xml") {
    return startAll(kRegistryLine + "invoker_info: libRelayAccess.so createRelayInvoker First " +
                    protocol +
                    "\nservice_instance: ST libRelay.so createRelay /test/first First\n");
  }
};

TEST_F(ACall, PrintsWhatTheServiceAnswers) {
  const ChildProcess& host = startRelay();
  const Seen sut = zerva("call", {"First", "pass", "[]"});
  EXPECT_EQ(sut.code, 0) << sut.errors;
  EXPECT_EQ(sut.output, "[" + std::to_string(host.id()) + "]\n");
  EXPECT_EQ(sut.errors, "");
}

TEST_F(ACall, PrintsTheAnswerAsJsonWhenItIsAskedTo) {
  const ChildProcess& host = startRelay();
  const Seen sut = zerva("call", {"--json", "First", "pass", "way:list=[]"});
  EXPECT_EQ(sut.code, 0) << sut.errors;
  EXPECT_EQ(nlohmann::json::parse(sut.output), nlohmann::json::array({host.id()}));
}

TEST_F(ACall, PrintsNothingWhenThatIsTheAnswer) {
  startRelay();
  const Seen sut =
      zerva("call", {"ServiceRegistryIfc", "registerInterface", "NewIfc", "/test/first"});
  EXPECT_EQ(sut.code, 0) << sut.errors;
  EXPECT_EQ(sut.output, "");
}

TEST_F(ACall, PrintsTheExceptionOfTheService) {
  startRelay();
  const Seen sut = zerva("call", {"First", "pass", R"(["throw"])"});
  EXPECT_EQ(sut.code, 3);
  EXPECT_EQ(sut.output, "");
  EXPECT_THAT(sut.errors,
              HasSubstr("zerva: call of First.pass on channel '/test/first' failed: the service "
                        "threw: "));
}

TEST_F(ACall, OfAMethodThatIsNotKnown_Fails) {
  startRelay();
  const Seen sut = zerva("call", {"First", "jump"});
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.errors, HasSubstr("method 'jump' is not known"));
}

TEST_F(ACall, WithArgumentsThatDoNotFit_Fails) {
  startRelay();
  const Seen sut = zerva("call", {"First", "pass", "-3"});
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.errors, HasSubstr("the arguments did not decode"));
}

TEST_F(ACall, WithoutAnInvokerForTheProtocol_SaysSo) {
  startRelay("zerva_simple_rmi");
  const Seen sut = zerva("call", {"First", "pass", "[]"});
  EXPECT_EQ(sut.code, 5);
  EXPECT_EQ(sut.errors,
            "zerva: no invoker of First is recorded for the protocol zerva_svc_xml; a directive "
            "records one: invoker_info: LIBRARY CREATOR First zerva_svc_xml\n");
}

TEST_F(ACall, OfAnInterfaceThatIsNotKnown_SaysSo) {
  startRelay();
  const Seen sut = zerva("call", {"Second", "pass", "[]"});
  EXPECT_EQ(sut.code, 4);
  EXPECT_EQ(sut.errors, "zerva: the registry does not know the interface Second\n");
}

TEST_F(ACall, OnABusWithoutARegistry_SaysSo) {
  startAll(kPlainLine);
  const Seen sut = zerva("call", {"First", "pass"});
  EXPECT_EQ(sut.code, 6);
  EXPECT_EQ(sut.errors, "zerva: nobody serves the registry on this bus\n");
}

TEST_F(ACall, WithAnArgumentThatIsNotOfItsType_IsNotMade) {
  startRelay();
  const Seen sut = zerva("call", {"First", "pass", "n:integer=x"});
  EXPECT_EQ(sut.code, 2);
  EXPECT_EQ(sut.errors, "zerva: 'n:integer=x': 'x' is no value of type integer\n");
}

TEST_F(ACall, OnABusThatIsNotThere_Fails) {
  ChildProcess sut(build + "/bin/zerva",
                   {"call", "--bus", directory.file("missing"), "First", "pass"});
  EXPECT_EQ(sut.wait(), 10);
}

TEST_F(ACall, OfAProcessThatDoesNotAnswer_FailsInTime) {
  ChildProcess& host = startRelay();
  ASSERT_TRUE(host.stop());
  const Seen sut = zerva("call", {"--timeout", "0.2", "First", "pass", "[]"});
  host.signal(SIGCONT);
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.errors, HasSubstr("zerva: the registry does not answer: "));
}

}  // namespace
}  // namespace zerva
