#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/live/RegistryQuestions.h"
#include "tests/support/ExecutorWorld.h"

namespace zerva {
namespace {

class RegistryQuestionsOf : public testing::Test {
 protected:
  ~RegistryQuestionsOf() override { world.end(); }

  void answers(const std::string& answer) {
    registry = std::make_unique<ScriptedService>([this, answer](const std::string& question) {
      asked.add(question);
      if (answer.empty()) throw std::runtime_error("I am ill");
      return answer;
    });
    world.run(registry.get(), "/zerva/serviceregistry", Mode::ST);
  }

  std::unique_ptr<ScriptedService> registry;
  Journal asked;
  ExecutorWorld world;
  CommsChannel from{"/test/from", nullptr};
  RegistryQuestions sut{from};
};

TEST_F(RegistryQuestionsOf, ABusWithoutARegistry_FindThatThereIsNone) {
  EXPECT_FALSE(sut.isThere());
}

TEST_F(RegistryQuestionsOf, ARegistry_FindTheChannelOfAnInterface) {
  answers("found:/wind");
  EXPECT_TRUE(sut.isThere());
  EXPECT_EQ(sut.findChannel("WindIfc"), "/wind");
  EXPECT_EQ(asked.entries(), std::vector<std::string>{"find:WindIfc,/test/from"});
}

TEST_F(RegistryQuestionsOf, ARegistryThatDoesNotKnow_FindNothing) {
  answers("unknown:");
  EXPECT_FALSE(sut.findChannel("WindIfc"));
  EXPECT_FALSE(sut.hasInvoker("WindIfc", "zerva_svc_xml"));
}

TEST_F(RegistryQuestionsOf, ARegistry_FindTheInvoker) {
  answers("found_invoker:libWind.so,createInvoker");
  EXPECT_TRUE(sut.hasInvoker("WindIfc", "zerva_svc_xml"));
  EXPECT_EQ(asked.entries(), std::vector<std::string>{"find_invoker:WindIfc,zerva_svc_xml"});
}

TEST_F(RegistryQuestionsOf, ARegistryThatFails_TellWhy) {
  answers("");
  try {
    sut.findChannel("WindIfc");
    FAIL() << "there is no answer";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "the registry does not answer: I am ill");
  }
}

TEST_F(RegistryQuestionsOf, ARegistry_AreNotAskedForANameWithAComma) {
  answers("found:/wind");
  EXPECT_FALSE(sut.findChannel("Wind,Ifc"));
  EXPECT_TRUE(asked.entries().empty());
}

}  // namespace
}  // namespace zerva
