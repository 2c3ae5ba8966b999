#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>
#include <vector>

#include "runtime/libClientUtils/bus/Outgoing.h"
#include "tests/platform/Bus/ConnectionWorld.h"

namespace {

using namespace zerva;

// More than a socket holds.
constexpr std::size_t kMuch = 2'000'000;

class WhatIsSent : public ConnectionWorld {
 protected:
  WhatIsSent() {
    sut->setHandler({[](std::string_view, const Payload&) {}, [](const std::string&) {},
                     [this] { outgoing.flush(); }},
                    kMaximumFrame);
    sut->start();
  }

  /** @returns all that comes until there is so much of it, while the bus thread runs. */
  std::string heard(std::size_t size) {
    std::string all;
    std::string part(100'000, '\0');
    const auto late = Clock::now() + std::chrono::seconds(60);
    while (all.size() < size && Clock::now() < late) {
      const ssize_t came = ::recv(other.get(), part.data(), part.size(), 0);
      if (came > 0) all.append(part, 0, static_cast<std::size_t>(came));
      runBusThread();
    }
    return all;
  }

  Outgoing outgoing;
};

TEST_F(WhatIsSent, AndWasLent_IsTheSendersAgainWhenTheCallIsOver) {
  outgoing.open(sut);
  std::string lent(kMuch, 'a');

  EXPECT_EQ(outgoing.send("<", borrowed(lent), kMaximumQueued), Outgoing::Result::Taken);
  lent.assign(kMuch, 'b');
  EXPECT_EQ(outgoing.send(">", borrowed(lent), kMaximumQueued), Outgoing::Result::Taken);
  lent.assign(kMuch, 'c');

  EXPECT_TRUE(heard(2 * kMuch + 2) ==
              "<" + std::string(kMuch, 'a') + ">" + std::string(kMuch, 'b'));
}

TEST_F(WhatIsSent, BeforeThereIsAConnection_WaitsForIt) {
  std::string lent = "lent";

  EXPECT_EQ(outgoing.send("<", borrowed(lent), kMaximumQueued), Outgoing::Result::Taken);
  lent = "gone";
  outgoing.open(sut);

  EXPECT_EQ(heard(5), "<lent");
}

TEST_F(WhatIsSent, BehindMoreThanMayWait_IsRefused) {
  EXPECT_EQ(outgoing.send("1234", nullptr, 5), Outgoing::Result::Taken);
  EXPECT_EQ(outgoing.send("12", nullptr, 5), Outgoing::Result::Full);
  EXPECT_EQ(outgoing.send("1", nullptr, 5), Outgoing::Result::Taken);
}

TEST_F(WhatIsSent, InManyShortPieces_IsKeptAsFastAsItComes) {
  constexpr int kMany = 100'000;
  outgoing.open(sut);
  std::string all;
  for (int i = 0; i < kMany; ++i) {
    const std::string lent = std::to_string(i);
    ASSERT_EQ(outgoing.send("<", borrowed(lent), kMaximumQueued), Outgoing::Result::Taken);
    all += "<" + lent;
  }

  EXPECT_TRUE(heard(all.size()) == all);
}

// The same bytes may also wait there as somebody else's.
TEST_F(WhatIsSent, AndWasLent_IsToldFromOthersOfTheSameBytes) {
  auto text = std::make_shared<std::string>("same");

  EXPECT_EQ(outgoing.send("1", text, kMaximumQueued), Outgoing::Result::Taken);
  EXPECT_EQ(outgoing.send("2", borrowed(*text), kMaximumQueued), Outgoing::Result::Taken);
  text->assign("else");
  outgoing.open(sut);

  EXPECT_EQ(heard(10), "1else2same");
}

TEST_F(WhatIsSent, ByManyAtATime_ComesInOrderAndWhole) {
  constexpr int kThreads = 4;
  constexpr int kEach = 30;
  constexpr std::size_t kSize = 70'000;
  outgoing.open(sut);
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([this, number] {
      for (int i = 0; i < kEach; ++i) {
        const std::string lent(kSize, static_cast<char>('a' + number));
        EXPECT_EQ(outgoing.send(std::string(1, static_cast<char>('0' + i)), borrowed(lent),
                                kMaximumQueued),
                  Outgoing::Result::Taken);
      }
    });
  }
  const std::string all = heard(kThreads * kEach * (kSize + 1));
  for (auto& thread : threads) thread.join();

  std::array<int, kThreads> next{};
  for (std::size_t at = 0; at + kSize < all.size(); at += kSize + 1) {
    const char first = all.at(at + 1);
    ASSERT_EQ(all.compare(at + 1, kSize, std::string(kSize, first)), 0);
    ASSERT_EQ(all.at(at),
              static_cast<char>('0' + next.at(static_cast<std::size_t>(first - 'a'))++));
  }
  for (const int count : next) EXPECT_EQ(count, kEach);
}

}  // namespace
