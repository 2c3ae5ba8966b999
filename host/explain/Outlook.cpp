#include "host/explain/Outlook.h"

#include <algorithm>

#include "host/check/LibraryUse.h"
#include "host/explain/LibraryWords.h"

namespace zerva {

const char proxiesProtocol[] = "zerva_simple_rmi";

bool servesRegistryChannel(const ParsedLine& line) {
  if (!line.isChannelService() || line.channel().text != registryChannelName) return false;
  const auto interfaces = line.interfaces();
  return std::any_of(interfaces.begin(), interfaces.end(),
                     [](const Word& word) { return word.text == registryInterface; });
}

bool isRefused(const ParsedLine& line) {
  const std::size_t fields = line.isRecord() ? 4 : line.words().size();
  for (std::size_t at = line.isRecord() ? 0 : 2; at < fields; ++at) {
    if (line.field(at).text.find(',') != std::string::npos) return true;
  }
  return false;
}

Outlook::Outlook(const CheckSubject& subject) : subject_(subject) {
  subject.forEachLineAtAll([this](const CheckedFile&, const ParsedLine& line) {
    const bool endsHere = line.breaksOff() || line.line().length > longestDirectiveLine;
    if (end_ == nullptr && endsHere) end_ = &line;
    if (registry_ == nullptr && isRead(line) && servesRegistryChannel(line)) registry_ = &line;
  });
}

bool Outlook::isRead(const ParsedLine& line) const {
  return end_ == nullptr || line.number() <= end_->number();
}

const LibraryUse* Outlook::libraryOf(const ParsedLine& line) const {
  for (const LibraryUse& use : subject_.libraries) {
    if (use.line == &line) return &use;
  }
  return nullptr;
}

RegistryAhead Outlook::registryFor(const ParsedLine& line) const {
  using Where = RegistryAhead::Where;
  if (registry_ == nullptr) return {Where::Elsewhere, nullptr};
  if (line.number() <= registry_->number()) return {Where::Later, registry_};
  const bool comesUp = !registry_->library().empty() && !registry_->creator().empty() &&
                       makes(libraryOf(*registry_));
  return {comesUp ? Where::Here : Where::Failed, registry_};
}

const ParsedLine* Outlook::recordOf(Keyword keyword, const std::string& interface) const {
  const ParsedLine* last = nullptr;
  subject_.forEachLine([&](const CheckedFile&, const ParsedLine& line) {
    if (line.keyword() != keyword || line.field(2).text != interface || !isRead(line)) return;
    if (keyword == Keyword::InvokerInfo && line.protocol().text != proxiesProtocol) return;
    if (registryFor(line).isReached() && !isRefused(line)) last = &line;
  });
  return last;
}

const ParsedLine* Outlook::proxyOf(const std::string& interface) const {
  return recordOf(Keyword::ProxyInfo, interface);
}

const ParsedLine* Outlook::invokerOf(const std::string& interface) const {
  return recordOf(Keyword::InvokerInfo, interface);
}

}  // namespace zerva
