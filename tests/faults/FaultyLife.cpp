#include "tests/faults/FaultyLife.h"

#include <signal.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <sstream>

#include "tests/faults/LifeOutput.h"
#include "tests/support/Patience.h"
#include "tests/support/Watchdog.h"

namespace zerva {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kSlower = 2;
#else
constexpr int kSlower = 1;
#endif

// How long a life runs that nobody ends, how long its busy service waits, and how much later the
// watchdog ends it.
constexpr int kSeconds = 4 * kSlower;
constexpr int kBusySeconds = 3 * kSlower;
constexpr int kMoreSeconds = 12 * kSlower;

// For one without a fault, which must not end before it has done everything.
constexpr int kWithoutFault = 60;

std::filesystem::path build() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
}

std::string access(const std::string& ifc) {
  return "proxy_info: libRelayAccess.so createRelayProxy " + ifc + " zerva_simple_rmi\n" +
         "invoker_info: libRelayAccess.so createRelayInvoker " + ifc + " zerva_simple_rmi\n";
}

std::string registry() {
  return "service_instance: MT libServiceRegistry.so createServiceRegistry "
         "/zerva/serviceregistry ServiceRegistryIfc\n";
}

std::string libraries() {
  return " --lib-dir " + (build() / "plugins").string() + " --lib-dir " +
         (build() / "lib").string();
}

std::string startOf(const std::string& second) {
  return "start_process: " + (build() / "bin/zerva").string() + " run " + second +
         " --await /zerva/serviceregistry=5" + libraries() + "\n";
}

std::string firstHost() {
  return access("First") + access("Third") +
         "service_instance: MT libRelay.so createFirst /test/First First\n"
         "service_info: ST libRelay.so createThird /test/Third Third\n"
         "service_legacy: libBusy.so createBusy BusyIfc\n";
}

std::string secondHost() {
  return access("Second") + "service_instance: MT libRelay.so createSecond /test/Second Second\n";
}

/** With which codes a host may end that met a fault. */
bool isAnEnd(int code) {
  constexpr std::array kEnds{0, 1, 3, 4, 5, 6, 10, 11};
  return std::find(kEnds.begin(), kEnds.end(), code) != kEnds.end();
}

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::map<std::string, std::string> environmentFor(bool hasFault,
                                                  std::map<std::string, std::string> more) {
  more.emplace("ZERVA_BUSY_SECONDS", std::to_string(hasFault ? kBusySeconds : kWithoutFault));
  more.emplace("ZERVA_FAULT_STACK", "1");
  // A life that deletes nothing, since a request is still under way, waits for no thread either.
  const char* const options = std::getenv("TSAN_OPTIONS");
  more.emplace("TSAN_OPTIONS",
               (options == nullptr ? "" : std::string(options) + ":") + "report_thread_leaks=0");
  return more;
}

}  // namespace

FaultyLife::FaultyLife(const std::string& kind, long nth,
                       const std::map<std::string, std::string>& environment)
    : kind_(kind),
      nth_(nth),
      other_(away() ? other() : nullptr),
      process_(build() / "bin/faulty_life", arguments(kind_.substr(0, kind_.find('_')), nth_),
               environmentFor(hasFault(), environment)) {}

std::unique_ptr<ChildProcess> FaultyLife::other() const {
  auto host = std::make_unique<ChildProcess>(
      build() / "bin/zerva",
      std::vector<std::string>{
          "run", directory_.write("second.directives", registry() + secondHost()), "--bus",
          directory_.file("bus"), "--lib-dir", build() / "plugins", "--lib-dir", build() / "lib"});
  // From then on it ends in order when it is told to.
  host->waitForOutput("up       Second");
  return host;
}

std::vector<std::string> FaultyLife::arguments(const std::string& call, long nth) const {
  std::string directives = firstHost();
  if (!away()) {
    const std::string second = directory_.write("second.directives", secondHost());
    directives = registry() + startOf(second) + directives;
  }
  const bool faulty = nth > 0 || call == "space";
  std::vector<std::string> all{call,
                               std::to_string(nth),
                               directory_.write("first.directives", directives),
                               directory_.file("bus"),
                               std::to_string(faulty ? kSeconds : kWithoutFault),
                               std::to_string(kMoreSeconds)};
  if (away()) all.emplace_back("/zerva/serviceregistry");
  return all;
}

std::string FaultyLife::complaint() {
  const std::string found = wrong();
  if (found.empty()) return found;
  return "with the fault " + kind_ + " " + std::to_string(nth_) + " " + found + "\n" +
         process_.output() + process_.errors();
}

std::string FaultyLife::wrong() {
  const auto code = process_.wait(std::chrono::seconds(kSeconds + kWithoutFault * kSlower));
  const bool killed = kind_ == "death_away" && reached() && code == 128 + SIGKILL;
  std::string found = killed ? wrongWithAnother() : wrongWith(code);
  return found.empty() ? wrongWithWhatIsLeft() : found;
}

/** @param code the one that it ended with, if it did. */
std::string FaultyLife::wrongWith(std::optional<int> code) const {
  if (!code) return "it does not end, not even by its watchdog";
  if (*code == Watchdog::exitCode) return "it hangs";
  if (holds(process_.errors(), "Sanitizer: ") && !leaksWhatWasMade()) {
    return "a sanitizer complains";
  }
  if (!isAnEnd(*code)) return "it ends with " + std::to_string(*code);
  return wrongInWhatIsSaid(*code);
}

std::string FaultyLife::wrongWithAnother() const {
  ChildProcess another(build() / "bin/faulty_life", arguments("none", 0),
                       environmentFor(false, {}));
  const auto code = another.wait(std::chrono::seconds(kWithoutFault * kSlower));
  if (code == 0 && holds(another.output(), "busy: and back: done")) return {};
  return "the next life is harmed\n" + another.output() + another.errors();
}

std::string FaultyLife::wrongWithWhatIsLeft() {
  if (!process_.survivors().empty()) return "a process is left";
  if (other_ != nullptr) {
    other_->signal(SIGTERM);
    if (other_->wait() != 0) return "the second host is harmed\n" + other_->errors();
    const std::string disorder = LifeOutput::disorderOfSecond(other_->output());
    if (!disorder.empty()) return "in the second host " + disorder + "\n" + other_->output();
  }
  std::error_code none;
  for (const auto& file : std::filesystem::directory_iterator(directory_.file("bus"), none)) {
    return "a file is left: " + file.path().filename().string();
  }
  return {};
}

std::string FaultyLife::lost() const {
  return LifeOutput(process_.output(), process_.errors(), !away()).lost();
}

/** What follows from its output when it ended by itself with this code. */
std::string FaultyLife::wrongInWhatIsSaid(int code) const {
  const LifeOutput life(process_.output(), process_.errors(), !away());
  const std::string lost = life.lost();
  if ((code != 0 || !lost.empty()) && !life.tells()) {
    return "nobody is told what failed, code " + std::to_string(code) + ", missing: " + lost;
  }
  const std::string disorder = life.disorder(failsWhatIsMade());
  if (!disorder.empty()) return disorder;
  return away() ? "" : LifeOutput::disorderOfSecond(process_.output());
}

bool FaultyLife::reached() const { return holds(process_.errors(), "the fault comes now"); }

bool FaultyLife::inMakingAProxy() const {
  const std::string errors = process_.errors();
  // The stack of the fault comes first; the watchdog's have the same function for who waits.
  const std::string stack = errors.substr(0, errors.find("watchdog: "));
  return kind_ == "proxy" ? reached() : holds(stack, "initProxyAndAddToRepository");
}

std::string FaultyLife::waits() const {
  const std::string errors = process_.errors();
  const std::size_t watchdog = errors.find("watchdog: ");
  if (watchdog == std::string::npos) return {};
#if defined(__SANITIZE_THREAD__)
  // It puts signals off until a thread does not wait any more, so the watchdog gets no stack of
  // one that does. Where the fault came is all that is known.
  return errors.substr(watchdog) + faultStack();
#else
  return errors.substr(watchdog);
#endif
}

std::string FaultyLife::faultStack() const {
  const std::string errors = process_.errors();
  const std::string mark = "the fault comes now\n";
  const std::size_t begin = errors.find(mark);
  if (begin == std::string::npos) return {};
  std::istringstream lines(errors.substr(begin + mark.size()));
  std::string stack;
  // Each names an address, in brackets at its end.
  for (std::string line; std::getline(lines, line) && line.ends_with(']');) stack += line + "\n";
  return stack;
}

/**
 * Known limit: what the configurator has made, or has had made, and not recorded yet when there is
 * no memory is nobody's.
 */
bool FaultyLife::failsWhatIsMade() const {
  return (kind_.starts_with("new") || kind_ == "malloc") &&
         holds(faultStack(), "19ServiceConfigurator");
}

bool FaultyLife::leaksWhatWasMade() const {
  const std::string errors = process_.errors();
  const std::size_t report = errors.find("LeakSanitizer: ");
  if (report == std::string::npos || !failsWhatIsMade()) return false;
  // Of what nothing leads to, and of what only that leads to.
  const std::string mark = "irect leak of ";
  for (std::size_t at = errors.find(mark, report); at != std::string::npos;) {
    const std::size_t next = errors.find(mark, at + mark.size());
    if (!holds(errors.substr(at, next - at), " in ServiceConfigurator::")) return false;
    at = next;
  }
  return true;
}

bool FaultyLife::hung() {
  constexpr int kStillBusy = 7;
  const auto code = process_.wait(std::chrono::seconds(kSeconds + kWithoutFault * kSlower));
  return code == Watchdog::exitCode || code == kStillBusy;
}

long FaultyLife::calls() const {
  const std::string output = process_.output();
  const std::size_t at = output.rfind("calls ");
  return at == std::string::npos ? 0 : std::stol(output.substr(at + 6));
}

}  // namespace zerva
