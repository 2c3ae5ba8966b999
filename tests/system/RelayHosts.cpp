#include "tests/system/RelayHosts.h"

#include <signal.h>

#include <iterator>
#include <sstream>

#include "framework/CallException.h"
#include "tests/support/WaitUntil.h"

namespace zerva {

namespace {

using testing::SizeIs;

const std::vector<std::string> kNames{"First", "Second", "Third"};

std::filesystem::path ownBuild() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
}

std::string directivesFor(const std::string& name, const std::string& registry) {
  const std::string line =
      registry +
      " libServiceRegistry.so createServiceRegistry /zerva/serviceregistry ServiceRegistryIfc\n";
  return (name == "First" ? line : "") + "proxy_info: libRelayAccess.so createRelayProxy " + name +
         " zerva_simple_rmi\n" + "invoker_info: libRelayAccess.so createRelayInvoker " + name +
         " zerva_simple_rmi\n" + "service_instance: MT libRelay.so createRelay /test/" + name +
         " " + name + "\n";
}

}  // namespace

RelayCaller::RelayCaller(const std::string& ifc)
    : request_(&channel_, "/test/" + ifc, ifc, "zerva_simple_rmi",
               protocols_.findProtocolAdapter("zerva_simple_rmi"), "", &context_) {
  proxy_.initialise(&request_);
}

RelayHosts::RelayHosts() = default;

std::string RelayHosts::commandFor(const std::string& name, const std::string& more) const {
  const auto chosen = builds.find(name);
  const std::string build = chosen != builds.end() ? chosen->second : ownBuild();
  const std::string file =
      directory_.write(name + ".directives", directivesFor(name, registry) + more);
  return build + "/bin/zerva run " + file + " --bus " + busDirectory_.string() + " --lib-dir " +
         build + "/plugins --lib-dir " + build + "/lib --reply-timeout 3600" +
         (name == "First" ? "" : " --await /zerva/serviceregistry");
}

void RelayHosts::launch(const std::string& name, const std::string& more) {
  std::istringstream words(commandFor(name, more));
  std::vector<std::string> arguments{std::istream_iterator<std::string>(words), {}};
  const std::string program = arguments.front();
  arguments.erase(arguments.begin());
  hosts_[name] = std::make_unique<ChildProcess>(program, arguments);
}

void RelayHosts::start(const std::string& name, const std::string& more) {
  launch(name, more);
  ASSERT_TRUE(host(name).waitForOutput("up       " + name))
      << host(name).output() << host(name).errors();
}

void RelayHosts::startAll() {
  for (const std::string& name : kNames) ASSERT_NO_FATAL_FAILURE(start(name));
  expectAllWorkAgain();
}

void RelayHosts::expectAllWorkAgain() {
  const bool newRegistry = !host("First").running();
  for (const std::string& name : kNames) {
    if (!host(name).running()) {
      ASSERT_NO_FATAL_FAILURE(start(name));
    } else if (newRegistry) {
      // The proxies that it has still lead there. That it is there itself the new registry does
      // not know: services are announced when they are made.
      EXPECT_THAT(RelayCaller(name).pass({"First"}), SizeIs(2));
      end(name);
      ASSERT_NO_FATAL_FAILURE(start(name));
    }
  }
  for (const std::string& name : kNames) {
    const auto others = othersThan(name);
    expectCallsBetween(name, others[0]);
    expectCallsBetween(name, others[1]);
  }
}

void RelayHosts::expectCallsBetween(const std::string& one, const std::string& other) {
  EXPECT_THAT(RelayCaller(one).pass({other}),
              testing::ElementsAre(host(one).id(), host(other).id()));
  EXPECT_THAT(RelayCaller(other).pass({one}),
              testing::ElementsAre(host(other).id(), host(one).id()));
}

void RelayHosts::kill(const std::string& name) {
  host(name).signal(SIGKILL);
  ASSERT_EQ(host(name).wait(), 128 + SIGKILL);
}

void RelayHosts::end(const std::string& name) {
  host(name).signal(SIGTERM);
  EXPECT_EQ(host(name).wait(), 0) << host(name).output() << host(name).errors();
  EXPECT_TRUE(host(name).survivors().empty());
}

void RelayHosts::endAll() {
  for (auto name = kNames.rbegin(); name != kNames.rend(); ++name) end(*name);
  // What killed ones left is gone too: two files are this process's own.
  EXPECT_TRUE(waitUntil([this] {
    return std::distance(std::filesystem::directory_iterator(busDirectory_), {}) == 2;
  }));
}

CallEnd RelayHosts::call(std::vector<std::string> way) {
  return std::async(std::launch::async, [way = std::move(way)]() -> std::string {
    try {
      RelayCaller(way[0]).pass({way.begin() + 1, way.end()});
      return "";
    } catch (const CallException& error) {
      return error.what();
    }
  });
}

void RelayHosts::awaitHeld(const std::string& name) {
  ASSERT_TRUE(host(name).waitForOutput("held")) << host(name).output() << host(name).errors();
}

std::vector<std::string> RelayHosts::othersThan(const std::string& name) {
  std::vector<std::string> others = kNames;
  std::erase(others, name);
  return others;
}

std::string RelayHosts::process(const std::string& name) const {
  return "process " + std::to_string(hosts_.at(name)->id());
}

}  // namespace zerva
