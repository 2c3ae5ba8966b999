#include <gmock/gmock.h>

#include <optional>

#include "framework/Service.h"
#include "runtime/libClientUtils/Waiting.h"

namespace {

class DescribedService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}
};

}  // namespace

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Waits, AreListedInTheOrderInWhichTheyBegan) {
  std::optional<Waiting> first("one thing");
  const Waiting second("another");
  EXPECT_THAT(Waiting::all(), ElementsAre("one thing", "another"));

  first.reset();
  const Waiting third("a third");

  EXPECT_THAT(Waiting::all(), ElementsAre("another", "a third"));
}

TEST(Waits, AreNotListedWhenTheyAreOver) {
  { const Waiting sut("something"); }

  EXPECT_THAT(Waiting::all(), IsEmpty());
}

TEST(TheLastShutdown, IsTheOneThatWasNotedLast) {
  Waiting::noteShutdown("one executor");
  Waiting::noteShutdown("another executor");

  EXPECT_EQ(Waiting::lastShutdown(), "another executor");
}

TEST(ADescription, NamesTheTypeAndTheLibraryOfAnObject) {
  const DescribedService service;

  for (const std::string& sut : {describe(static_cast<const Executable*>(&service)),
                                 describe(static_cast<const Threadable*>(&service))}) {
    EXPECT_THAT(sut, HasSubstr("DescribedService"));
    EXPECT_THAT(sut, HasSubstr(" of platform_client_"));
  }
}

TEST(ADescription, OfNothing_SaysSo) {
  EXPECT_EQ(describe(static_cast<const Executable*>(nullptr)), "nothing");
  EXPECT_EQ(describe(static_cast<const Threadable*>(nullptr)), "nothing");
}

}  // namespace
}  // namespace zerva
