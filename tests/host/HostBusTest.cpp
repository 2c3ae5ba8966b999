#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <optional>

#include "host/EndRequest.h"
#include "host/HostBus.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using namespace std::chrono_literals;
using std::filesystem::exists;
using std::filesystem::path;
using testing::HasSubstr;
using testing::StartsWith;

std::string busOfEnvironment() {
  const char* const value = ::getenv("ZERVA_BUS");
  return value != nullptr ? value : "";
}

/** What a variable of the environment has is put back at the end. */
class Kept {
 public:
  explicit Kept(const char* name) : name_(name) {
    if (const char* const value = ::getenv(name)) value_ = value;
  }
  ~Kept() {
    if (value_) {
      ::setenv(name_, value_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;

 private:
  const char* const name_;
  std::optional<std::string> value_;
};

class AHostBus : public testing::Test {
 protected:
  AHostBus() {
    ::unsetenv("ZERVA_BUS");
    ::setenv("XDG_RUNTIME_DIR", place.c_str(), 1);
  }

  /** The directories of own buses that there are. */
  std::size_t ownDirectories() const {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(place)) {
      count += entry.path().filename().string().rfind("zerva-bus-", 0) == 0 ? 1 : 0;
    }
    return count;
  }

  /** A directory as a host leaves it that was killed some time ago. */
  path leave(const std::string& name, std::chrono::seconds age) const {
    const path directory = place / name;
    std::filesystem::create_directory(directory);
    ::chmod(directory.c_str(), 0700);
    temporary.write(name + "/4000000-0123456789abcdef.names", "ZRVN");
    temporary.write(name + "/4000000-0123456789abcdef.sock", "");
    std::filesystem::last_write_time(directory,
                                     std::filesystem::file_time_type::clock::now() - age);
    return directory;
  }

  const Kept bus{"ZERVA_BUS"};
  const Kept runtime{"XDG_RUNTIME_DIR"};
  const Kept temporaries{"TMPDIR"};
  const TempDirectory temporary;
  const path place = temporary.path();
};

TEST_F(AHostBus, IsInTheDirectoryThatWasAskedForAndStartedProcessesFindItThere) {
  ::setenv("ZERVA_BUS", "/somewhere/else", 1);
  const path directory = temporary.file("bus");
  {
    const HostBus sut(directory.string());
    EXPECT_EQ(busOfEnvironment(), directory);
    EXPECT_EQ(sut.whyNone(), "");
    EXPECT_TRUE(exists(directory));
  }
  EXPECT_TRUE(exists(directory)) << "it is not the host's to remove";
}

TEST_F(AHostBus, IsToldToStartedProcessesByAnAbsolutePath) {
  const path before = std::filesystem::current_path();
  std::filesystem::current_path(place);
  { const HostBus sut("relative"); }
  std::filesystem::current_path(before);
  EXPECT_EQ(busOfEnvironment(), place / "relative");
}

TEST_F(AHostBus, IsThatOfTheEnvironmentWhenNoneIsAskedFor) {
  const path directory = temporary.file("bus");
  ::setenv("ZERVA_BUS", directory.c_str(), 1);
  const HostBus sut("");
  EXPECT_TRUE(exists(directory));
  EXPECT_EQ(ownDirectories(), 0U);
}

TEST_F(AHostBus, IsInADirectoryOfItsOwnWhenThereIsNoOther) {
  {
    const HostBus sut("");
    EXPECT_EQ(sut.whyNone(), "");
    EXPECT_THAT(busOfEnvironment(), StartsWith((place / "zerva-bus-").string()));
    struct stat status {};
    ASSERT_EQ(::stat(busOfEnvironment().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
  }
  EXPECT_EQ(ownDirectories(), 0U) << "it is left behind";
}

TEST_F(AHostBus, OfItsOwnIsMadeElsewhereWhenThePreferredPlaceDoesNotDo) {
  const TempDirectory other;
  ::setenv("XDG_RUNTIME_DIR", temporary.file("missing").c_str(), 1);
  ::setenv("TMPDIR", other.path().c_str(), 1);
  const HostBus sut("");
  EXPECT_EQ(sut.whyNone(), "");
  EXPECT_THAT(busOfEnvironment(), StartsWith(other.path().string()));
}

TEST_F(AHostBus, OfItsOwnThatCannotBeMadeIsDoneWithout) {
  const Bus first(temporary.file("first").string());
  const HostBus sut("");
  EXPECT_THAT(sut.whyNone(), HasSubstr("has opened a bus already"));
  EXPECT_EQ(busOfEnvironment(), "");
  EXPECT_EQ(ownDirectories(), 0U);
}

TEST_F(AHostBus, ThatWasAskedForAndCannotBeOpenedIsAnErrorThatSaysWhereAndWhy) {
  const path directory = temporary.file("open");
  std::filesystem::create_directory(directory);
  ::chmod(directory.c_str(), 0755);
  EXPECT_THAT([&] { const HostBus sut(directory.string()); },
              testing::ThrowsMessage<std::runtime_error>(
                  testing::AllOf(HasSubstr(directory.string()), HasSubstr("open to others"))));
}

TEST_F(AHostBus, OfItsOwnRemovesWhatKilledHostsLeft) {
  const path left = leave("zerva-bus-killed", 2min);
  const HostBus sut("");
  EXPECT_FALSE(exists(left));
  EXPECT_EQ(ownDirectories(), 1U);
}

TEST_F(AHostBus, LeavesWhatMayStillBeUsedOrIsNotItsOwn) {
  const path young = leave("zerva-bus-young", 0s);
  const path other = leave("another-bus", 2min);
  const path foreign = leave("zerva-bus-foreign", 2min);
  temporary.write("zerva-bus-foreign/precious", "");
  std::filesystem::last_write_time(foreign, std::filesystem::file_time_type::clock::now() - 2min);
  const path file = temporary.write("zerva-bus-file", "");
  std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - 2min);
  const HostBus sut("");
  EXPECT_TRUE(exists(young));
  EXPECT_TRUE(exists(other / "4000000-0123456789abcdef.names"));
  EXPECT_TRUE(exists(foreign / "precious"));
  EXPECT_TRUE(exists(file));
}

TEST_F(AHostBus, WaitsNoLongerThanItIsToldForAChannelThatNobodyServes) {
  const HostBus sut("");
  EndRequest end;
  const auto before = std::chrono::steady_clock::now();
  EXPECT_FALSE(HostBus::await("/nobody", 50ms, end));
  EXPECT_GE(std::chrono::steady_clock::now() - before, 50ms);
}

TEST_F(AHostBus, DoesNotWaitForAChannelWhenTheEndIsAskedFor) {
  const HostBus sut("");
  EndRequest end;
  end.make();
  EXPECT_FALSE(HostBus::await("/nobody", 1h, end));
}

}  // namespace
}  // namespace zerva
