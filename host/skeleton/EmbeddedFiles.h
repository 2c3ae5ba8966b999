#pragma once

#include <string>
#include <vector>

namespace zerva {

/** A file of the source tree that is a part of the program. */
struct EmbeddedFile {
  /** Below `host/skeleton/service/`, with the ending `.in`. */
  std::string path;
  std::string text;
};

/** @returns the files that a new service is made of, as they are in the source tree. Any thread. */
const std::vector<EmbeddedFile>& embeddedFiles();

}  // namespace zerva
