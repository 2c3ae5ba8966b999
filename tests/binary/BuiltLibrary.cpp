#include "tests/binary/BuiltLibrary.h"

#include <sstream>
#include <stdexcept>

#include "tests/support/ChildProcess.h"

namespace zerva {

namespace {

std::vector<std::string> linesOf(const std::string& program, std::vector<std::string> arguments) {
  // In another language the fields have other names. The tools are of this machine, so they are not
  // to see what a sanitizer needs.
  ChildProcess tool(program, std::move(arguments), {{"LC_ALL", "C"}, {"LD_PRELOAD", ""}});
  if (tool.wait() != 0) {
    throw std::runtime_error(program + " failed: " + tool.errors());
  }
  std::vector<std::string> lines;
  std::istringstream output(tool.output());
  for (std::string line; std::getline(output, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/** @returns what follows the symbol's kind, one letter between blanks; empty when there is none. */
std::string nameOf(const std::string& line, char* kind = nullptr) {
  for (std::size_t at = 0; at + 2 < line.size(); ++at) {
    if (line[at] == ' ' && line[at + 1] != ' ' && line[at + 2] == ' ') {
      if (kind != nullptr) {
        *kind = line[at + 1];
      }
      return line.substr(at + 3);
    }
  }
  return {};
}

}  // namespace

BuiltLibrary::BuiltLibrary()
    : file_(std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib" /
            "libServiceConfigurator.so") {}

std::string BuiltLibrary::headerField(const std::string& name) const {
  for (const std::string& line : linesOf("readelf", {"-hW", file_.string()})) {
    const std::size_t colon = line.find(':');
    if (colon != std::string::npos && trimmed(line.substr(0, colon)) == name) {
      return trimmed(line.substr(colon + 1));
    }
  }
  return {};
}

std::vector<std::string> BuiltLibrary::dynamicEntries(const std::string& tag) const {
  std::vector<std::string> values;
  for (const std::string& line : linesOf("readelf", {"-dW", file_.string()})) {
    if (line.find("(" + tag + ")") == std::string::npos) {
      continue;
    }
    const std::size_t open = line.find('[');
    const std::size_t close = line.rfind(']');
    values.push_back(open != std::string::npos && close != std::string::npos
                         ? line.substr(open + 1, close - open - 1)
                         : trimmed(line.substr(line.find(')') + 1)));
  }
  return values;
}

std::vector<std::string> BuiltLibrary::exportedNames() const {
  std::vector<std::string> names;
  for (const std::string& line : linesOf("nm", {"-DC", "--defined-only", file_.string()})) {
    names.push_back(nameOf(line));
  }
  return names;
}

std::vector<std::string> BuiltLibrary::importedNames() const {
  std::vector<std::string> names;
  for (const std::string& line : linesOf("nm", {"-D", "--undefined-only", file_.string()})) {
    const std::string name = nameOf(line);
    names.push_back(name.substr(0, name.find('@')));
  }
  return names;
}

std::string BuiltLibrary::exportedKinds() const {
  std::string kinds;
  for (const std::string& line : linesOf("nm", {"-DC", "--defined-only", file_.string()})) {
    char kind = '?';
    nameOf(line, &kind);
    if (kinds.find(kind) == std::string::npos) {
      kinds += kind;
    }
  }
  return kinds;
}

}  // namespace zerva
