#include "host/check/CheckSubject.h"

#include "host/check/LibraryUse.h"

namespace zerva {

const char registryInterface[] = "ServiceRegistryIfc";
const char registryChannelName[] = "/zerva/serviceregistry";

CheckSubject::CheckSubject() = default;
CheckSubject::~CheckSubject() = default;

void CheckSubject::forEachLine(const LineVisitor& visitor) const {
  forEachLineAtAll([&visitor](const CheckedFile& file, const ParsedLine& line) {
    if (!line.breaksOff()) visitor(file, line);
  });
}

void CheckSubject::forEachLineAtAll(const LineVisitor& visitor) const {
  for (const CheckedFile& file : files) {
    for (const ParsedLine& line : file.lines) visitor(file, line);
  }
}

bool isRegistry(const ParsedLine& line) {
  return line.isChannelService() && line.interfaceList() == registryInterface;
}

}  // namespace zerva
