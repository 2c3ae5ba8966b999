#include "tests/conformance/DirectiveFileTest.h"

#include <filesystem>
#include <stdexcept>

namespace zerva::conformance {
namespace {

class ADirectiveFile : public DirectiveFileTest {};

const char* const kOpenFailure = "ServiceConfigurator::processDirectives failed to open %s\n";

TEST_F(ADirectiveFile, ThatIsMissing_IsReportedToSystemLogAndLog) {
  const std::string missing = directory.file("missing").string();
  sut->processDirectives(missing);
  expectTrace({"syslog(0, " + fakes::inQuotes(kOpenFailure) + ", " + fakes::inQuotes(missing) + ")",
               error(kOpenFailure, missing)});
}

TEST_F(ADirectiveFile, ThatIsMissing_IsReportedWhateverTheLevel) {
  logLevel(0);
  const std::string missing = directory.file("missing").string();
  sut->processDirectives(missing);
  expectTrace({"syslog(0, " + fakes::inQuotes(kOpenFailure) + ", " + fakes::inQuotes(missing) + ")",
               error(kOpenFailure, missing)});
}

TEST_F(ADirectiveFile, OfAnEmptyName_IsReported) {
  sut->processDirectives("");
  expectTrace({"syslog(0, " + fakes::inQuotes(kOpenFailure) + ", \"\")", error(kOpenFailure, "")});
}

TEST_F(ADirectiveFile, ThatIsEmpty_DoesNothing) {
  process("");
  expectTrace({});
}

TEST_F(ADirectiveFile, OfLineFeedsAndBlanksOnly_DoesNothing) {
  process("\n\n   \n\t\t\n \r\n");
  expectTrace({});
}

TEST_F(ADirectiveFile, WithoutAFinalLineFeed_ProcessesTheLastLine) {
  process("bad: 1\nbad: 2");
  expectTrace({invalid("bad: 1"), invalid("bad: 2")});
}

TEST_F(ADirectiveFile, WithAFinalLineFeed_ProcessesTheLastLineOnce) {
  process("bad: 1\n");
  expectTrace({invalid("bad: 1")});
}

TEST_F(ADirectiveFile, WithCarriageReturns_IsReadAsWithout) {
  process("service_instance:libfoo.so createFoo fooChannel FooIfc\r\nbad: 1\r\n");
  expectTrace({creating("libfoo.so", "createFoo", "fooChannel", "FooIfc"),
               createdExecutor("Dll#1", "libfoo.so"), invalid("bad: 1")});
}

TEST_F(ADirectiveFile, WithACarriageReturnInALine_DropsTheRestOfTheLine) {
  process("bad: 1\rrest of it\nworse: 2\r\r\n");
  expectTrace({invalid("bad: 1"), invalid("worse: 2")});
}

TEST_F(ADirectiveFile, ProcessedTwice_IsReadFromItsBeginning) {
  process("bad: 1\n");
  forget();
  sut->processDirectives(directory.file("directives").string());
  expectTrace({invalid("bad: 1")});
}

TEST_F(ADirectiveFile, WithComments_PassesThemOver) {
  process(
      "# services of the media process\n"
      "   # indented: x\n"
      "\t#tab\n"
      "comment: MT\n"
      "comment:anything at all\n"
      "comment:MT too few\n");
  expectTrace({});
}

TEST_F(ADirectiveFile, WithALineWithoutAColon_PassesItOver) {
  process("service_instance libfoo.so createFoo fooChannel FooIfc\nwords # hash\n");
  expectTrace({});
}

TEST_F(ADirectiveFile, WithAnUnknownKeyword_ReportsTheLineAndGoesOn) {
  process("servce_instance:libfoo.so a b c\nbad: 2\n");
  expectTrace({invalid("servce_instance:libfoo.so a b c"), invalid("bad: 2")});
}

TEST_F(ADirectiveFile, WithAnUnknownKeyword_ReportsItWhateverTheLevel) {
  logLevel(0);
  process("bad:\n");
  expectTrace({invalid("bad:")});
}

TEST_F(ADirectiveFile, WithAnUnknownKeyword_QuotesTheLineAsWritten) {
  process("  Service_Instance :\tlib   a  \r\n");
  expectTrace({invalid("  Service_Instance :\tlib   a  ")});
}

TEST_F(ADirectiveFile, WithAnUnknownKeywordAndAHash_ReportsIt) {
  process("bad: # not a comment\n");
  expectTrace({invalid("bad: # not a comment")});
}

TEST_F(ADirectiveFile, WithABlankBeforeTheColon_DoesNotKnowTheKeyword) {
  process("service_instance : libfoo.so createFoo fooChannel FooIfc\n");
  expectTrace({invalid("service_instance : libfoo.so createFoo fooChannel FooIfc")});
}

TEST_F(ADirectiveFile, WithAKeywordInOtherCase_DoesNotKnowIt) {
  process("Comment:x\n");
  expectTrace({invalid("Comment:x")});
}

TEST_F(ADirectiveFile, WithoutAKeyword_ReportsTheLine) {
  process(": a b\n");
  expectTrace({invalid(": a b")});
}

TEST_F(ADirectiveFile, WithAPercentSign_QuotesItAsWritten) {
  process("bad: %s %n %d\n");
  expectTrace({invalid("bad: %s %n %d")});
}

TEST_F(ADirectiveFile, WithALineOf511Characters_ProcessesIt) {
  const std::string line = "bad:" + std::string(507, 'x');
  process(line + "\nbad: 2\n");
  expectTrace({invalid(line), invalid("bad: 2")});
}

TEST_F(ADirectiveFile, WithALineOf510CharactersAndACarriageReturn_ProcessesIt) {
  const std::string line = "bad:" + std::string(506, 'x');
  process(line + "\r\nbad: 2\n");
  expectTrace({invalid(line), invalid("bad: 2")});
}

TEST_F(ADirectiveFile, WithALastLineOf511CharactersWithoutLineFeed_ProcessesIt) {
  const std::string line = "bad:" + std::string(507, 'x');
  process(line);
  expectTrace({invalid(line)});
}

TEST_F(ADirectiveFile, WithAZeroByte_EndsTheLineThere) {
  process(std::string("bad: 1\0rest\nbad: 2\n", 19));
  expectTrace({invalid("bad: 1"), invalid("bad: 2")});
}

TEST_F(ADirectiveFile, WhoseDirectiveThrows_IsNotProcessedFurther) {
  Platform::once("CommsChannel#1 = ", [] { throw std::runtime_error("no channel"); });
  EXPECT_THROW(process("service_info:a.so b c D\nbad: 1\n"), std::runtime_error);
  const Lines lines = Trace::lines();
  EXPECT_EQ(lines.back(), "CommsChannel#1 = CommsChannel(\"c\", interceptors)");
}

/** All characters that can be seen. */
std::string visible() {
  std::string characters;
  for (char character = '!'; character <= '~'; ++character) characters += character;
  return characters;
}

TEST_F(ADirectiveFile, WithAnyCharacterInALine_QuotesItAsWritten) {
  const std::string line = "bad:" + visible();
  process(line + "\n");
  expectTrace({invalid(line)});
}

TEST_F(ADirectiveFile, WithAnyCharacterInAField_KeepsTheFieldWhole) {
  const std::string field = visible();
  process("service_info:" + field + " create c FooIfc\n");
  EXPECT_THAT(Trace::lines(), testing::Contains(testing::HasSubstr(
                                  "ServiceExecutor(" + fakes::inQuotes(field) + ", \"create\"")));
}

/** How many files this process has open. */
std::ptrdiff_t openFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return std::distance(begin(files), end(files));
}

TEST_F(ADirectiveFile, ThatIsRead_IsClosed) {
  const std::ptrdiff_t before = openFiles();
  process("bad: 1\n");
  EXPECT_EQ(openFiles(), before);
}

TEST_F(ADirectiveFile, WhoseDirectiveThrows_IsClosed) {
  const std::ptrdiff_t before = openFiles();
  EXPECT_THROW(process("service_info:MT a.so b c\n"), std::out_of_range);
  EXPECT_EQ(openFiles(), before);
}

TEST_F(ADirectiveFile, WithTheRegistrysOwnRecords_SendsThemAsText) {
  process(
      "invoker_info:libA.so createA ServiceRegistryIfc tcp\n"
      "proxy_info:libA.so createB ServiceRegistryIfc tcp\n");
  const std::string beginning = "host.sendTo(\"/zerva/serviceregistry\", \"reg_";
  const Lines lines = Trace::lines();
  EXPECT_THAT(lines,
              testing::Contains(beginning + "invoker:libA.so,createA,ServiceRegistryIfc,tcp\")"));
  EXPECT_THAT(lines,
              testing::Contains(beginning + "proxy:libA.so,createB,ServiceRegistryIfc,tcp\")"));
}

/** The keywords, of which each takes a mode field. */
class TheModeField : public DirectiveFileTest, public testing::WithParamInterface<const char*> {};

TEST_P(TheModeField, WithTooFewFields_ThrowsOutOfRangeAndEndsTheProcessing) {
  const std::string keyword = GetParam();
  EXPECT_THROW(process(keyword + ":MT libfoo.so createFoo fooChannel\nbad: 1\n"),
               std::out_of_range);
  EXPECT_THROW(process(keyword + ":ST libfoo.so\nbad: 1\n"), std::out_of_range);
  EXPECT_THROW(process(keyword + ": MT\nbad: 1\n"), std::out_of_range);
  expectTrace({});
}

TEST_P(TheModeField, WithTooFewFields_IsReadAtTheFirstPlaceThatIsNotThere) {
  const std::string keyword = GetParam();
  EXPECT_EQ(messageOf<std::out_of_range>([&] { process(keyword + ":MT a b c\n"); }),
            outOfRange(5, 5));
  EXPECT_EQ(messageOf<std::out_of_range>([&] { process(keyword + ":ST\n"); }), outOfRange(5, 5));
}

INSTANTIATE_TEST_SUITE_P(OfEachKeyword, TheModeField,
                         testing::Values("service_instance", "service_info", "service_legacy",
                                         "invoker_info", "proxy_info", "start_process", "unknown"));

/** At level 5 the progress is seen, at 4 it is not. */
class ADirective : public DirectiveFileTest, public testing::WithParamInterface<int> {
 protected:
  ADirective() { logLevel(GetParam()); }
};

TEST_P(ADirective, ServiceInstance_CreatesAServiceNow) {
  process("service_instance:libbar.so createBar barChannel BarIfc\n");
  expectTrace({creating("libbar.so", "createBar", "barChannel", "BarIfc"),
               createdExecutor("Dll#1", "libbar.so")});
}

TEST_P(ADirective, ServiceInstanceWithSeveralInterfaces_JoinsThem) {
  process("service_instance: MT libfoo.so  createFoo fooChannel FooIfc \t FooAdminIfc Third\n");
  expectTrace({creating("libfoo.so", "createFoo", "fooChannel", "FooIfc FooAdminIfc Third"),
               createdExecutor("Dll#1", "libfoo.so")});
}

TEST_P(ADirective, ServiceInstanceWithoutAnInterface_CreatesAServiceWithAnEmptyList) {
  process("service_instance:libfoo.so createFoo fooChannel\n");
  expectTrace({creating("libfoo.so", "createFoo", "fooChannel", ""),
               createdExecutor("Dll#1", "libfoo.so")});
}

TEST_P(ADirective, ServiceInstanceWithAnUnknownMode_TakesItForTheLibrary) {
  process("service_instance:XT libfoo.so createFoo fooChannel FooIfc\n");
  expectTrace({creating("XT", "libfoo.so", "createFoo", "fooChannel FooIfc"),
               createdExecutor("Dll#1", "XT")});
}

TEST_P(ADirective, ServiceInstanceWithAModeInSmallLetters_TakesItForTheLibrary) {
  process("service_instance:mt a b c\n");
  expectTrace({creating("mt", "a", "b", "c"), createdExecutor("Dll#1", "mt")});
}

TEST_P(ADirective, ServiceInstanceWithoutAChannel_SaysSoAndCreatesNothing) {
  process("service_instance:libfoo.so createFoo\n");
  expectTrace(
      {progress("Creating Service Instance. Error in parameters. Lib: '%s' Creator: '%s' "
                "Chan: '%s' Ifc: '%s'",
                "libfoo.so", "createFoo", "", "")});
}

TEST_P(ADirective, ServiceInstanceWithoutAnything_SaysSoAndCreatesNothing) {
  process("service_instance:\n");
  expectTrace(
      {progress("Creating Service Instance. Error in parameters. Lib: '%s' Creator: '%s' "
                "Chan: '%s' Ifc: '%s'",
                "", "", "", "")});
}

TEST_P(ADirective, ServiceInfo_DeclaresAServiceLazily) {
  process("service_info: ST libfoo.so createFoo fooChannel ServiceRegistryIfc\n");
  expectTraceButEndOfThreader(
      {progress("Creating Service Info. Lib: '%s' Creator: '%s' Chan: '%s' Ifc: '%s'", "libfoo.so",
                "createFoo", "fooChannel", "ServiceRegistryIfc"),
       progress("Service Configurator: Creating CommsChannel - '%s'", "fooChannel"),
       "CommsChannel#1 = CommsChannel(\"fooChannel\", interceptors)",
       progress("Service Configurator: Creating Service Executor with lazy initialisation"),
       "ServiceExecutor#1 = ServiceExecutor(\"libfoo.so\", \"createFoo\", "
       "\"ServiceRegistryIfc\", CommsChannel#1, FrameworkContext, pool, invokeInterceptors, false)",
       progress("Service Configurator: Service Executor created successfully"),
       progress("Service Configurator: Starting Service Executor"), "Threader#1 = Threader()",
       "ServiceExecutor#1.startThread(Threader#1)",
       progress("Service Configurator: Service Executor Running")});
}

TEST_P(ADirective, ServiceInfoWithoutAChannel_SaysSoAndCreatesNothing) {
  process("service_info:libfoo.so createFoo\nservice_info:libfoo.so\nservice_info:\n");
  const std::string text =
      "Creating Service Info. Error in parameters. Lib: '%s' Creator: '%s' Chan: '%s' Ifc: '%s'";
  expectTrace({progress(text, "libfoo.so", "createFoo", "", ""),
               progress(text, "libfoo.so", "", "", ""), progress(text, "", "", "", "")});
}

TEST_P(ADirective, ServiceLegacy_CreatesALegacyService) {
  process("service_legacy:libold.so createOld OldIfc OlderIfc\n");
  expectTrace({progress("%s",
                        "Creating Legacy Service. Lib: libold.so Creator: createOld Chan: <NONE!> "
                        "Ifc: OldIfc OlderIfc"),
               createdLegacy("Dll#1", "libold.so")});
}

TEST_P(ADirective, ServiceLegacyOfOneInterface_KeepsTheBlankOfTheFilledFields) {
  process("service_legacy:libold.so createOld OldIfc\n");
  expectTrace({progress("%s",
                        "Creating Legacy Service. Lib: libold.so Creator: createOld Chan: <NONE!> "
                        "Ifc: OldIfc "),
               createdLegacy("Dll#1", "libold.so")});
}

TEST_P(ADirective, ServiceLegacyWithoutAnInterface_JoinsTheFilledFields) {
  process("service_legacy:libold.so createOld\n");
  expectTrace({progress("%s",
                        "Creating Legacy Service. Lib: libold.so Creator: createOld Chan: <NONE!> "
                        "Ifc:  "),
               createdLegacy("Dll#1", "libold.so")});
}

TEST_P(ADirective, ServiceLegacyWithAMode_TakesTheCreatorForTheFirstInterface) {
  process("service_legacy:ST libold.so createOld OldIfc OlderIfc\n");
  expectTrace({progress("%s",
                        "Creating Legacy Service. Lib: libold.so Creator: createOld Chan: <NONE!> "
                        "Ifc: createOld OldIfc OlderIfc"),
               createdLegacy("Dll#1", "libold.so")});
}

TEST_P(ADirective, ServiceLegacyWithoutACreator_SaysSoWithTheGeneralList) {
  process("service_legacy:libold.so\n");
  expectTrace({progress("%s",
                        "Creating Legacy Service. Error in parameters. Lib: libold.so Creator:  "
                        "Chan:  Ifc: ")});
}

TEST_P(ADirective, ServiceLegacyWithoutAnything_SaysSo) {
  process("service_legacy:\n");
  expectTrace({progress("%s",
                        "Creating Legacy Service. Error in parameters. Lib:  Creator:  Chan:  "
                        "Ifc: ")});
}

TEST_P(ADirective, InvokerInfo_TellsTheRegistry) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  process("invoker_info:libinv.so createInv FooIfc tcp\n");
  expectTrace(
      {progress("%s", "Reg Invoker. Lib: libinv.so Creator: createInv Ifc: FooIfcProt: tcp"),
       "configurator.findService(\"ServiceRegistryIfc\")",
       "RegistryProxy#1.registerInvoker(\"libinv.so\", \"createInv\", \"FooIfc\", \"tcp\")"});
}

TEST_P(ADirective, InvokerInfoWithAModeAndMoreWords_IgnoresThem) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  process("invoker_info:ST libinv.so createInv FooIfc tcp more words\n");
  expectTrace(
      {progress("%s", "Reg Invoker. Lib: libinv.so Creator: createInv Ifc: FooIfcProt: tcp"),
       "configurator.findService(\"ServiceRegistryIfc\")",
       "RegistryProxy#1.registerInvoker(\"libinv.so\", \"createInv\", \"FooIfc\", \"tcp\")"});
}

TEST_P(ADirective, InvokerInfoWithoutAnything_TellsTheRegistryEmptyTexts) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  process("invoker_info:\n");
  expectTrace({progress("%s", "Reg Invoker. Lib:  Creator:  Ifc: Prot: "),
               "configurator.findService(\"ServiceRegistryIfc\")",
               "RegistryProxy#1.registerInvoker(\"\", \"\", \"\", \"\")"});
}

TEST_P(ADirective, ProxyInfo_TellsTheRegistry) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  process("proxy_info:MT libprx.so createPrx FooIfc tcp more\n");
  expectTrace({progress("%s", "Reg Proxy. Lib: libprx.so Creator: createPrx Ifc: FooIfcProt: tcp"),
               "configurator.findService(\"ServiceRegistryIfc\")",
               "RegistryProxy#1.registerProxy(\"libprx.so\", \"createPrx\", \"FooIfc\", \"tcp\")"});
}

INSTANTIATE_TEST_SUITE_P(AtLevel, ADirective, testing::Values(4, 5));

/** A directive whose library is there, so that the service is made. */
class ADirectiveThatWorks : public DirectiveFileTest {
 protected:
  ADirectiveThatWorks() { offerService("libfoo.so", "createFoo"); }
};

TEST_F(ADirectiveThatWorks, OfAServiceInstance_MakesItWithItsChannelAndInterfaces) {
  process("service_instance:ST libfoo.so createFoo fooChannel FooIfc BarIfc\n");
  const Lines lines = Trace::lines();
  EXPECT_THAT(lines,
              testing::Contains("CommsChannel#1 = CommsChannel(\"fooChannel\", interceptors)"));
  EXPECT_THAT(lines, testing::Contains("repository.addService(Service#1, ServiceExecutor#1, "
                                       "CommsChannel#1, Dll#1, \"FooIfc BarIfc\")"));
}

TEST_F(ADirectiveThatWorks, OfALegacyService_MakesItWithItsCreatorAndInterfaces) {
  process("service_legacy:libfoo.so createFoo FooIfc BarIfc\n");
  EXPECT_THAT(Trace::lines(), testing::Contains("repository.addService(Service#1, Dll#1, "
                                                "\"FooIfc BarIfc\")"));
}

/** The two directives that hand the mode on, with what the executor gets. */
class TheMode : public DirectiveFileTest {
 protected:
  /** The last argument of the executor that a line makes. */
  std::string flagOf(const std::string& line) {
    process(line);
    std::string flag = "no executor";
    for (const std::string& text : Trace::lines()) {
      if (text.find(" = ServiceExecutor(") != std::string::npos) {
        flag = text.substr(text.rfind(", ") + 2);
      }
    }
    forget();
    return flag;
  }
};

TEST_F(TheMode, OfAServiceInstance_IsTrueUnlessItIsSingleThreaded) {
  offerService("libfoo.so", "create");
  EXPECT_EQ(flagOf("service_instance:MT libfoo.so create c FooIfc\n"), "true)");
  EXPECT_EQ(flagOf("service_instance:ST libfoo.so create c FooIfc\n"), "false)");
  EXPECT_EQ(flagOf("service_instance:libfoo.so create c FooIfc\n"), "true)");
}

TEST_F(TheMode, OfAServiceInfo_IsTrueUnlessItIsSingleThreaded) {
  EXPECT_EQ(flagOf("service_info:MT libfoo.so create c FooIfc\n"), "true)");
  EXPECT_EQ(flagOf("service_info:ST libfoo.so create c FooIfc\n"), "false)");
  EXPECT_EQ(flagOf("service_info:libfoo.so create c FooIfc\n"), "true)");
}

TEST_F(TheMode, OfALineBefore_DoesNotLastForTheNext) {
  EXPECT_EQ(flagOf("service_info:ST libfoo.so create c FooIfc\n"
                   "service_info:libfoo.so create d FooIfc\n"),
            "true)");
}

TEST_F(TheMode, OfALineBefore_LeavesNoInterfacesForTheNext) {
  process("service_info:a.so create c A B C\nservice_info:a.so create d D\n");
  const Lines lines = Trace::lines();
  EXPECT_THAT(lines, testing::Contains(testing::HasSubstr("ServiceExecutor(\"a.so\", \"create\", "
                                                          "\"D\", CommsChannel#2")));
}

}  // namespace
}  // namespace zerva::conformance
