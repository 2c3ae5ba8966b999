#include <gtest/gtest.h>

#include <chrono>

#include "host/ConfiguratorEvent.h"

namespace zerva {
namespace {

using Kind = ConfiguratorEvent::Kind;
using std::chrono::milliseconds;

TEST(AConfiguratorLine, ThatCreatesAService_GivesItsFields) {
  const auto sut = readConfiguratorLine(
      5, "Creating Service. Lib: 'liba.so' Creator: 'createA' Chan: '/a' Ifc: 'A B'");
  EXPECT_EQ(sut.kind, Kind::ServiceLine);
  EXPECT_EQ(sut.library, "liba.so");
  EXPECT_EQ(sut.creator, "createA");
  EXPECT_EQ(sut.channel, "/a");
  EXPECT_EQ(sut.interfaces, "A B");
}

TEST(AConfiguratorLine, ThatAnnouncesALazyService_GivesItsFields) {
  const auto sut =
      readConfiguratorLine(5, "Creating Service Info. Lib: 'l' Creator: 'c' Chan: 'h' Ifc: ''");
  EXPECT_EQ(sut.kind, Kind::LazyLine);
  EXPECT_EQ(sut.channel, "h");
  EXPECT_EQ(sut.interfaces, "");
}

TEST(AConfiguratorLine, ThatCreatesALegacyService_GivesItsFields) {
  const auto sut =
      readConfiguratorLine(5, "Creating Legacy Service. Lib: l Creator: c Chan: <NONE!> Ifc: A ");
  EXPECT_EQ(sut.kind, Kind::LegacyLine);
  EXPECT_EQ(sut.library, "l");
  EXPECT_EQ(sut.creator, "c");
  EXPECT_EQ(sut.interfaces, "A ");
}

TEST(AConfiguratorLine, WithQuotesInItsFields_IsReadAllTheSame) {
  const auto sut = readConfiguratorLine(
      5, "Creating Service. Lib: 'it's' Creator: 'c' Chan: 'h' Ifc: ''quoted''");
  EXPECT_EQ(sut.library, "it's");
  EXPECT_EQ(sut.interfaces, "'quoted'");
}

TEST(AConfiguratorLine, ThatTellsTheTimeOfAnInit_HasMillisecondsWithoutLeadingZeros) {
  const auto sut = readConfiguratorLine(
      5, "Service Configurator: For ifc = 'A' init() took 2.45s using CLOCK_MONOTONIC");
  EXPECT_EQ(sut.kind, Kind::InitTook);
  EXPECT_EQ(sut.interfaces, "A");
  EXPECT_EQ(sut.duration, milliseconds(2045));
}

TEST(AConfiguratorLine, ThatTellsTheTimeOfAnInit_HasUpTo999Milliseconds) {
  const auto sut = readConfiguratorLine(
      5, "Service Configurator: For ifc = '' init() took 0.999s using CLOCK_MONOTONIC");
  EXPECT_EQ(sut.duration, milliseconds(999));
}

TEST(AConfiguratorLine, ThatOpensALibrary_NamesIt) {
  EXPECT_EQ(readConfiguratorLine(5, "Opening Lib: 'liba.so'").library, "liba.so");
  EXPECT_EQ(readConfiguratorLine(5, "Opening Lib: liba.so").library, "liba.so");
  EXPECT_EQ(readConfiguratorLine(5, "Opening library - liba.so").library, "liba.so");
  EXPECT_EQ(readConfiguratorLine(5, "Opening library - liba.so").kind, Kind::Opening);
}

TEST(AConfiguratorLine, ThatStartsAProcess_NamesIt) {
  const auto sut = readConfiguratorLine(5, "start_process successfully started: '/bin/a'");
  EXPECT_EQ(sut.kind, Kind::ProcessStarted);
  EXPECT_EQ(sut.program, "/bin/a");
}

TEST(AConfiguratorLine, ThatCannotStartAProcess_NamesIt) {
  const auto sut = readConfiguratorLine(2, "start_process failed to start process: 'a'");
  EXPECT_EQ(sut.kind, Kind::ProcessFailed);
  EXPECT_EQ(sut.program, "a");
}

TEST(AConfiguratorLine, ThatIsAnError_IsToldApart) {
  const auto kind = [](const char* text) { return readConfiguratorLine(2, text).kind; };
  EXPECT_EQ(kind("Error opening library 'a' - 'b'"), Kind::CreationFailed);
  EXPECT_EQ(kind("Error resolving symbol - 'b'"), Kind::CreationFailed);
  EXPECT_EQ(kind("ServiceConfigurator::createService() : Error while initializing service (NULL "
                 "pointer returned)."),
            Kind::CreationFailed);
  EXPECT_EQ(kind("ServiceConfigurator::createServiceExecutor() cannot get svcRegistry interface!"),
            Kind::Other);
  EXPECT_EQ(kind("ServiceConfigurator::processDirectives - invalid directive received: 'a: b'"),
            Kind::InvalidLine);
  EXPECT_EQ(kind("ServiceConfigurator::processDirectives failed to open x"), Kind::FileNotOpened);
  EXPECT_EQ(kind("ServiceConfiguratr::Empty 'start_process' directive was received"),
            Kind::IncompleteLine);
}

TEST(AConfiguratorLine, ThatLacksFields_IsToldApart) {
  const auto kind = [](const char* text) { return readConfiguratorLine(5, text).kind; };
  EXPECT_EQ(kind("Creating Service Instance. Error in parameters. Lib: 'a' Creator: '' Chan: '' "
                 "Ifc: ''"),
            Kind::IncompleteLine);
  EXPECT_EQ(kind("Creating Service Info. Error in parameters. Lib: 'a' Creator: '' Chan: '' Ifc: "
                 "''"),
            Kind::IncompleteLine);
  EXPECT_EQ(kind("Creating Legacy Service. Error in parameters. Lib: a Creator:  Chan:  Ifc: "),
            Kind::IncompleteLine);
}

TEST(AConfiguratorLine, ThatRecordsWhereAProxyIs_GivesItsFields) {
  const auto sut = readConfiguratorLine(5, "Reg Proxy. Lib: l.so Creator: c Ifc: AProt: p");
  EXPECT_EQ(sut.kind, Kind::Record);
  EXPECT_EQ(sut.role, "proxy");
  EXPECT_EQ(sut.library, "l.so");
  EXPECT_EQ(sut.creator, "c");
  EXPECT_EQ(sut.interfaces, "A");
  EXPECT_EQ(sut.protocol, "p");
}

TEST(AConfiguratorLine, ThatRecordsWhereAnInvokerIs_SaysSo) {
  const auto sut = readConfiguratorLine(5, "Reg Invoker. Lib: l.so Creator: c Ifc: AProt: p");
  EXPECT_EQ(sut.kind, Kind::Record);
  EXPECT_EQ(sut.role, "invoker");
}

TEST(AConfiguratorLine, OfALookup_SaysWhatIsLookedFor) {
  const auto service = readConfiguratorLine(5, "findService called for interface: A");
  EXPECT_EQ(service.kind, Kind::Lookup);
  EXPECT_EQ(service.role, "service");
  EXPECT_EQ(service.interfaces, "A");
  const auto proxy =
      readConfiguratorLine(5, "ServiceConfigurator::findProxy( interface='A' svcChannel='/a'");
  EXPECT_EQ(proxy.kind, Kind::Lookup);
  EXPECT_EQ(proxy.role, "proxy");
  EXPECT_EQ(proxy.interfaces, "A");
  EXPECT_EQ(proxy.channel, "/a");
  const auto invoker =
      readConfiguratorLine(5, "findInvoker called for interface & protocol: A,p sem=0x1");
  EXPECT_EQ(invoker.kind, Kind::Lookup);
  EXPECT_EQ(invoker.role, "invoker");
  EXPECT_EQ(invoker.interfaces, "A");
  EXPECT_EQ(invoker.protocol, "p");
}

TEST(AConfiguratorLine, OfAnotherKind_IsOther) {
  EXPECT_EQ(readConfiguratorLine(5, "anything").kind, Kind::Other);
  EXPECT_EQ(readConfiguratorLine(2, "").kind, Kind::Other);
}

}  // namespace
}  // namespace zerva
