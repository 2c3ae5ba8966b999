// A process on the bus: serves its control channel, says "ready", and does what it is asked there
// until it is told to end. What follows a command may hold any bytes.
//
//   serve KIND MODE NAME     serves a channel: echo, hold (never answers), ask, record, size
//   wind NAME                serves a wind sensor, that is called by its interface
//   close NAME               serves it no more
//   ask CHANNEL|DATA         asks a channel and answers with what comes back
//   outside                  closes the bus to the outside
//   descriptors              how many are open
//   end                      ends in order

#include <dirent.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "runtime/libClientUtils/ProtocolRepository.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libClientUtils/bus/Bus.h"
#include "tests/platform/Bus/WindSensor.h"
#include "tests/support/ExecutorWorld.h"

namespace {

class Ending {
 public:
  void demand() {
    const std::lock_guard lock(mutex_);
    demanded_ = true;
    changed_.notify_all();
  }
  void await() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return demanded_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool demanded_ = false;
};

std::string askFrom(const std::string& text) {
  const std::size_t bar = text.find('|');
  const Answer answer = ask(text.substr(0, bar), text.substr(bar + 1));
  return answer.ok ? answer.data : "error: " + answer.error;
}

std::size_t openDescriptors() {
  DIR* const directory = opendir("/proc/self/fd");
  std::size_t count = 0;
  while (readdir(directory) != nullptr) ++count;
  closedir(directory);
  return count - 3;
}

class Partner {
 public:
  Partner(const std::string& directory, const std::string& control) : bus_(directory) {
    services_.push_back(std::make_unique<ScriptedService>(
        [this](const std::string& request) { return command(request); }));
    world_.context.invoker = [this](const std::string& interface, const std::string&) {
      return interface == "WindSensor" ? &invoker_ : nullptr;
    };
    world_.context.adapter = [this](const std::string& protocol) {
      return protocols_.findProtocolAdapter(protocol);
    };
    world_.run(services_.back().get(), control, Mode::MT);
  }

  void awaitEnd() {
    ending_.await();
    world_.end();
  }

 private:
  static std::string takeWord(std::string& text) {
    const std::size_t blank = text.find(' ');
    std::string word = text.substr(0, blank);
    text = blank == std::string::npos ? "" : text.substr(blank + 1);
    return word;
  }

  std::string command(std::string text) {
    const std::string verb = takeWord(text);
    if (verb == "ask") return askFrom(text);
    if (verb == "descriptors") return std::to_string(openDescriptors());
    if (verb == "outside") bus_.closeToOutside();
    if (verb == "end") ending_.demand();
    const std::lock_guard lock(mutex_);
    if (verb == "serve") serve(text);
    if (verb == "wind") world_.run(&sensor_, text, Mode::MT);
    if (verb == "close") executors_.at(text)->shutdown();
    return "done";
  }

  void serve(std::string text) {
    const std::string kind = takeWord(text);
    const Mode mode = takeWord(text) == "ST" ? Mode::ST : Mode::MT;
    services_.push_back(std::make_unique<ScriptedService>(
        [this, kind](const std::string& request) { return answer(kind, request); }));
    executors_[text] = &world_.run(services_.back().get(), text, mode);
  }

  std::string answer(const std::string& kind, const std::string& request) {
    if (kind == "hold") {
      std::cout << "held" << std::endl;
      Ending().await();
    }
    if (kind == "ask") return askFrom(request);
    if (kind == "size") return std::string(std::stoul(request), 'x');
    if (kind == "record") {
      const std::lock_guard lock(mutex_);
      return recorded_ += request;
    }
    return kind == "process" ? std::to_string(getpid()) : request;
  }

  zerva::Bus bus_;
  zerva::WindSensorService sensor_;
  zerva::WindSensorInvoker invoker_;
  ProtocolRepository protocols_;
  std::vector<std::unique_ptr<ScriptedService>> services_;
  ExecutorWorld world_{16};
  std::mutex mutex_;
  std::map<std::string, ServiceExecutor*> executors_;
  std::string recorded_;
  Ending ending_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  if (argc > 3) zerva::setReplyTimeout(std::chrono::milliseconds(std::stol(argv[3])));
  Partner partner(argv[1], argv[2]);
  std::cout << "ready" << std::endl;
  partner.awaitEnd();
  return 0;
}
