#include "host/check/ProgramSearch.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <utility>

#include "host/check/RootedPath.h"

namespace zerva {
namespace {

enum class Program { Missing, NotExecutable, Good };

Program look(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return Program::Missing;
  const bool good =
      S_ISREG(status.st_mode) && (status.st_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0;
  return good ? Program::Good : Program::NotExecutable;
}

}  // namespace

ProgramSearch::ProgramSearch(std::string root, const std::string& path) : root_(std::move(root)) {
  std::istringstream stream(path);
  for (std::string directory; std::getline(stream, directory, ':');) {
    directories_.push_back(directory.empty() ? "." : directory);
  }
}

std::string ProgramSearch::whyNot(const std::string& program) const {
  Program best = Program::Missing;
  if (program.find('/') != std::string::npos) {
    best = look(rootedPath(root_, program));
    if (best == Program::Missing) return "is not there";
  } else {
    for (const std::string& directory : directories_) {
      std::string path = directory;
      path += "/" + program;
      const Program found = look(rootedPath(root_, path));
      if (found == Program::Good) return {};
      if (found == Program::NotExecutable) best = found;
    }
    if (best == Program::Missing) return "is in none of the directories of PATH";
  }
  return best == Program::Good ? "" : "is no file that can be executed";
}

std::vector<std::string> ProgramSearch::names() const {
  std::vector<std::string> names;
  for (const std::string& directory : directories_) {
    std::error_code error;
    for (std::filesystem::directory_iterator at(rootedPath(root_, directory), error), end;
         !error && at != end; at.increment(error)) {
      names.push_back(at->path().filename().string());
    }
  }
  return names;
}

}  // namespace zerva
