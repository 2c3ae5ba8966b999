#include "host/check/Registries.h"

namespace zerva {

Registries::Registries(const CheckSubject& subject) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (isRegistry(line)) first_.try_emplace(&file, &line);
  });
}

const ParsedLine* Registries::behind(const CheckedFile& file, const ParsedLine& line) const {
  const auto found = first_.find(&file);
  const bool later = found != first_.end() && found->second->number() > line.number();
  return later ? found->second : nullptr;
}

}  // namespace zerva
