#include "tests/host/explain/ExplainedFile.h"

#include "host/check/ReadFile.h"
#include "tests/support/TempDirectory.h"

namespace zerva {

ExplainedFile::ExplainedFile(const std::string& text) {
  const TempDirectory directory;
  auto file = readCheckedFile(directory.write("a.directives", text));
  file->path = "a.directives";
  subject.files.push_back(std::move(*file));
}

LibraryUse& ExplainedFile::library(std::size_t number, LibraryFault fault) {
  LibraryUse use;
  use.file = &subject.files.front();
  use.line = &line(number);
  use.fault = fault;
  if (fault != LibraryFault::NotFound) use.path = "lib/" + use.line->library().text;
  subject.libraries.push_back(use);
  return subject.libraries.back();
}

}  // namespace zerva
