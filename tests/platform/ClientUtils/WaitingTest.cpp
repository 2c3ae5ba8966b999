#include <gmock/gmock.h>

#include <memory>
#include <optional>

#include "framework/Dll.h"
#include "framework/Service.h"
#include "runtime/libClientUtils/Waiting.h"
#include "tests/platform/Libraries.h"

namespace {

class DescribedService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}
};

}  // namespace

namespace zerva {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST(Waits, AreListedInTheOrderInWhichTheyBegan) {
  std::optional<Waiting> first("one thing");
  const Waiting second("another");
  EXPECT_THAT(Waiting::all(), ElementsAre("one thing", "another"));

  first.reset();
  const Waiting third("a third");

  EXPECT_THAT(Waiting::all(), ElementsAre("another", "a third"));
}

TEST(Waits, MayEndInAnyOrder) {
  std::optional<Waiting> first("one thing");
  std::optional<Waiting> second("another");
  std::optional<Waiting> third("a third");

  second.reset();
  EXPECT_THAT(Waiting::all(), ElementsAre("one thing", "a third"));
  third.reset();
  EXPECT_THAT(Waiting::all(), ElementsAre("one thing"));
  second.emplace("one more");
  first.reset();
  EXPECT_THAT(Waiting::all(), ElementsAre("one more"));
}

TEST(Waits, AreNotListedWhenTheyAreOver) {
  { const Waiting sut("something"); }

  EXPECT_THAT(Waiting::all(), IsEmpty());
}

TEST(Waits, MayEndWithADescription) {
  const DescribedService service;

  const Waiting sut("the end of ",
                    std::make_shared<const Description>(static_cast<const Threadable*>(&service)));

  EXPECT_THAT(Waiting::all(),
              ElementsAre(AllOf(StartsWith("the end of "), HasSubstr("DescribedService of "))));
}

TEST(TheLastShutdown, IsTheOneThatWasNotedLast) {
  Waiting::noteShutdown([] { return "one executor"; });
  Waiting::noteShutdown([] { return "another executor"; });

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

TEST(ADescription, OutlivesTheObjectAndItsLibrary) {
  std::optional<Description> sut;
  {
    Dll library(libraryDirectory() / "libplatform_plugin.so");
    auto* const create = reinterpret_cast<Service* (*)()>(library.symbol("createPluginService"));
    const std::unique_ptr<Service> service(create());
    sut.emplace(static_cast<const Executable*>(service.get()));
  }

  EXPECT_THAT(sut->text(), HasSubstr("PluginService of libplatform_plugin.so"));
}

TEST(ADescription, OfNothing_SaysSo) {
  EXPECT_EQ(describe(static_cast<const Executable*>(nullptr)), "nothing");
  EXPECT_EQ(describe(static_cast<const Threadable*>(nullptr)), "nothing");
}

}  // namespace
}  // namespace zerva
