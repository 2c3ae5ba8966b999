#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "host/CommandLine.h"
#include "host/skeleton/ServiceName.h"
#include "host/skeleton/Skeleton.h"

namespace zerva {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ASkeleton : public testing::Test {
 protected:
  ASkeleton() : directory_(fs::temp_directory_path() / ("skeleton" + std::to_string(getpid()))) {
    fs::create_directories(directory_);
  }
  ~ASkeleton() override { fs::remove_all(directory_); }

  std::string read(const fs::path& file) const {
    std::ifstream stream(directory_ / file);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  /** What the command line makes of `zerva new service NAME`, and what it says to standard error.
   */
  std::pair<int, std::string> newService(const std::string& name) const {
    const std::string in = directory_.string();
    const char* words[] = {"zerva", "new", "service", "--in", in.c_str(), "--", name.c_str()};
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const Wanted wanted = readCommandLine(static_cast<int>(std::size(words)), words);
    const Verb* const verb = std::get_if<Verb>(&wanted);
    const int code = verb != nullptr ? (*verb)() : static_cast<int>(std::get<ExitCode>(wanted));
    testing::internal::GetCapturedStdout();
    return {code, testing::internal::GetCapturedStderr()};
  }

  const fs::path directory_;
};

TEST_F(ASkeleton, HasTheNameInItsFilesAndInWhatTheyAreCalled) {
  const auto files = writeSkeleton(directory_ / "TideGauge", "TideGauge");
  EXPECT_THAT(files, Contains("TideGaugeService.cpp"));
  EXPECT_THAT(files, Contains("test/TideGaugeCaller.cpp"));
  EXPECT_THAT(read("TideGauge/TideGauge.h"), HasSubstr("class TideGauge {"));
}

TEST_F(ASkeleton, RecordsBothProtocols) {
  writeSkeleton(directory_ / "TideGauge", "TideGauge");
  const std::string directives = read("TideGauge/TideGauge.directives");
  for (const std::string protocol : {"zerva_simple_rmi", "zerva_svc_xml"}) {
    EXPECT_THAT(directives, HasSubstr("createTideGaugeProxy   TideGaugeIfc " + protocol));
    EXPECT_THAT(directives, HasSubstr("createTideGaugeInvoker TideGaugeIfc " + protocol));
  }
}

TEST_F(ASkeleton, LeavesNothingToBeFilledIn) {
  for (const std::string& file : writeSkeleton(directory_ / "TideGauge", "TideGauge")) {
    EXPECT_THAT(read("TideGauge" / fs::path(file)), Not(ContainsRegex("@[A-Z_]+@"))) << file;
  }
}

TEST_F(ASkeleton, IsNotWrittenIntoAFolderThatIsThere) {
  fs::create_directory(directory_ / "TideGauge");
  EXPECT_EQ(newService("TideGauge"),
            std::pair(1, "zerva: " + (directory_ / "TideGauge").string() + " is there already\n"));
  EXPECT_TRUE(fs::is_empty(directory_ / "TideGauge"));
}

TEST_F(ASkeleton, IsNotWrittenThroughALinkThatLeadsNowhere) {
  fs::create_symlink(directory_ / "nowhere", directory_ / "TideGauge");
  EXPECT_EQ(newService("TideGauge").first, 1);
  EXPECT_FALSE(fs::exists(directory_ / "nowhere"));
}

TEST_F(ASkeleton, LeavesNothingBehindWhenItsFolderCannotBeMade) {
  EXPECT_THROW(writeSkeleton(directory_ / "missing" / "TideGauge", "TideGauge"),
               std::runtime_error);
  EXPECT_FALSE(fs::exists(directory_ / "missing"));
}

TEST_F(ASkeleton, IsWrittenForAGoodName) {
  EXPECT_EQ(newService("T"), std::pair(0, std::string()));
  EXPECT_TRUE(fs::exists(directory_ / "T" / "TService.cpp"));
}

TEST_F(ASkeleton, IsNotWrittenForABadName) {
  const std::pair<std::string, std::string> bad[] = {
      {"", "it is empty"},
      {"tideGauge", "it does not begin with a capital letter, as in TideGauge"},
      {"9Tides", "it does not begin with a capital letter, as in TideGauge"},
      {"../Tide", "it does not begin with a capital letter, as in TideGauge"},
      {"Tide/Gauge", "it has something else than letters and digits"},
      {"Tide-Gauge", "it has something else than letters and digits"},
      {"Tide Gauge", "it has something else than letters and digits"},
      {"Tid\xc3\xa9", "it has something else than letters and digits"},
      {std::string(61, 'T'), "it is longer than 60 characters"},
      {"Service", "zerva has a class of that name"},
      {"ServiceRepository", "zerva has a class of that name"},
      {"ServiceRegistry", "zerva has a library of that name"},
      {"ServiceConfigurator", "zerva has a library of that name"},
      {"ClientUtils", "zerva has a library of that name"},
      {"LoggingHandler", "zerva has a library of that name"},
      {"ExceptionPublisher", "zerva has a library of that name"},
      {"FwkTimer", "zerva has a library of that name"},
      {"ServiceExecutor", "zerva has a library of that name"},
      {"ZervaVersion", "zerva has a library of that name"},
      {"FILE", "the C library has something of that name"},
      {"EOF", "the C library has something of that name"},
      {"NULL", "the C library has something of that name"},
      {"BUFSIZ", "the C library has something of that name"},
      {"SIGTERM", "the C library has something of that name"},
      {"Nightly", "CMake has a target of that name"},
      {"Experimental", "CMake has a target of that name"},
      {"Continuous", "CMake has a target of that name"},
      {"NightlyMemCheck", "CMake has a target of that name"},
      {"INSTALL", "CMake has a target of that name"},
  };
  for (const auto& [name, why] : bad) {
    EXPECT_EQ(newService(name),
              std::pair(2, "zerva: '" + name + "' is no name for a service: " + why + "\n"));
  }
  EXPECT_TRUE(fs::is_empty(directory_));
}

TEST_F(ASkeleton, MayHaveANameOfSixtyCharacters) {
  EXPECT_THAT(whyNoServiceName(std::string(60, 'T')), IsEmpty());
}

}  // namespace
}  // namespace zerva
