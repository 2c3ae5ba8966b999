// Input: a line with the separators, and behind it the line to cut, of any bytes.

#include <vector>

#include "src/ServiceConfigurator/DirectiveTokeniser.h"
#include "src/ServiceConfigurator/LineNormaliser.h"
#include "tests/fuzz/DirectiveModel.h"
#include "tests/fuzz/FuzzTarget.h"

using namespace zerva;
using namespace zerva::fuzz;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view line = textOf(data, size);
  const std::string separators(takeLine(line));

  std::string normalised(line);
  normaliseLine(normalised);
  require(normalised == normalisedByTheRules(line), "the spacing follows the rules");
  std::string again = normalised;
  normaliseLine(again);
  // Gluing a keyword to its field makes a longer first word, which may be one to be glued again.
  require(again == normalisedByTheRules(normalised), "spacing that was normalised follows them");

  // Not terminated, and with nothing behind it that may be read.
  const std::vector<char> exact(line.begin(), line.end());
  require(tokeniseDirective(exact.data(), static_cast<int>(exact.size()), separators) ==
              tokensByTheRules(line, separators),
          "the tokens follow the rules");
  return 0;
}
