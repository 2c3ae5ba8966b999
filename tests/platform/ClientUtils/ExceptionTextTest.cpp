#include <gtest/gtest.h>

#include <stdexcept>

#include "framework/ZervaException.h"
#include "runtime/libClientUtils/ExceptionText.h"

namespace zerva {
namespace {

struct Nameless {};

template <typename Exception>
std::string textOf(Exception exception) {
  try {
    throw exception;
  } catch (...) {
    return currentExceptionText();
  }
}

TEST(TheTextOfAnException, IsItsMessage) {
  EXPECT_EQ(textOf(std::runtime_error("no paper")), "no paper");
  EXPECT_EQ(textOf(ZervaException("no ink")), "no ink");
}

TEST(TheTextOfAnException, IsTheTextThatWasThrown) {
  const char* const constant = "a bare text";
  char variable[] = "a text that may change";
  EXPECT_EQ(textOf(constant), "a bare text");
  EXPECT_EQ(textOf(static_cast<char*>(variable)), "a text that may change");
  EXPECT_EQ(textOf(std::string("a string")), "a string");
}

TEST(TheTextOfAnException, IsEmptyForANullText) {
  EXPECT_EQ(textOf(static_cast<const char*>(nullptr)), "");
}

TEST(TheTextOfAnException, IsTheNameOfAnyOtherType) {
  EXPECT_EQ(textOf(42), "an exception of type int");
  EXPECT_NE(textOf(Nameless()).find("Nameless"), std::string::npos);
}

TEST(TheTextOfAnException, IsThatOfTheInnermostHandled) {
  try {
    throw std::runtime_error("outer");
  } catch (...) {
    EXPECT_EQ(textOf(std::runtime_error("inner")), "inner");
    EXPECT_EQ(currentExceptionText(), "outer");
  }
}

TEST(TheTextOfAnException, SaysSoWhenThereIsNone) {
  EXPECT_EQ(currentExceptionText(), "no exception");
}

}  // namespace
}  // namespace zerva
