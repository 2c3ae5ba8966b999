#include "host/check/CheckSubject.h"

#include "host/check/LibraryUse.h"

namespace zerva {

const char registryInterface[] = "ServiceRegistryIfc";
const char registryChannelName[] = "/zerva/serviceregistry";

CheckSubject::CheckSubject() = default;
CheckSubject::~CheckSubject() = default;

void CheckSubject::forEachLine(const LineVisitor& visitor) const {
  for (const CheckedFile& file : files) {
    for (const ParsedLine& line : file.lines) {
      if (!line.breaksOff()) visitor(file, line);
    }
  }
}

bool isRegistry(const ParsedLine& line) {
  return line.isChannelService() && line.interfaceList() == registryInterface;
}

}  // namespace zerva
