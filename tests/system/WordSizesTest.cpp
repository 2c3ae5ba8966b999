#include "tests/support/FileText.h"
#include "tests/system/RelayHosts.h"

namespace zerva {
namespace {

/** The build of the other word size; what runs the tests has built it before. */
const std::filesystem::path kOther = ZERVA_OTHER_WORD_SIZE_BUILD;

/** @returns 32 or 64, as the head of the executable says. */
int wordSize(const std::filesystem::path& program) {
  constexpr std::size_t kClass = 4;
  const std::string text = readFile(program);
  EXPECT_GT(text.size(), kClass) << program << " is missing";
  return text.size() > kClass && text[kClass] == 1 ? 32 : 64;
}

class HostsOfBothWordSizes : public RelayHosts {};

TEST_F(HostsOfBothWordSizes, FindAndCallEachOther) {
  ASSERT_NE(wordSize(kOther / "bin/zerva"), wordSize("/proc/self/exe"));
  builds["Second"] = kOther;
  ASSERT_NO_FATAL_FAILURE(startAll());
  const std::vector<std::string> way{"Second", "Third", "First", "Second", "First"};
  EXPECT_THAT(RelayCaller("First").pass(way), testing::SizeIs(6));
  endAll();
}

TEST_F(HostsOfBothWordSizes, UseTheRegistryOfEither) {
  builds["First"] = kOther;
  ASSERT_NO_FATAL_FAILURE(startAll());
  endAll();
}

}  // namespace
}  // namespace zerva
