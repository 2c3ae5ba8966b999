#include "framework/ClientUtils.h"

#include "tests/fakes/Platform.h"
#include "tests/fakes/Text.h"
#include "tests/fakes/Trace.h"

using zerva::fakes::inQuotes;

std::vector<std::string> ClientUtils::tokenizeString(std::string text, std::string separators,
                                                     bool skipEmpty, bool keepSeparators) {
  const std::string call = "tokenizeString(" + inQuotes(text) + ", " + inQuotes(separators) + ", " +
                           (skipEmpty ? "true" : "false") + ", " +
                           (keepSeparators ? "true" : "false") + ")";
  zerva::fakes::Trace::record(call);
  // A test may want a platform that leaves no piece out.
  skipEmpty = zerva::fakes::Platform::answerOf(call, skipEmpty ? 1 : 0) != 0;
  std::vector<std::string> pieces;
  std::string piece;
  for (const char character : text) {
    if (separators.find(character) == std::string::npos) {
      piece += character;
      continue;
    }
    if (!piece.empty() || !skipEmpty) pieces.push_back(piece);
    if (keepSeparators) pieces.emplace_back(1, character);
    piece.clear();
  }
  if (!piece.empty() || !skipEmpty) pieces.push_back(piece);
  return pieces;
}
