#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/Ledger.h"

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

ServiceEntry entry(const std::string& interfaces, const std::string& channel = "/channel") {
  ServiceEntry service;
  service.interfaces = interfaces;
  service.channel = channel;
  return service;
}

std::vector<std::string> names(const std::vector<ServiceEntry>& services) {
  std::vector<std::string> names;
  for (const ServiceEntry& service : services) names.push_back(service.interfaces);
  return names;
}

TEST(ALedger, StopsAndDeletesInTheOrderOfNames) {
  Ledger sut;
  for (const char* name : {"C", "A", "B"}) sut.add(entry(name));
  EXPECT_THAT(names(sut.markStopped()), ElementsAre("A", "B", "C"));
  EXPECT_THAT(names(sut.markDeleted()), ElementsAre("A", "B", "C"));
}

TEST(ALedger, NamesAServiceWithSeveralInterfacesOnce_WhereItsFirstNameStands) {
  Ledger sut;
  sut.add(entry("B"));
  sut.add(entry("C A"));
  EXPECT_THAT(names(sut.markStopped()), ElementsAre("C A", "B"));
}

TEST(ALedger, DoesNotStopALegacyService) {
  Ledger sut;
  sut.add(entry("A", ""));
  EXPECT_THAT(sut.markStopped(), IsEmpty());
  EXPECT_THAT(names(sut.markDeleted()), ElementsAre("A"));
}

TEST(ALedger, StopsEachServiceOnce) {
  Ledger sut;
  sut.add(entry("A"));
  sut.markStopped();
  EXPECT_THAT(sut.markStopped(), IsEmpty());
}

TEST(ALedger, NeverDeletesAServiceWithoutAName) {
  Ledger sut;
  sut.markUp(sut.add(entry("")));
  EXPECT_THAT(sut.markDeleted(), IsEmpty());
  EXPECT_EQ(sut.count().up, 1U);
  EXPECT_EQ(sut.count().down, 0U);
}

TEST(ALedger, CountsOnlyWhatCameUp) {
  Ledger sut;
  sut.add(entry("A"));
  sut.markUp(sut.add(entry("B")));
  sut.markDeleted();
  EXPECT_EQ(sut.count().up, 1U);
  EXPECT_EQ(sut.count().down, 1U);
}

}  // namespace
}  // namespace zerva
