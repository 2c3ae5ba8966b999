#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/explain/RecordExplanation.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

using testing::ElementsAre;

const std::string registry =
    "service_info: libR.so createR /zerva/serviceregistry ServiceRegistryIfc\n";

/** What is said of a record in the second line, behind that of the registry. */
class ARecord : public testing::Test {
 protected:
  LineExplanation sut(const std::string& text) {
    file = std::make_unique<ExplainedFile>(registry + text);
    return again();
  }
  LineExplanation again() const { return explainRecord(file->line(2), file->outlook()); }

  std::unique_ptr<ExplainedFile> file;
};

TEST_F(ARecord, OfAProxyGoesToTheRegistry_AndTheLibraryIsOpenedByWhoLooksTheInterfaceUp) {
  const LineExplanation told = sut("proxy_info: libA.so createA AIfc zerva_simple_rmi\n");
  EXPECT_EQ(told.title, "records where the proxy for AIfc is");
  EXPECT_THAT(told.steps,
              ElementsAre("Tells it to the registry (line 1).",
                          "Opens nothing now. When a process looks AIfc up for the first time, it "
                          "opens libA.so and calls createA."));
  EXPECT_EQ(told.outcome, Outcome::Done);
}

TEST_F(ARecord, OfAnInvokerGoesToTheRegistry_AndTheLibraryIsOpenedByWhoServesTheInterface) {
  const LineExplanation told = sut("invoker_info: MT libA.so createA AIfc zerva_svc_xml\n");
  EXPECT_EQ(told.title, "records where the invoker for AIfc in zerva_svc_xml is");
  EXPECT_THAT(told.steps,
              ElementsAre("Tells it to the registry (line 1).",
                          "Opens nothing now. When the first call in zerva_svc_xml comes to a "
                          "service with AIfc, its process opens libA.so and calls createA."));
}

TEST_F(ARecord, OfTheRegistrysOwnProxyIsSentAndTold) {
  EXPECT_EQ(
      sut("proxy_info: libA.so createA ServiceRegistryIfc zerva_simple_rmi\n").steps.at(0),
      "Sends the record as a text to /zerva/serviceregistry, and waits for nobody; then tells "
      "it to the registry (line 1) too.");
}

TEST_F(ARecord, OfTheRegistrysOwnInvokerIsOnlySent) {
  EXPECT_EQ(sut("invoker_info: libA.so createA ServiceRegistryIfc zerva_simple_rmi\n").steps.at(0),
            "Sends the record as a text to /zerva/serviceregistry, and waits for nobody.");
}

TEST_F(ARecord, IsOfNoUseWithoutOneOfItsFields) {
  EXPECT_EQ(sut("proxy_info: libA.so\n").title,
            "records what nobody can use: the creator is missing");
  EXPECT_EQ(sut("proxy_info: libA.so createA\n").title,
            "records what nobody can use: the interface is missing");
  EXPECT_EQ(sut("invoker_info: libA.so createA AIfc\n").title,
            "records what nobody can use: the protocol is missing");
  EXPECT_EQ(sut("invoker_info:\n").title, "records what nobody can use: the library is missing");
  EXPECT_EQ(sut("invoker_info:\n").outcome, Outcome::Failed);
}

TEST_F(ARecord, OfAProxyNeedsNoProtocol) {
  EXPECT_EQ(sut("proxy_info: libA.so createA AIfc\n").outcome, Outcome::Done);
}

TEST_F(ARecord, IsRefusedWhenAFieldHasAComma) {
  const LineExplanation told = sut("proxy_info: lib,A.so createA AIfc zerva_simple_rmi\n");
  EXPECT_EQ(told.title, "records nothing: one of its fields has a comma in it");
  EXPECT_THAT(told.steps, ElementsAre("Tells it to the registry (line 1), which refuses it."));
  EXPECT_EQ(told.outcome, Outcome::Failed);
}

TEST_F(ARecord, IsLostBeforeTheRegistry) {
  file = std::make_unique<ExplainedFile>("\nproxy_info: libA.so createA AIfc zerva_simple_rmi\n" +
                                         registry);
  EXPECT_EQ(again().title, "records nothing: the registry comes in line 3 only");
  EXPECT_EQ(again().outcome, Outcome::Failed);
}

TEST_F(ARecord, TellsOfALibraryThatIsNotThere) {
  sut("proxy_info: libA.so createA AIfc zerva_simple_rmi\n");
  file->library(2, LibraryFault::NotFound);
  EXPECT_EQ(again().outcome, Outcome::Failed);
  EXPECT_EQ(again().steps.at(1),
            "Opens nothing now. When a process looks AIfc up for the first time, it looks for "
            "libA.so and does not find it.");
}

TEST_F(ARecord, HasThePathOfItsLibrary) {
  sut("proxy_info: libA.so createA AIfc zerva_simple_rmi\n");
  file->library(2);
  EXPECT_EQ(again().path, "lib/libA.so");
}

}  // namespace
}  // namespace zerva
