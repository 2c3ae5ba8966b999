#include <gtest/gtest.h>

#include "host/live/Answers.h"

namespace zerva {
namespace {

ServiceStatus service(const std::string& interfaces, std::uint64_t executor, std::uint64_t requests,
                      std::size_t queued) {
  ServiceStatus status;
  status.interfaces = interfaces;
  status.channel = "/" + interfaces;
  status.state = ServiceState::Running;
  status.executor = ExecutorStatus{executor, requests, queued, 0, 0};
  return status;
}

std::vector<Answer> answers(const std::vector<ServiceStatus>& services, int process = 1) {
  Answer answer;
  answer.process = process;
  answer.tells = true;
  answer.status = ProcessStatus();
  answer.status->services = services;
  return {answer};
}

bool isStuck(const ServiceStatus& before, const ServiceStatus& now, int processNow = 1) {
  auto sut = answers({now}, processNow);
  markStuck(sut, answers({before}));
  return sut[0].status->services[0].stuck;
}

TEST(AService, OfWhichNothingWasTakenWhileSomethingWasQueued_IsStuck) {
  EXPECT_TRUE(isStuck(service("A", 1, 5, 1), service("A", 1, 5, 2)));
}

TEST(AService, OfWhichSomethingWasTaken_IsNotStuck) {
  EXPECT_FALSE(isStuck(service("A", 1, 5, 1), service("A", 1, 6, 1)));
}

TEST(AService, ThatHadNothingQueuedBefore_IsNotStuck) {
  EXPECT_FALSE(isStuck(service("A", 1, 5, 0), service("A", 1, 5, 1)));
}

TEST(AService, ThatHasNothingQueuedAnyMore_IsNotStuck) {
  EXPECT_FALSE(isStuck(service("A", 1, 5, 1), service("A", 1, 5, 0)));
}

TEST(AService, WithAnotherExecutorThanBefore_IsNotStuck) {
  EXPECT_FALSE(isStuck(service("A", 1, 5, 1), service("A", 2, 5, 1)));
  EXPECT_FALSE(isStuck(service("A", 1, 5, 1), service("A", 1, 5, 1), 2));
}

TEST(ALook, IsWorthASecondOneWhenSomethingIsQueued) {
  EXPECT_TRUE(somethingIsQueued(answers({service("A", 1, 5, 0), service("B", 2, 5, 1)})));
  EXPECT_FALSE(somethingIsQueued(answers({service("A", 1, 5, 0), ServiceStatus()})));
  EXPECT_FALSE(somethingIsQueued({Answer()}));
}

TEST(AName, IsThatOfAnInterfaceOrAChannel) {
  const ServiceStatus sut = service("AIfc BIfc", 1, 1, 1);
  EXPECT_TRUE(isNamed(sut, "AIfc"));
  EXPECT_TRUE(isNamed(sut, "BIfc"));
  EXPECT_TRUE(isNamed(sut, "/AIfc BIfc"));
  EXPECT_FALSE(isNamed(sut, "Ifc"));
  EXPECT_FALSE(isNamed(sut, "/A"));
}

TEST(Trouble, IsAServiceThatFailedOrIsStuck) {
  ServiceStatus failed = service("A", 1, 1, 0);
  failed.state = ServiceState::Failed;
  ServiceStatus stuck = service("B", 1, 1, 1);
  stuck.stuck = true;
  EXPECT_TRUE(showTrouble(answers({service("C", 1, 1, 1), failed}), ""));
  EXPECT_TRUE(showTrouble(answers({service("C", 1, 1, 1), stuck}), ""));
  EXPECT_FALSE(showTrouble(answers({service("C", 1, 1, 1)}), ""));
}

TEST(Trouble, IsThatOfTheOneWhoseNameWasAskedFor) {
  ServiceStatus failed = service("A", 1, 1, 0);
  failed.state = ServiceState::Failed;
  const auto sut = answers({failed, service("B", 2, 1, 0)});
  EXPECT_TRUE(showTrouble(sut, "A"));
  EXPECT_FALSE(showTrouble(sut, "B"));
}

TEST(Trouble, IsAProcessThatTellsHowItIsAndDoesNotAnswer) {
  Answer silent;
  silent.tells = true;
  EXPECT_TRUE(showTrouble({silent}, ""));
  EXPECT_FALSE(showTrouble({silent}, "A"));
  EXPECT_FALSE(showTrouble({Answer()}, ""));
}

}  // namespace
}  // namespace zerva
