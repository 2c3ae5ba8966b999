#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zerva {

/** The product as it was built beside this test, seen through the system's tools. */
class BuiltLibrary {
 public:
  BuiltLibrary();

  /** @returns the value of a field of the ELF header, for instance of "Class". */
  std::string headerField(const std::string& name) const;

  /** @returns the values of all dynamic entries with a tag, for instance "NEEDED", in order. */
  std::vector<std::string> dynamicEntries(const std::string& tag) const;

  /** @returns the demangled names of what the library gives to others. */
  std::vector<std::string> exportedNames() const;

  /** @returns the plain names, without versions, of what the library takes from others. */
  std::vector<std::string> importedNames() const;

  /** @returns the letters that tell of which kind the exported symbols are, without repetition. */
  std::string exportedKinds() const;

 private:
  std::filesystem::path file_;
};

}  // namespace zerva
