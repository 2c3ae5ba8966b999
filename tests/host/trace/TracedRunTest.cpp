// A whole run, from its trace to what is read out of it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <nlohmann/json.hpp>
#include <set>

#include "host/trace/RunModelBuilder.h"
#include "host/trace/TraceReader.h"
#include "tests/host/trace/SvgPicture.h"
#include "tests/host/trace/TraceText.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;

const std::string kBin = ZERVA_BUILD_DIRECTORY "/bin";

class ATracedRun : public testing::Test {
 protected:
  /** Runs the command line. @returns its exit code; its output is in `output` and `errors`. */
  int zerva(const std::vector<std::string>& words) {
    ChildProcess child(kBin + "/zerva", words, environment(), ZERVA_SOURCE_DIRECTORY);
    const int code = child.wait().value_or(-1);
    output = child.output();
    errors = child.errors();
    return code;
  }

  static std::map<std::string, std::string> environment() {
    return {{"PATH", kBin + ":/usr/bin:/bin"}, {"ZERVA_BUS", ""}};
  }

  std::string file(const std::string& name) const { return directory.file(name).string(); }

  std::vector<std::string> traces() const {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
      if (entry.path().extension() == ".jsonl") paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
  }

  /** Runs the example, with both of its processes traced. @returns the first process's trace. */
  std::string demo() {
    EXPECT_EQ(
        zerva({"run", "--for", "2.5", "--trace", file("t-%p.jsonl"), "examples/demo.directives"}),
        0)
        << output << errors;
    for (const std::string& path : traces()) {
      if (readTraceFile(path).front().text("file") == "examples/demo.directives") return path;
    }
    ADD_FAILURE() << "there is no trace";
    return "";
  }

  const TempDirectory directory;
  std::string output;
  std::string errors;
};

TEST_F(ATracedRun, OfTheDemoTellsOfAllItsServices) {
  const RunModel run = readRun(demo());
  EXPECT_EQ(run.lost, 0);
  ASSERT_THAT(run.services, SizeIs(6));
  for (const ServiceRun& service : run.services) {
    EXPECT_TRUE(service.up) << service.name;
    EXPECT_GT(service.total(Stage::Library), 0) << service.name;
    EXPECT_GT(service.total(Stage::Init), 0) << service.name;
    EXPECT_GT(service.total(Stage::Deletion), 0) << service.name;
    EXPECT_EQ(service.error, "") << service.name;
    if (service.kind == "legacy") continue;
    EXPECT_GT(service.total(Stage::Stop), 0) << service.name;
    EXPECT_FALSE(service.mode.empty()) << service.name;
  }
  EXPECT_GT(run.find("/example/wind")->total(Stage::Announcement), 0);
  EXPECT_TRUE(run.find("/example/forecast")->isLazy());
  EXPECT_EQ(run.find("/example/forecast")->firstCaller, "/example/heartbeat");
  EXPECT_THAT(run.processes, SizeIs(2));
  ASSERT_TRUE(run.stop);
  EXPECT_GT(run.start.length(), 0);
}

TEST_F(ATracedRun, OfTheDemoHasEventsOfEveryKindThatItsServicesGiveRiseTo) {
  std::set<std::string> events;
  for (const TraceLine& line : readTraceFile(demo())) events.insert(line.event);
  EXPECT_THAT(events, IsSupersetOf({"trace",
                                    "phase",
                                    "process_started",
                                    "service_declared",
                                    "record_declared",
                                    "creation_begins",
                                    "library_opened",
                                    "symbol_resolved",
                                    "creator_called",
                                    "channel_opened",
                                    "executor_made",
                                    "service_recorded",
                                    "announcement",
                                    "init_begins",
                                    "init_ended",
                                    "executor_started",
                                    "thread_running",
                                    "first_request",
                                    "lookup",
                                    "question",
                                    "proxy_made",
                                    "invoker_made",
                                    "calls",
                                    "executor_stopped",
                                    "services_stopped",
                                    "executor_deleted",
                                    "channel_closed",
                                    "library_closed",
                                    "services_deleted",
                                    "proxies_deleted",
                                    "invokers_deleted"}));
}

TEST_F(ATracedRun, OfTheDemoIsDrawn) {
  const std::string trace = demo();
  EXPECT_EQ(zerva({"timeline", trace, "-o", file("startup.svg")}), 0) << errors;
  const SvgPicture timeline = SvgPicture::read(readFile(file("startup.svg")));
  EXPECT_THAT(timeline.textsOf("name"), Contains("/example/forecast"));
  EXPECT_THAT(timeline.misfits(), IsEmpty());
  std::vector<std::string> words{"graph", "-o", file("graph.svg")};
  for (const std::string& path : traces()) words.push_back(path);
  EXPECT_EQ(zerva(words), 0) << errors;
  const SvgPicture graph = SvgPicture::read(readFile(file("graph.svg")));
  EXPECT_THAT(graph.textsOf("head"), IsSupersetOf({"/example/station-log", "/example/water",
                                                   "/example/wind", "/example/harbour-display"}));
  // All processes that are called are in the traces.
  EXPECT_THAT(graph.textsOf("bad"), IsEmpty());
  EXPECT_THAT(graph.misfits(), IsEmpty());
}

TEST_F(ATracedRun, OfTheDemoIsTold) {
  const std::string trace = demo();
  EXPECT_EQ(zerva({"timeline", trace, "--json"}), 0) << errors;
  EXPECT_EQ(nlohmann::json::parse(output).at("services").size(), 6U);
  EXPECT_EQ(zerva({"timeline", trace, "--trace-events"}), 0) << errors;
  EXPECT_GT(nlohmann::json::parse(output).at("traceEvents").size(), 20U);
  EXPECT_EQ(zerva({"diff", trace, trace, "--max-regress", "10%"}), 0) << errors;
  EXPECT_THAT(output, HasSubstr("Nothing became slower"));
  EXPECT_EQ(zerva({"advise", trace}), 0) << errors;
  EXPECT_FALSE(output.empty());
}

// One thread brings up all of them, faster than anybody writes.
TEST_F(ATracedRun, OfAThousandServicesIsWhole) {
  constexpr std::size_t services = 1000;
  std::string lines =
      "service_instance: MT libServiceRegistry.so createServiceRegistry "
      "/zerva/serviceregistry ServiceRegistryIfc\n";
  for (std::size_t number = 1; number < services; ++number) {
    const std::string id = std::to_string(number);
    lines += "service_instance: MT libExampleWind.so createWindSensor /example/w" + id + " Ex" +
             id + "Ifc\n";
  }
  const std::string directives = directory.write("many.directives", lines).string();
  EXPECT_EQ(zerva({"run", "--for", "0.1", "--log", "1", "--no-check", "--trace", file("t.jsonl"),
                   directives}),
            0)
      << errors;
  const RunModel run = readRun(file("t.jsonl"));
  EXPECT_EQ(run.lost, 0);
  EXPECT_THAT(run.services, SizeIs(services));
}

TEST_F(ATracedRun, ThatIsKilledIsReadUpToThere) {
  const std::string directives =
      directory
          .write("a.directives",
                 "service_instance: MT libServiceRegistry.so createServiceRegistry "
                 "/zerva/serviceregistry ServiceRegistryIfc\n")
          .string();
  ChildProcess child(kBin + "/zerva", {"run", "--trace", file("t.jsonl"), directives},
                     environment());
  EXPECT_TRUE(waitUntil([&] {
    std::error_code error;
    return std::filesystem::exists(file("t.jsonl"), error) &&
           readFile(file("t.jsonl")).find("\"running\"") != std::string::npos;
  }));
  child.signal(SIGKILL);
  child.wait();
  const RunModel run = readRun(file("t.jsonl"));
  EXPECT_TRUE(run.services.at(0).up);
  EXPECT_FALSE(run.stop);
}

TEST_F(ATracedRun, ThatCannotBeTracedDoesNotStart) {
  EXPECT_EQ(zerva({"run", "--trace", file("none/t.jsonl"), "examples/demo.directives"}), 12);
  EXPECT_THAT(errors, AllOf(HasSubstr("cannot write the trace"), HasSubstr("No such file")));
  EXPECT_EQ(output, "");
}

TEST_F(ATracedRun, OnAFullDiskLosesTheTraceOnly) {
  EXPECT_EQ(zerva({"run", "--for", "1", "--trace", "/dev/full", "examples/buoy.directives"}), 0)
      << output;
  EXPECT_THAT(errors, HasSubstr("the trace '/dev/full' ends here: No space left on device"));
  EXPECT_THAT(output, HasSubstr("came up and went down"));
}

TEST_F(ATracedRun, BeyondALimitOnFilesLosesTheTraceOnly) {
  // 4 KiB: more than what the host says, which goes to files too, and less than the trace.
  ChildProcess child("/bin/sh",
                     {"-c", "ulimit -f 8; exec zerva run --for 0.5 --trace " + file("t.jsonl") +
                                " examples/buoy.directives"},
                     environment(), ZERVA_SOURCE_DIRECTORY);
  EXPECT_EQ(child.wait(), 0) << child.errors();
  EXPECT_THAT(child.errors(), HasSubstr("ends here: File too large"));
  EXPECT_THAT(child.output(), HasSubstr("came up and went down"));
}

TEST_F(ATracedRun, StartsItsProgramsForNobody) {
  const std::string directives =
      directory
          .write("a.directives",
                 "service_instance: MT libServiceRegistry.so createServiceRegistry "
                 "/zerva/serviceregistry ServiceRegistryIfc\n"
                 "start_process: /bin/true\n"
                 "service_info: ST libExampleForecast.so createForecast /example/forecast "
                 "ExampleForecastIfc\n"
                 "start_process: /bin/true\n"
                 "nonsense: a b c\n")
          .string();
  zerva({"run", "--for", "0.1", "--no-check", "--trace", file("t.jsonl"), directives});
  int programs = 0;
  for (const TraceLine& line : readTraceFile(file("t.jsonl"))) {
    if (line.event != "process_started" && line.event != "failed") continue;
    ++programs;
    EXPECT_EQ(line.service, "") << line.event;
  }
  EXPECT_GE(programs, 3) << errors;
}

TEST_F(ATracedRun, ThatBecameSlowerIsToldByTheExitCode) {
  const std::string files = ZERVA_SOURCE_DIRECTORY "/tests/host/trace/files/";
  EXPECT_EQ(zerva({"diff", files + "harbour.jsonl", files + "weather.jsonl"}), 1);
  EXPECT_THAT(output, HasSubstr("Something became slower"));
}

TEST_F(ATracedRun, MayBecomeAsMuchSlowerAsIsSaid) {
  const std::string before =
      directory.write("before.jsonl", TraceText().immediate(10, "/one", 20).running(100).text());
  const std::string after =
      directory.write("after.jsonl", TraceText().immediate(10, "/one", 30).running(100).text());
  // From 24 to 34 ms.
  EXPECT_EQ(zerva({"diff", before, after}), 1);
  EXPECT_EQ(zerva({"diff", before, after, "--max-regress", "50%"}), 0) << output;
  EXPECT_EQ(zerva({"diff", before, after, "--max-regress", "40%"}), 1) << output;
  EXPECT_EQ(zerva({"diff", before, after, "--max-regress", "50"}), 0) << output;
  EXPECT_EQ(zerva({"diff", before, after, "--noise", "10.5"}), 0) << output;
  EXPECT_EQ(zerva({"diff", before, after, "--noise", "9.5"}), 1) << output;
  EXPECT_EQ(zerva({"diff", before, after, "--max-regress", "much"}), 2) << output;
}

TEST_F(ATracedRun, IsAdvisedOnByTheLimitsThatAreSaid) {
  // Making it lazy saves 23 ms; it is asked for 200 ms after the start.
  const std::string trace = directory.write("a.jsonl", TraceText()
                                                           .immediate(10, "/one", 20)
                                                           .running(100)
                                                           .add(300, "first_request", "/one")
                                                           .add(60000, "lost", "", "\"events\":0")
                                                           .text());
  const auto advised = [&](std::vector<std::string> words) {
    words.insert(words.begin(), {"advise", trace});
    EXPECT_EQ(zerva(words), 0) << errors;
    return output.find("/one") != std::string::npos;
  };
  EXPECT_FALSE(advised({}));
  EXPECT_TRUE(advised({"--soon", "100"}));
  EXPECT_FALSE(advised({"--soon", "300"}));
  EXPECT_TRUE(advised({"--soon", "100", "--at-least", "22.5"}));
  EXPECT_FALSE(advised({"--soon", "100", "--at-least", "23.5"}));
}

TEST_F(ATracedRun, WhoseTraceCannotBeReadIsToldByTheExitCode) {
  EXPECT_EQ(zerva({"timeline", file("none.jsonl")}), 2);
  EXPECT_THAT(errors, HasSubstr("none.jsonl: error: cannot be opened"));
  directory.write("bad.jsonl", "nonsense\n");
  EXPECT_EQ(zerva({"graph", file("bad.jsonl")}), 2);
  EXPECT_THAT(errors, HasSubstr("bad.jsonl:1: error: "));
}

TEST_F(ATracedRun, WhosePictureCannotBeWrittenIsToldByTheExitCode) {
  const std::string files = ZERVA_SOURCE_DIRECTORY "/tests/host/trace/files/";
  EXPECT_EQ(zerva({"timeline", files + "weather.jsonl", "-o", file("none/a.svg")}), 2);
  EXPECT_THAT(errors, HasSubstr("cannot write"));
}

}  // namespace
}  // namespace zerva
