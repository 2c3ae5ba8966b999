#include <stdexcept>

#include "framework/Dll.h"
#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

/** At level 5 the progress is seen, at 4 it is not. */
class FindInvoker : public ConfiguratorTest, public testing::WithParamInterface<int> {
 protected:
  FindInvoker() { logLevel(GetParam()); }

  Invoker* find(std::string ifc = "FooIfc", std::string protocol = "tcp") {
    return sut->framework().findInvoker(ifc, protocol);
  }

  static std::string called(const std::string& ifc = "FooIfc",
                            const std::string& protocol = "tcp") {
    return progress("findInvoker called for interface & protocol: %s,%s sem=%p", ifc, protocol,
                    Object{"invokerSem"});
  }
  static std::string askedRepository() {
    return "repository.findServiceInvoker(\"FooIfc\", \"tcp\")";
  }
  static std::string resolving() {
    return progress("Service Configurator: Resolving symbol to invoker creator function sem=%p",
                    Object{"invokerSem"});
  }
  static std::string asked() {
    return asText({called(), askedRepository(), query("find_invoker:FooIfc,tcp")});
  }
  static void answer(const std::string& reply) {
    Platform::reply("find_invoker:FooIfc,tcp", reply);
  }
  static std::string made(const std::string& invoker) {
    return locked(
        "invokerSem",
        {askedRepository(), resolving(), opened("Dll#1", "libA.so"), resolved("Dll#1", "createA"),
         "createA()", "repository.addServiceInvoker(" + invoker + ", Dll#1, \"FooIfc\", \"tcp\")"});
  }

  /** Records an invoker, as another thread does. */
  Invoker* record() {
    auto* invoker = new fakes::RecordingInvoker;
    std::string ifc = "FooIfc";
    std::string protocol = "tcp";
    inner.addServiceInvoker(invoker, new Dll("libI.so"), ifc, protocol);
    return invoker;
  }
};

TEST_P(FindInvoker, ThatIsRecorded_TakesNoSemaphoreAndAsksNobody) {
  Invoker* invoker = record();
  forget();
  EXPECT_EQ(find(), invoker);
  expectTrace({called(), askedRepository()});
}

TEST_P(FindInvoker, ThatTheRegistryKnows_IsMadeAndRecorded) {
  answer("found_invoker:libA.so,createA");
  offerInvoker("libA.so", "createA");
  Invoker* invoker = find();
  expectTrace({asked(), made("Invoker#1")});
  EXPECT_EQ(fakes::Objects::name(invoker), "Invoker#1");
}

TEST_P(FindInvoker, AskedAgain_GivesTheOneThatWasMade) {
  answer("found_invoker:libA.so,createA");
  offerInvoker("libA.so", "createA");
  Invoker* invoker = find();
  forget();
  EXPECT_EQ(find(), invoker);
  expectTrace({called(), askedRepository()});
}

TEST_P(FindInvoker, WithMoreFieldsInTheReply_IgnoresThem) {
  answer(" found_invoker: libA.so,createA,FooIfc,tcp,more ");
  offerInvoker("libA.so", "createA");
  find();
  expectTrace({asked(), made("Invoker#1")});
}

TEST_P(FindInvoker, WhoseCreatorGivesNull_IsRecordedAllTheSame) {
  answer("found_invoker:libA.so,createA");
  offerNoInvoker("libA.so", "createA");
  EXPECT_EQ(find(), nullptr);
  expectTrace({asked(), made("null")});
}

TEST_P(FindInvoker, AfterOneThatIsNull_IsAskedForAndMadeEachTime) {
  answer("found_invoker:libA.so,createA");
  offerNoInvoker("libA.so", "createA");
  EXPECT_EQ(find(), nullptr);
  offerInvoker("libA.so", "createA");
  for (const auto& [invoker, dll] : {std::pair("Invoker#1", "Dll#2"), {"Invoker#2", "Dll#3"}}) {
    forget();
    EXPECT_EQ(fakes::Objects::name(find()), invoker);
    const Lines lines = Trace::lines();
    EXPECT_THAT(lines, testing::Contains(testing::StartsWith("host.receiveReply(")));
    EXPECT_THAT(lines, testing::Contains(
                           fakes::joined({std::string("repository.addServiceInvoker(") + invoker,
                                          dll, "\"FooIfc\"", "\"tcp\") [invokerSem]"})));
  }
}

// Each pair of interface and protocol has an invoker of its own.
TEST_P(FindInvoker, OfTwoProtocols_IsAskedForAndMadeForEach) {
  for (const char* protocol : {"tcp", "udp"}) {
    Platform::reply(std::string("find_invoker:FooIfc,") + protocol,
                    "found_invoker:libA.so,createA");
  }
  offerInvoker("libA.so", "createA");
  Invoker* const ofTcp = find("FooIfc", "tcp");
  forget();
  Invoker* const ofUdp = find("FooIfc", "udp");
  EXPECT_NE(ofUdp, nullptr);
  EXPECT_NE(ofUdp, ofTcp);
  EXPECT_THAT(Trace::lines(), testing::Contains("Message#2.setData(\"find_invoker:FooIfc,udp\")"));
  forget();
  EXPECT_EQ(find("FooIfc", "tcp"), ofTcp);
  EXPECT_EQ(find("FooIfc", "udp"), ofUdp);
  EXPECT_THAT(Trace::lines(), testing::Not(testing::Contains(testing::HasSubstr("host."))));
}

TEST_P(FindInvoker, ThatNobodyKnows_GivesNullAndTakesNoSemaphore) {
  for (const char* reply : {"unknown:", "Found_invoker:libA.so,createA", "found:libA.so,createA",
                            "found_invoker_:libA.so,createA", "", "found_invoker"}) {
    SCOPED_TRACE(reply);
    answer(reply);
    EXPECT_EQ(find(), nullptr);
  }
  EXPECT_THAT(Trace::lines(), testing::Not(testing::Contains(testing::HasSubstr("invokerSem."))));
  EXPECT_THAT(Trace::lines(), testing::Not(testing::Contains(testing::HasSubstr("Dll"))));
}

TEST_P(FindInvoker, WithACommaOrAZeroByteInItsNames_IsAskedForWithThem) {
  const std::string ifc("Foo,If\0c", 8);
  const std::string protocol("t,c\0p", 5);
  EXPECT_EQ(find(ifc, protocol), nullptr);
  EXPECT_THAT(Trace::lines(),
              testing::Contains("Message#1.setData(" +
                                fakes::inQuotes("find_invoker:" + ifc + "," + protocol) + ")"));
}

TEST_P(FindInvoker, ThatNobodyAnswersFor_GivesNull) {
  EXPECT_EQ(find(), nullptr);
  expectTrace({asked()});
}

TEST_P(FindInvoker, WithAReplyThatBeginsWithAHash_ThrowsOutOfRange) {
  answer("# found_invoker:libA.so,createA");
  EXPECT_EQ(messageOf<std::out_of_range>([this] { find(); }), outOfRange(1, 1));
  expectTrace({asked()});
}

TEST_P(FindInvoker, WithAReplyThatBeginsWithABlankAndAHash_ThrowsOutOfRange) {
  answer(" \t#found_invoker:libA.so,createA");
  EXPECT_THROW(find(), std::out_of_range);
  expectTrace({asked()});
}

TEST_P(FindInvoker, WithAReplyOfNoFields_GoesOnWithEmptyNames) {
  answer("found_invoker:");
  EXPECT_EQ(find(), nullptr);
  EXPECT_THAT(Trace::lines(), testing::Contains("Dll#1 = Dll(\"\") [invokerSem]"));
}

TEST_P(FindInvoker, WithAReplyOfOneField_ResolvesAnEmptyName) {
  answer("found_invoker:libA.so");
  offerInvoker("libA.so", "createA");
  EXPECT_EQ(find(), nullptr);
  EXPECT_THAT(Trace::lines(), testing::Contains("Dll#1.symbol(\"\") [invokerSem]"));
}

TEST_P(FindInvoker, WithAZeroByteInTheNames_EndsThemThere) {
  answer(std::string("found_invoker:libA.so\0x,createA\0y", 34));
  offerInvoker("libA.so", "createA");
  find();
  expectTrace({asked(), made("Invoker#1")});
}

TEST_P(FindInvoker, ThatAnotherThreadMadeMeanwhile_IsGiven) {
  answer("found_invoker:libA.so,createA");
  offerInvoker("libA.so", "createA");
  Invoker* others = nullptr;
  Platform::once("invokerSem.take(", [&] { others = record(); });
  EXPECT_EQ(find(), others);
  expectTrace({asked(), locked("invokerSem", {askedRepository()})});
}

TEST_P(FindInvoker, WhoseLibraryIsMissing_IsReportedAndLeavesNothing) {
  answer("found_invoker:libA.so,createA");
  Platform::library("libA.so").error = "cannot open it";
  EXPECT_EQ(find(), nullptr);
  expectTrace(
      {asked(),
       locked("invokerSem",
              {askedRepository(), resolving(), "Dll#1 = Dll(\"libA.so\")",
               "Dll#1.error() -> \"cannot open it\"",
               error("ServiceConfigurator::findInvoker() failed on opening Dll (%s) error: '%s'",
                     "libA.so", "cannot open it"),
               printed("ServiceConfigurator::findInvoker() failed on opening Dll (libA.so) error: "
                       "'cannot open it'"),
               "~Dll#1"})});
}

TEST_P(FindInvoker, WhoseCreatorIsMissing_IsReportedAndLeavesNothing) {
  answer("found_invoker:libA.so,createA");
  offerInvoker("libA.so", "createA");
  Platform::library("libA.so").symbols["createA"].error = "no symbol";
  EXPECT_EQ(find(), nullptr);
  expectTrace(
      {asked(),
       locked("invokerSem",
              {askedRepository(), resolving(), opened("Dll#1", "libA.so"),
               "Dll#1.symbol(\"createA\")", "Dll#1.error() -> \"no symbol\"",
               error("ServiceConfigurator::findInvoker() failed on fetching symbol (%s) from (%s) "
                     "error: '%s'",
                     "createA", "libA.so", "no symbol"),
               printed("ServiceConfigurator::findInvoker() failed on fetching symbol (createA) "
                       "from (libA.so) error: 'no symbol'"),
               "~Dll#1"})});
}

TEST_P(FindInvoker, AfterAFailure_AsksTheRegistryAgain) {
  answer("found_invoker:libA.so,createA");
  EXPECT_EQ(find(), nullptr);
  offerInvoker("libA.so", "createA");
  EXPECT_NE(find(), nullptr);
}

TEST_P(FindInvoker, WhoseCreatorThrows_LeavesTheSemaphoreFree) {
  answer("found_invoker:libA.so,createA");
  offer("libA.so", "createA",
        fakes::Creators::invoker([]() -> Invoker* { throw std::runtime_error("no invoker"); }));
  EXPECT_THROW(find(), std::runtime_error);
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  leaves("Dll#1");
}

TEST_P(FindInvoker, WhoseLibraryThrows_LeavesTheSemaphoreFree) {
  answer("found_invoker:libA.so,createA");
  offerInvoker("libA.so", "createA");
  Platform::once("Dll#1 = ", [] { throw std::runtime_error("no library"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { find(); }), "no library");
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  EXPECT_NE(find(), nullptr);
}

TEST_P(FindInvoker, ThatCannotBeRecorded_LeavesTheSemaphoreFree) {
  answer("found_invoker:libA.so,createA");
  offerInvoker("libA.so", "createA");
  Platform::once("repository.addServiceInvoker(", [] { throw std::runtime_error("no room"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { find(); }), "no room");
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  EXPECT_NE(find(), nullptr);
  leaves("Dll#1");
  leaves("Invoker#1");
}

INSTANTIATE_TEST_SUITE_P(AtLevel, FindInvoker, testing::Values(4, 5));

}  // namespace
}  // namespace zerva::conformance
