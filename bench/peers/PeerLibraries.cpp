#include "bench/peers/PeerLibraries.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "bench/ours/Libraries.h"
#include "bench/peers/PeerEcho.h"

namespace zerva::bench {

namespace {

std::string read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  if (!file || bytes.str().empty()) throw std::runtime_error("cannot read " + path);
  return bytes.str();
}

std::string numbered(int number) {
  std::string name = peerEchoName;
  const std::string digits = std::to_string(number);
  return name.replace(name.size() - digits.size(), digits.size(), digits);
}

}  // namespace

std::vector<PeerLibrary> peerLibraries(const std::string& library, int count) {
  const std::string original = read(buildDirectory() + "/peers/" + library);
  const std::size_t at = original.find(peerEchoName);
  if (at == std::string::npos) throw std::runtime_error("no name is in " + library);
  const std::string directory = copiesDirectory() + "/" + library;
  std::filesystem::create_directories(directory);
  std::vector<PeerLibrary> all;
  for (int i = 0; i < count; ++i) {
    const std::string name = numbered(i);
    std::string bytes = original;
    bytes.replace(at, name.size(), name);
    const std::string path = directory + "/lib" + name + ".so";
    std::ofstream(path, std::ios::binary) << bytes;
    all.push_back({path, name});
  }
  return all;
}

}  // namespace zerva::bench
