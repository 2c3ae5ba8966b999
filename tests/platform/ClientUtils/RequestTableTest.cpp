#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <set>

#include "runtime/libClientUtils/RequestTable.h"

namespace zerva {
namespace {

struct Request {
  void end() { ++ended; }
  int value = 0;
  int ended = 0;
};

TEST(ARequestTable, KnowsEachRequestByItsId) {
  RequestTable<Request> sut;
  EXPECT_EQ(sut.find(1), nullptr);
  for (std::uint32_t id = 1; id <= 3; ++id) {
    const auto [request, isNew] = sut.place(id);
    EXPECT_TRUE(isNew);
    request->value = static_cast<int>(10 * id);
    EXPECT_EQ(sut.size(), id);
  }
  for (std::uint32_t id = 1; id <= 3; ++id) {
    ASSERT_NE(sut.find(id), nullptr);
    EXPECT_EQ(sut.find(id)->value, static_cast<int>(10 * id));
  }
  EXPECT_EQ(sut.find(4), nullptr);
}

TEST(ARequestTable, HasOneRequestOfAnId) {
  RequestTable<Request> sut;
  for (const std::uint32_t id : {7U, 8U}) {
    Request* const first = sut.place(id).first;
    const auto [request, isNew] = sut.place(id);
    EXPECT_FALSE(isNew);
    EXPECT_EQ(request, first);
  }
  EXPECT_EQ(sut.size(), 2U);
}

TEST(ARequestTable, FillsThePlacesOfThoseThatWereTakenOut) {
  RequestTable<Request> sut;
  std::set<Request*> places;
  for (std::uint32_t id = 1; id <= 100; ++id) {
    places.insert(sut.place(2 * id).first);
    places.insert(sut.place(2 * id + 1).first);
    // Whichever of both goes first.
    sut.remove(id % 2 == 0 ? 2 * id : 2 * id + 1);
    sut.remove(id % 2 == 0 ? 2 * id + 1 : 2 * id);
    EXPECT_EQ(sut.find(2 * id), nullptr);
    EXPECT_EQ(sut.find(2 * id + 1), nullptr);
    EXPECT_EQ(sut.size(), 0U);
  }
  EXPECT_EQ(places.size(), 2U);
  EXPECT_EQ(sut.place(1).first->ended, 100);
}

TEST(ARequestTable, TakesOutThoseThatAreOver) {
  RequestTable<Request> sut;
  for (std::uint32_t id = 1; id <= 9; ++id) sut.place(id).first->value = static_cast<int>(id);
  sut.removeIf([](const Request& request) { return request.value % 2 == 1; });
  for (std::uint32_t id = 1; id <= 9; ++id) {
    EXPECT_EQ(sut.find(id) != nullptr, id % 2 == 0) << id;
  }
  EXPECT_EQ(sut.size(), 4U);
  sut.removeIf([](const Request&) { return true; });
  EXPECT_EQ(sut.size(), 0U);
}

}  // namespace
}  // namespace zerva
