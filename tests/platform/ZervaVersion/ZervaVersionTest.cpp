#include <gtest/gtest.h>

#include "framework/ZervaVersion.h"

namespace {

TEST(TheVersion, IsThatOfTheProject) { EXPECT_EQ(ZervaVersion(), EXPECTED_VERSION); }

}  // namespace
