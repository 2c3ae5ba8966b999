#pragma once

#include <gtest/gtest.h>

#include "tests/contract/ContractWorld.h"

/** Base of all contract tests: each begins on a new platform. */
class ContractTest : public testing::Test {
 protected:
  ContractTest() { zerva::contract::startAfresh(); }
};
