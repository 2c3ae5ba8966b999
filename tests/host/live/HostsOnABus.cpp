#include "tests/host/live/HostsOnABus.h"

#include <sys/stat.h>

#include <utility>

#include "tests/support/WaitUntil.h"

namespace zerva {

HostsOnABus::HostsOnABus() { ::mkdir(bus.c_str(), 0700); }

ChildProcess& HostsOnABus::start(const std::string& lines, std::vector<std::string> more,
                                 std::map<std::string, std::string> environment) {
  std::vector<std::string> words{
      "run",       directory.write("file" + std::to_string(hosts.size()), lines),
      "--bus",     bus,
      "--lib-dir", build + "/plugins",
      "--lib-dir", build + "/lib",
      "--no-check"};
  words.insert(words.end(), more.begin(), more.end());
  hosts.push_back(
      std::make_unique<ChildProcess>(build + "/bin/zerva", words, std::move(environment)));
  return *hosts.back();
}

ChildProcess& HostsOnABus::startAll(const std::string& lines, std::vector<std::string> more) {
  ChildProcess& host = start(lines, std::move(more));
  EXPECT_TRUE(waitUntil([&] { return status(host).value("phase", "") == "running"; }))
      << host.output() << host.errors();
  return host;
}

Seen HostsOnABus::zerva(const std::string& verb, std::vector<std::string> words) const {
  words.insert(words.begin(), {verb, "--bus", bus});
  ChildProcess command(build + "/bin/zerva", words);
  const int code = command.wait().value_or(-1);
  return {code, command.output(), command.errors()};
}

nlohmann::json HostsOnABus::status(const ChildProcess& process) const {
  const auto all = nlohmann::json::parse(zerva("status", {"--json"}).output);
  for (const nlohmann::json& one : all.at("processes")) {
    if (one.at("process") == process.id()) return one;
  }
  return nlohmann::json::object();
}

nlohmann::json HostsOnABus::service(const ChildProcess& process,
                                    const std::string& interface) const {
  const nlohmann::json all = status(process);
  if (!all.contains("services")) return nlohmann::json::object();
  for (const nlohmann::json& one : all.at("services")) {
    if (one.at("interfaces") == interface) return one;
  }
  return nlohmann::json::object();
}

bool HostsOnABus::waitForService(const ChildProcess& process, const std::string& interface,
                                 const std::string& member, const nlohmann::json& value) const {
  return waitUntil([&] {
    const nlohmann::json one = service(process, interface);
    return one.contains(member) && one.at(member) == value;
  });
}

}  // namespace zerva
