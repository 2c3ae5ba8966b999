#include <gtest/gtest.h>

#include "host/explain/Outlook.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

using Where = RegistryAhead::Where;

const std::string registry =
    "service_info: libR.so createR /zerva/serviceregistry ServiceRegistryIfc\n";
const std::string service = "service_info: libA.so createA /a AIfc\n";

Where whereFrom(const ExplainedFile& file, std::size_t line) {
  return file.outlook().registryFor(file.line(line)).where;
}

TEST(AnOutlook, HasTheRegistryOfALineBefore) {
  const ExplainedFile file(registry + service);
  const RegistryAhead sut = file.outlook().registryFor(file.line(2));
  EXPECT_EQ(sut.where, Where::Here);
  EXPECT_EQ(sut.line, &file.line(1));
  EXPECT_TRUE(sut.isReached());
}

TEST(AnOutlook, HasTheRegistryOfALineBehindTooLate) {
  const ExplainedFile file(service + registry);
  EXPECT_EQ(whereFrom(file, 1), Where::Later);
  EXPECT_FALSE(file.outlook().registryFor(file.line(1)).isReached());
}

TEST(AnOutlook, HasNoRegistryInALineThatHasIt) {
  const ExplainedFile file(registry);
  EXPECT_EQ(whereFrom(file, 1), Where::Later);
}

TEST(AnOutlook, LeavesTheRegistryToAnotherProcessWhenNoLineHasIt) {
  const ExplainedFile file(service);
  EXPECT_EQ(whereFrom(file, 1), Where::Elsewhere);
  EXPECT_TRUE(file.outlook().registryFor(file.line(1)).isReached());
}

TEST(AnOutlook, LooksForTheRegistryOnItsOwnChannelOnly) {
  const ExplainedFile file("service_info: libR.so createR /r ServiceRegistryIfc\n" + service);
  EXPECT_EQ(whereFrom(file, 2), Where::Elsewhere);
}

TEST(AnOutlook, TakesARegistryWithAnotherInterfaceForOne) {
  const ExplainedFile file(
      std::string(
          "service_info: libR.so createR /zerva/serviceregistry RIfc ServiceRegistryIfc\n") +
      service);
  EXPECT_EQ(whereFrom(file, 2), Where::Here);
}

TEST(AnOutlook, KnowsOfARegistryWhoseLibraryCannotBeOpened) {
  ExplainedFile file(registry + service);
  file.library(1, LibraryFault::NotFound);
  EXPECT_EQ(whereFrom(file, 2), Where::Failed);
}

TEST(AnOutlook, KnowsOfARegistryWithoutACreator) {
  // Without a mode nothing keeps fields from being empty, but the channel then is something else.
  const ExplainedFile file("service_info: libR.so\n" + service);
  EXPECT_EQ(whereFrom(file, 2), Where::Elsewhere);
}

TEST(AnOutlook, EndsWithTheLineThatIsTooLong) {
  const ExplainedFile file("# a\n#" + std::string(511, 'x') + "\n" + service);
  EXPECT_EQ(file.outlook().end(), &file.line(2));
  EXPECT_TRUE(file.outlook().isRead(file.line(2)));
  EXPECT_FALSE(file.outlook().isRead(file.line(3)));
}

TEST(AnOutlook, DoesNotEndWithALineThatJustFits) {
  const ExplainedFile file("#" + std::string(510, 'x') + "\n" + service);
  EXPECT_EQ(file.outlook().end(), nullptr);
  EXPECT_TRUE(file.outlook().isRead(file.line(2)));
}

TEST(AnOutlook, EndsWithTheFirstLineThatHasTooFewFields) {
  const ExplainedFile file("start_process: MT a\nstart_process: ST b\n");
  EXPECT_EQ(file.outlook().end(), &file.line(1));
}

TEST(AnOutlook, HasNoRegistryBehindItsEnd) {
  const ExplainedFile file(service + "start_process: MT a\n" + registry);
  EXPECT_EQ(whereFrom(file, 1), Where::Elsewhere);
}

TEST(AnOutlook, KnowsTheLibraryOfALine) {
  ExplainedFile file(service + service);
  file.library(2);
  EXPECT_EQ(file.outlook().libraryOf(file.line(1)), nullptr);
  EXPECT_EQ(file.outlook().libraryOf(file.line(2)), &file.subject.libraries.front());
}

TEST(AnOutlook, TakesTheLatestRecordForAnInterface) {
  const ExplainedFile file(
      "proxy_info: libA.so createA AIfc zerva_simple_rmi\n"
      "proxy_info: libB.so createB AIfc zerva_simple_rmi\n"
      "proxy_info: libC.so createC BIfc zerva_simple_rmi\n");
  EXPECT_EQ(file.outlook().proxyOf("AIfc"), &file.line(2));
  EXPECT_EQ(file.outlook().proxyOf("CIfc"), nullptr);
}

TEST(AnOutlook, TakesTheInvokerThatProxiesSpeakTo) {
  const ExplainedFile file(
      "invoker_info: libA.so createA AIfc zerva_simple_rmi\n"
      "invoker_info: libB.so createB AIfc zerva_svc_xml\n"
      "proxy_info: libC.so createC AIfc zerva_svc_xml\n");
  EXPECT_EQ(file.outlook().invokerOf("AIfc"), &file.line(1));
  // The protocol of a proxy is not read.
  EXPECT_EQ(file.outlook().proxyOf("AIfc"), &file.line(3));
}

TEST(AnOutlook, TakesNoRecordThatTheRegistryDoesNotGet) {
  const ExplainedFile file("proxy_info: libA.so createA AIfc zerva_simple_rmi\n" + registry +
                           "proxy_info: lib,A.so createA BIfc zerva_simple_rmi\n" +
                           "start_process: MT a\n" +
                           "proxy_info: libA.so createA CIfc zerva_simple_rmi\n");
  EXPECT_EQ(file.outlook().proxyOf("AIfc"), nullptr);
  EXPECT_EQ(file.outlook().proxyOf("BIfc"), nullptr);
  EXPECT_EQ(file.outlook().proxyOf("CIfc"), nullptr);
}

bool isRefusedLine(const std::string& text) { return isRefused(ExplainedFile(text).line(1)); }

TEST(TheRegistry, RefusesNamesWithACommaInThem) {
  EXPECT_FALSE(isRefusedLine("service_info: lib,A.so create,A /a AIfc\n"));
  EXPECT_TRUE(isRefusedLine("service_info: libA.so createA /a,b AIfc\n"));
  EXPECT_TRUE(isRefusedLine("service_info: ST libA.so createA /a AIfc BIfc,CIfc\n"));
  EXPECT_TRUE(isRefusedLine("proxy_info: lib,A.so createA AIfc zerva_simple_rmi\n"));
  EXPECT_TRUE(isRefusedLine("proxy_info: libA.so createA AIfc zerva,simple\n"));
  EXPECT_FALSE(isRefusedLine("proxy_info: libA.so createA AIfc zerva_simple_rmi a,b\n"));
}

}  // namespace
}  // namespace zerva
