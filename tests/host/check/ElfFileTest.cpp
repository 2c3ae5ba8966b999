#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "host/check/ElfFile.h"
#include "host/check/LoaderDirectories.h"
#include "tests/support/FileText.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::HasSubstr;

const std::string build = ZERVA_BUILD_DIRECTORY;

std::string bytesOfLibrary(const std::string& name) {
  return readFile(build + "/check-libraries/" + name);
}

ElfFile good(const std::string& bytes) {
  const auto content = readElf(bytes);
  const auto* error = std::get_if<ElfError>(&content);
  EXPECT_EQ(error, nullptr) << error->text;
  return error == nullptr ? std::get<ElfFile>(content) : ElfFile();
}

ElfError bad(const std::string& bytes) {
  const auto content = readElf(bytes);
  EXPECT_TRUE(std::holds_alternative<ElfError>(content));
  const auto* error = std::get_if<ElfError>(&content);
  return error == nullptr ? ElfError() : *error;
}

TEST(AnElfFile, TellsForWhichMachineItIs) {
  EXPECT_EQ(good(bytesOfLibrary("libTraps.so")).kind, ownElfKind());
  EXPECT_EQ(ownElfKind().bits, static_cast<int>(8 * sizeof(void*)));
}

TEST(AnElfFile, OfAnotherWordSizeIsReadTheSameWay) {
  const ElfFile sut = good(readFile(build + "/plugins/libWrongWordSize.so"));
  EXPECT_NE(sut.kind.bits, ownElfKind().bits);
  EXPECT_TRUE(sut.isLibrary);
  EXPECT_FALSE(sut.exported.empty());
}

TEST(AnElfFile, TellsWhatItExportsAndWhetherThatIsAFunction) {
  const ElfFile sut = good(bytesOfLibrary("libTraps.so"));
  ASSERT_EQ(sut.exported.count("createTraps"), 1U);
  EXPECT_TRUE(sut.exported.at("createTraps"));
  ASSERT_EQ(sut.exported.count("createValue"), 1U);
  EXPECT_FALSE(sut.exported.at("createValue"));
}

TEST(AnElfFile, DoesNotExportWhatItOnlyUses) {
  const ElfFile sut = good(bytesOfLibrary("libNeedsHidden.so"));
  EXPECT_EQ(sut.exported.count("hidden"), 0U);
  EXPECT_EQ(sut.exported.count("createNeeding"), 1U);
}

TEST(AnElfFile, TellsWhatItCannotDoWithout) {
  EXPECT_THAT(good(bytesOfLibrary("libNeedsHidden.so")).undefined, Contains("hidden"));
}

TEST(AnElfFile, DoesNotTellWhatItCanDoWithout) {
  EXPECT_THAT(good(bytesOfLibrary("libTraps.so")).undefined,
              testing::Not(Contains("__gmon_start__")));
}

TEST(AnElfFile, TellsWhatItNeedsAndWhereThatIs) {
  const ElfFile sut = good(bytesOfLibrary("libFindsHidden.so"));
  EXPECT_THAT(sut.needed, Contains("libHidden.so"));
  EXPECT_TRUE(sut.hasRunpath);
  EXPECT_THAT(sut.runpath, HasSubstr("$ORIGIN"));
}

TEST(AnElfFile, TellsItsName) {
  EXPECT_EQ(good(bytesOfLibrary("hidden/libHidden.so")).soname, "libHidden.so");
}

TEST(AnElfFile, ThatIsAProgramIsNoLibrary) {
  EXPECT_FALSE(good(readFile(build + "/bin/zerva")).isLibrary);
}

TEST(AnElfFile, IsNoneWithoutTheFirstFourBytes) {
  EXPECT_EQ(bad("").kind, ElfError::Kind::NotElf);
  EXPECT_EQ(bad("\x7f"
                "EL")
                .kind,
            ElfError::Kind::NotElf);
  EXPECT_EQ(bad("#!/bin/sh\n").kind, ElfError::Kind::NotElf);
}

TEST(AnElfFile, OfAClassThatNobodyKnowsIsDamaged) {
  std::string bytes = bytesOfLibrary("libTraps.so");
  bytes[EI_CLASS] = 7;
  EXPECT_EQ(bad(bytes).kind, ElfError::Kind::Broken);
}

TEST(AnElfFile, IsNeverReadBeyondItsEnd_WhereverItIsCutOff) {
  const std::string whole = bytesOfLibrary("libTraps.so");
  std::size_t damaged = 0;
  for (std::size_t length = 4; length < whole.size(); length += 1 + length / 37) {
    const auto sut = readElf(whole.substr(0, length));
    damaged += std::holds_alternative<ElfError>(sut) ? 1 : 0;
  }
  EXPECT_GT(damaged, 50U);
}

/** Each byte of the parts that are read is something that a reader could stumble over. */
TEST(AnElfFile, IsReadToAnEndWhicheverOfItsBytesAreWrong) {
  const std::string whole = bytesOfLibrary("libTraps.so");
  std::mt19937 random(4711);
  for (int round = 0; round < 4000; ++round) {
    std::string bytes = whole.substr(0, 12000);
    for (int change = 0; change < 3; ++change) {
      const std::size_t range = change == 0 ? 512 : bytes.size();
      bytes[random() % range] = static_cast<char>(random() % 3 == 0 ? 0xFF : random());
    }
    readElf(bytes);
  }
}

TEST(AKindOfMachine, IsDescribedForAReader) {
  EXPECT_EQ(describe({32, false, EM_386}), "32-bit x86");
  EXPECT_EQ(describe({64, false, EM_AARCH64}), "64-bit ARM");
  EXPECT_EQ(describe({32, false, EM_X86_64}), "32-bit x86 (x32)");
  EXPECT_EQ(describe({32, true, EM_PPC}), "32-bit PowerPC, big-endian");
  EXPECT_EQ(describe({32, false, 4242}), "32-bit machine 4242");
}

TEST(AKindOfMachine, HasEachOfItsNames) {
  for (const std::string& sut : elfKindNames()) EXPECT_TRUE(elfKindNamed(sut)) << sut;
  EXPECT_FALSE(elfKindNamed("vax"));
}

std::string number(unsigned value) { return {reinterpret_cast<const char*>(&value), sizeof value}; }

/** A cache with two entries, the names behind them. */
std::string cache(unsigned entries, unsigned nameOffset) {
  std::string text = "glibc-ld.so.cache1.1" + number(entries) + std::string(24, '\0');
  for (int entry = 0; entry < 2; ++entry) {
    text += number(3) + number(nameOffset) + number(nameOffset + 6) + std::string(12, '\0');
  }
  return text + std::string("a.so\0\0/lib/a.so\0", 16);
}

TEST(TheCacheOfTheLoader, HasThePathsOfNames) {
  const auto sut = readLoaderCache(cache(2, 96));
  ASSERT_EQ(sut.count("a.so"), 2U);
  EXPECT_EQ(sut.find("a.so")->second, "/lib/a.so");
}

TEST(TheCacheOfTheLoader, IsReadAsFarAsItMakesSense) {
  EXPECT_EQ(readLoaderCache(cache(1000000, 96)).size(), 2U);
  EXPECT_EQ(readLoaderCache(cache(2, 0xFFFFFFF0U)).size(), 0U);
}

TEST(TheCacheOfTheLoader, IsEmptyWhenItIsNone) { EXPECT_TRUE(readLoaderCache("words").empty()); }

}  // namespace
}  // namespace zerva
