// A program that is linked with the configurator's library and not with the program zerva.

#include <cstdio>
#include <string>

#include "ServiceRepository.h"
#include "framework/ZervaVersion.h"

int main() {
  ServiceRepository repository;
  std::string interface = "TideIfc";
  const bool known = repository.findService(interface, "/consumer/tide") != nullptr;
  std::printf("version %s, %s\n", ZervaVersion().c_str(), known ? "known" : "not known");
  return 0;
}
