#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/explain/ServiceExplanation.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string registry =
    "service_info: libR.so createR /zerva/serviceregistry ServiceRegistryIfc\n";
const std::string pool = "MT: requests run beside each other, on the pool of the process.";
const std::string alone = "ST: requests run one after the other, on a thread of its own.";
constexpr char init[] = "Calls init. The next line is not read before that has returned.";
constexpr char started[] = "Starts its executor: what was sent to it until then is served now.";

/** What is said of a service in the second line, behind that of the registry. */
class AService : public testing::Test {
 protected:
  LineExplanation sut(const std::string& text) {
    file = std::make_unique<ExplainedFile>(registry + text);
    return again();
  }
  LineExplanation again() const { return explainService(file->line(2), file->outlook()); }

  std::unique_ptr<ExplainedFile> file;
};

const std::string recorded =
    "proxy_info: libX.so createX AIfc zerva_simple_rmi\n"
    "invoker_info: libX.so createX AIfc zerva_simple_rmi\n";

TEST_F(AService, ThatIsCreatedNow_IsAnnouncedBeforeInitAndStartedBehindIt) {
  const LineExplanation told = sut("service_instance: ST libA.so createA /a AIfc\n" + recorded);
  EXPECT_EQ(told.title, "creates the service AIfc now");
  EXPECT_THAT(told.steps,
              ElementsAre("Opens libA.so and calls createA.", "Makes the channel /a. " + alone,
                          "Announces AIfc before init to the registry (line 1).", init, started,
                          "AIfc is called with the proxy of line 3 and the invoker of line 4."));
  EXPECT_EQ(told.outcome, Outcome::Done);
}

TEST_F(AService, ThatIsTheRegistry_AnnouncesItselfBehindItsInit) {
  EXPECT_THAT(sut("service_instance: MT libA.so createA /z ServiceRegistryIfc\n").steps,
              ElementsAre("Opens libA.so and calls createA.", "Makes the channel /z. " + pool, init,
                          "Announces itself: it is the registry.", started));
}

TEST_F(AService, ThatIsLazy_IsAnnouncedNowAndCreatedWithItsFirstMessage) {
  const LineExplanation told = sut("service_info: libA.so createA /a AIfc\n" + recorded);
  EXPECT_EQ(told.title, "prepares the lazy service AIfc");
  EXPECT_THAT(told.steps,
              ElementsAre("Makes the channel /a. No mode is given, so " + pool,
                          "Starts its executor, which has no service yet.",
                          "Announces AIfc now to the registry (line 1).",
                          "When the first message comes, the executor's thread opens libA.so and "
                          "calls createA, and then init. The message waits for that.",
                          "AIfc is called with the proxy of line 3 and the invoker of line 4."));
}

TEST_F(AService, ThatIsTheRegistryAndLazy_AnnouncesItselfWhenItIsCreated) {
  const LineExplanation told = sut("service_info: libA.so createA /z ServiceRegistryIfc\n");
  EXPECT_EQ(told.steps.back(), "Then it announces itself: it is the registry.");
}

TEST_F(AService, ThatIsLegacy_HasAThreadAndNoChannel) {
  const LineExplanation told = sut("service_legacy: libA.so createA AIfc BIfc\n");
  EXPECT_EQ(told.title, "creates the legacy service AIfc and BIfc now");
  EXPECT_THAT(
      told.steps,
      ElementsAre("Opens libA.so and calls createA.",
                  "It has no channel and is announced to nobody, so no proxy reaches it.", init,
                  "Starts a thread of its own for it. Nobody tells it to stop: it has to "
                  "see by itself that the process ends."));
}

TEST_F(AService, CreatesNothingWithoutOneOfItsFields) {
  EXPECT_EQ(sut("service_info:\n").title, "creates nothing: the library is missing");
  EXPECT_EQ(sut("service_legacy: libA.so\n").title, "creates nothing: the creator is missing");
  EXPECT_EQ(sut("service_instance: libA.so createA\n").title,
            "creates nothing: the channel is missing");
  EXPECT_EQ(again().outcome, Outcome::Failed);
}

TEST_F(AService, QuotesTheLogWhenAFieldIsMissing) {
  EXPECT_THAT(sut("service_info:\n").steps.at(0), HasSubstr("\"Creating Service Info. Error"));
  EXPECT_THAT(sut("service_legacy:\n").steps.at(0), HasSubstr("\"Creating Legacy Service. Error"));
  EXPECT_THAT(sut("service_instance:\n").steps.at(0),
              HasSubstr("\"Creating Service Instance. Error"));
}

TEST_F(AService, ThatIsLegacy_NeedsNoChannel) {
  EXPECT_EQ(sut("service_legacy: libA.so createA\n").outcome, Outcome::Done);
  EXPECT_EQ(again().title, "creates the legacy service that has no interface now");
}

TEST_F(AService, WithoutAnInterface_AnnouncesNothing) {
  EXPECT_THAT(sut("service_info: libA.so createA /a\n").steps,
              Contains("Announces nothing, since it has no interface."));
}

TEST_F(AService, IsAnnouncedToNobodyBeforeTheRegistry) {
  file = std::make_unique<ExplainedFile>("\nservice_info: libA.so createA /a AIfc\n" + registry);
  EXPECT_THAT(again().steps,
              Contains("Announces AIfc to nobody, now or later: the registry comes in line 3 only. "
                       "An error in the log tells: \"cannot get svcRegistry interface!\"."));
}

TEST_F(AService, IsRefusedByTheRegistryWhenANameHasAComma) {
  EXPECT_THAT(sut("service_info: libA.so createA /a AIfc,BIfc\n").steps,
              Contains("Announces AIfc,BIfc now to the registry (line 1), which refuses it: a name "
                       "has a comma in it."));
}

TEST_F(AService, WithAHeartbeat_IsMonitored) {
  const std::string monitored =
      " put under monitoring as /a, since HeartbeatServiceIfc is in its interfaces.";
  EXPECT_THAT(sut("service_instance: libA.so createA /a MyHeartbeatServiceIfc2\n").steps,
              Contains("Is" + monitored));
  EXPECT_THAT(sut("service_info: libA.so createA /a AIfc HeartbeatServiceIfc\n").steps,
              Contains("Then it is" + monitored));
}

TEST_F(AService, ThatIsLegacyAndHasAHeartbeat_IsNot) {
  EXPECT_THAT(sut("service_legacy: libA.so createA HeartbeatServiceIfc\n").steps,
              Not(Contains(HasSubstr("monitoring"))));
}

TEST_F(AService, IsNotCreatedWhenItsLibraryIsNotThere) {
  sut("service_instance: libA.so createA /a AIfc\n");
  file->library(2, LibraryFault::NotFound);
  EXPECT_EQ(again().title, "does not create the service AIfc");
  EXPECT_THAT(again().steps,
              ElementsAre("Looks for libA.so and does not find it.",
                          "The log and standard output tell: \"Error opening library\"."));
  EXPECT_EQ(again().outcome, Outcome::Failed);
}

TEST_F(AService, ThatIsLazy_IsPreparedAlsoWhenItsLibraryIsNotThere) {
  sut("service_info: libA.so createA /a AIfc\n");
  file->library(2, LibraryFault::NotFound);
  EXPECT_EQ(again().title, "prepares the lazy service AIfc");
  EXPECT_THAT(again().steps,
              Contains("When the first message comes, the executor's thread looks for libA.so and "
                       "does not find it. The sender gets an error, and the next message tries "
                       "again."));
  EXPECT_EQ(again().outcome, Outcome::Failed);
}

TEST_F(AService, ThatIsLazy_EndsTheProcessWhenItsCreatorIsNoFunction) {
  sut("service_info: libA.so createA /a AIfc\n");
  file->library(2).creator = CreatorFault::NotAFunction;
  EXPECT_THAT(again().steps, Contains(testing::EndsWith("that ends the process.")));
  EXPECT_THAT(again().steps, Not(Contains(HasSubstr("tries again"))));
}

TEST_F(AService, HasThePathOfItsLibrary) {
  sut("service_info: libA.so createA /a AIfc\n");
  file->library(2);
  EXPECT_EQ(again().path, "lib/libA.so");
}

TEST_F(AService, TellsHowItsInterfacesAreCalled) {
  EXPECT_THAT(
      sut("service_info: libA.so createA /a AIfc BIfc CIfc\n"
          "proxy_info: libX.so createX AIfc zerva_simple_rmi\n")
          .steps,
      testing::IsSupersetOf(
          {"AIfc is called with the proxy of line 3 and an invoker that no line here records.",
           "No line here records a proxy for BIfc and CIfc: whoever looks it up finds nothing, "
           "unless another process records one."}));
}

}  // namespace
}  // namespace zerva
