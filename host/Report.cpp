#include "host/Report.h"

#include "host/Console.h"

namespace zerva {
namespace {

std::string amount(unsigned long number, const std::string& what, const std::string& ending = "s") {
  return std::to_string(number) + " " + what + (number == 1 ? "" : ending);
}

std::string nameOf(const ServiceEntry& service) {
  // The list of a legacy service ends in blanks where its line has few fields.
  const std::size_t end = service.interfaces.find_last_not_of(' ');
  return end == std::string::npos ? "(no interface)" : service.interfaces.substr(0, end + 1);
}

std::string placeOf(const ServiceEntry& service) {
  // The type says which library it comes from; before there is one, the directive does.
  const std::string what = service.type.empty() ? service.library : service.type;
  const std::string channel = service.channel.empty() ? "no channel" : "channel " + service.channel;
  return what + ", " + channel + (service.mode.empty() ? "" : ", " + service.mode);
}

std::string nameOf(const std::string& program, int id) {
  return "process " + program + ", id " + std::to_string(id);
}

}  // namespace

Report::Report(Console& console) : console_(console) {}

void Report::remark(const std::string& text) { console_.line("zerva: " + text); }

void Report::serviceUp(const ServiceEntry& service, std::chrono::milliseconds init) {
  console_.line(console_.good("up") + "       " + nameOf(service) + ": " + placeOf(service) +
                ", init took " + std::to_string(init.count()) + " ms");
}

void Report::serviceAwaited(const ServiceEntry& service) {
  console_.line("waiting  " + nameOf(service) + ": " + placeOf(service) +
                ", is made when it is first used");
}

void Report::serviceStopped(const ServiceEntry& service) {
  console_.line("stopped  " + nameOf(service));
}

void Report::serviceDeleted(const ServiceEntry& service) {
  console_.line("deleted  " + nameOf(service));
}

void Report::processUp(const std::string& program, int id) {
  console_.line(console_.good("up") + "       " + nameOf(program, id));
}

void Report::processEnded(const std::string& program, int id, const std::string& how) {
  console_.line("ended    " + nameOf(program, id) + ": " + how);
}

void Report::failed(const std::string& what, const std::string& why) {
  console_.line(console_.bad("failed") + "   " + what + ": " + why);
}

void Report::summary(const Summary& summary) {
  const auto both = [](std::size_t services, std::size_t processes) {
    return amount(services, "service") + " and " + amount(processes, "started process", "es");
  };
  const std::string up = both(summary.services.up, summary.processesUp);
  const std::string down = both(summary.services.down, summary.processesDown);
  const std::string what =
      up == down ? up + " came up and went down" : up + " came up, " + down + " went down";
  remark(what + ", " + amount(summary.calls, "call") + ", " + amount(summary.failures, "failure"));
}

}  // namespace zerva
