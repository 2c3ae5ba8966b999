#include "bench/peers/SdBus.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "bench/ours/TempDirectory.h"

namespace zerva::bench {

namespace {

constexpr const char* kName = "zerva.Bench";
constexpr const char* kPath = "/echo";
constexpr const char* kInterface = "zerva.Echo";
constexpr const char* kMethod = "Echo";
constexpr std::chrono::milliseconds kLook{5};
constexpr int kLooks = 2000;

int answerEcho(sd_bus_message* message, void* /*data*/, sd_bus_error* /*error*/) {
  const char* text = nullptr;
  const int read = sd_bus_message_read(message, "s", &text);
  return read < 0 ? read : sd_bus_reply_method_return(message, "s", text);
}

sd_bus* connectTo(const std::string& address) {
  sd_bus* bus = nullptr;
  if (sd_bus_new(&bus) < 0 || sd_bus_set_address(bus, address.c_str()) < 0 ||
      sd_bus_set_bus_client(bus, 1) < 0 || sd_bus_start(bus) < 0) {
    throw std::runtime_error("the daemon cannot be reached");
  }
  return bus;
}

}  // namespace

SdBus::~SdBus() { sd_bus_flush_close_unref(near_); }

void SdBus::expect(int result, const char* what) {
  if (result < 0) throw std::runtime_error(std::string(what) + " failed");
}

void SdBus::call(const std::string& data) {
  sd_bus_message* reply = nullptr;
  const char* text = nullptr;
  expect(sd_bus_call_method(near_, destination_, kPath, kInterface, kMethod, nullptr, &reply, "s",
                            data.c_str()),
         "a call");
  expect(sd_bus_message_read(reply, "s", &text), "reading an answer");
  const bool right = data == text;
  sd_bus_message_unref(reply);
  if (!right) throw std::runtime_error("a wrong answer");
}

void SdBus::serve(sd_bus* bus) {
  static const sd_bus_vtable table[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("Echo", "s", "s", &answerEcho, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};
  expect(sd_bus_add_object_vtable(bus, nullptr, kPath, kInterface, table, nullptr), "the object");
  for (;;) {
    const int did = sd_bus_process(bus, nullptr);
    if (did < 0) return;  // the connection has ended
    if (did == 0 && sd_bus_wait(bus, UINT64_MAX) < 0) return;
  }
}

SdBusDirect::SdBusDirect() {
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends_) != 0) {
    throw std::runtime_error("no socket can be made");
  }
  process_ = std::make_unique<OtherProcess>([this](const OtherProcess::Stay& /*stay*/) {
    ::close(ends_[0]);
    sd_bus* bus = nullptr;
    sd_id128_t id{};
    expect(sd_id128_randomize(&id), "an id");
    expect(sd_bus_new(&bus), "a bus");
    expect(sd_bus_set_fd(bus, ends_[1], ends_[1]), "a socket of a bus");
    expect(sd_bus_set_server(bus, 1, id), "a server");
    expect(sd_bus_start(bus), "the start of a server");
    serve(bus);
  });
  ::close(ends_[1]);
  expect(sd_bus_new(&near_), "a bus");
  expect(sd_bus_set_fd(near_, ends_[0], ends_[0]), "a socket of a bus");
  expect(sd_bus_start(near_), "the start of a bus");
}

SdBusDirect::~SdBusDirect() {
  // The other process ends when its connection does.
  sd_bus_flush_close_unref(near_);
  near_ = nullptr;
}

SdBusThroughDaemon::SdBusThroughDaemon()
    : directory_(makeTempDirectory()), address_("unix:path=" + directory_ + "/bus") {
  startDaemon();
  process_ = std::make_unique<OtherProcess>([this](const OtherProcess::Stay& stay) {
    sd_bus* const bus = connectTo(address_);
    expect(sd_bus_request_name(bus, kName, 0), "a name");
    std::thread over([&] {
      stay.untilOver();
      _exit(0);
    });
    serve(bus);
    over.join();
  });
  process_->awaitReady();
  near_ = connectTo(address_);
  destination_ = kName;
}

SdBusThroughDaemon::~SdBusThroughDaemon() {
  process_.reset();
  ::kill(daemon_, SIGTERM);
  int status = 0;
  ::waitpid(daemon_, &status, 0);
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

/** A daemon that nothing of the machine's configuration touches. */
void SdBusThroughDaemon::startDaemon() {
  const std::string configuration = directory_ + "/daemon.conf";
  std::ofstream(configuration) << "<!DOCTYPE busconfig PUBLIC "
                                  "\"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
                                  "\"http://www.freedesktop.org/standards/dbus/1.0/"
                                  "busconfig.dtd\">\n<busconfig><listen>"
                               << address_
                               << "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                                  "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
                                  "<allow receive_sender=\"*\"/><allow own=\"*\"/>"
                                  "<allow user=\"*\"/></policy></busconfig>\n";
  daemon_ = ::fork();
  if (daemon_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // It complains that it may not raise a limit that is not needed here.
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDERR_FILENO);
    ::execlp("dbus-daemon", "dbus-daemon", ("--config-file=" + configuration).c_str(), "--nofork",
             "--nopidfile", "--nosyslog", nullptr);
    _exit(127);
  }
  for (int i = 0; i < kLooks && !std::filesystem::exists(directory_ + "/bus"); ++i) {
    std::this_thread::sleep_for(kLook);
  }
  if (!std::filesystem::exists(directory_ + "/bus")) {
    throw std::runtime_error("dbus-daemon does not start");
  }
}

}  // namespace zerva::bench
