#include <random>

#include "tests/conformance/ConformanceTest.h"
#include "tests/fuzz/DirectiveModel.h"

namespace zerva::conformance {
namespace {

/** Lines of what matters to the rules, by chance, but always the same ones. */
class AnyLine : public ConfiguratorTest {
 protected:
  std::string next() {
    static const std::vector<std::string> pieces = {":",
                                                    ":",
                                                    ":",
                                                    " ",
                                                    " ",
                                                    "  ",
                                                    "\t",
                                                    "\r",
                                                    "\v",
                                                    "\f",
                                                    "\n",
                                                    "#",
                                                    ",",
                                                    ",",
                                                    "a",
                                                    "b",
                                                    "MT",
                                                    ".so",
                                                    "é",
                                                    "\xff",
                                                    "\x80",
                                                    "comment",
                                                    std::string(1, '\0')};
    std::string line;
    for (auto count = random_() % 12; count > 0; --count) line += pieces[random_() % pieces.size()];
    return line;
  }

  static constexpr int kLines = 20000;

 private:
  std::mt19937 random_{1};
};

TEST_F(AnyLine, IsNormalisedByTheRules) {
  for (int i = 0; i < kLines; ++i) {
    const std::string line = next();
    std::string normalised = line;
    sut->formatString(normalised);
    ASSERT_EQ(normalised, fuzz::normalisedByTheRules(line)) << testing::PrintToString(line);
  }
}

TEST_F(AnyLine, IsCutByTheRules) {
  for (int i = 0; i < kLines; ++i) {
    const std::string line = next();
    for (const char* separators : {" ", ",", ", ", ":#", ""}) {
      ASSERT_EQ(sut->parseDirectives(line.data(), static_cast<int>(line.size()), separators),
                fuzz::tokensByTheRules(line, separators))
          << testing::PrintToString(line) << " cut at '" << separators << "'";
    }
  }
}

}  // namespace
}  // namespace zerva::conformance
