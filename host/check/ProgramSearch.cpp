#include "host/check/ProgramSearch.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <utility>

#include "host/check/RootedPath.h"

namespace zerva {
namespace {

/** The better it is, the further behind. */
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

std::vector<std::string> ProgramSearch::places(const std::string& program) const {
  if (program.find('/') != std::string::npos) return {program};
  std::vector<std::string> paths;
  for (const std::string& directory : directories_) {
    paths.push_back(directory);
    paths.back() += "/" + program;
  }
  return paths;
}

std::string ProgramSearch::find(const std::string& program) const {
  for (const std::string& path : places(program)) {
    if (look(rootedPath(root_, path)) == Program::Good) return path;
  }
  return {};
}

std::string ProgramSearch::whyNot(const std::string& program) const {
  Program best = Program::Missing;
  for (const std::string& path : places(program)) {
    best = std::max(best, look(rootedPath(root_, path)));
  }
  if (best == Program::Good) return {};
  if (best == Program::NotExecutable) return "is no file that can be executed";
  const bool isPath = program.find('/') != std::string::npos;
  return isPath ? "is not there" : "is in none of the directories of PATH";
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
