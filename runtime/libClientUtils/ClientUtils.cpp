#include "framework/ClientUtils.h"

std::vector<std::string> ClientUtils::tokenizeString(std::string text, std::string separators,
                                                     bool skipEmpty, bool keepSeparators) {
  std::vector<std::string> pieces;
  const auto add = [&](std::string piece) {
    if (!piece.empty() || !skipEmpty) pieces.push_back(std::move(piece));
  };
  std::string::size_type begin = 0;
  for (auto end = text.find_first_of(separators); end != std::string::npos;
       end = text.find_first_of(separators, begin)) {
    add(text.substr(begin, end - begin));
    if (keepSeparators) pieces.push_back(text.substr(end, 1));
    begin = end + 1;
  }
  add(text.substr(begin));
  return pieces;
}
