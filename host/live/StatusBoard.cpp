#include "host/live/StatusBoard.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "host/DirectiveLines.h"

namespace zerva {
namespace {

using Tokens = std::vector<std::string>;

double secondsSince(StatusBoard::Clock::time_point then) {
  return std::chrono::duration<double>(StatusBoard::Clock::now() - then).count();
}

/** @returns the token at a place, or nothing where a line is too short. */
std::string at(const Tokens& tokens, std::size_t place) {
  return place < tokens.size() ? tokens[place] : std::string();
}

/** Some lists of interfaces end with the fill of a line that was too short. */
std::string trimmed(const std::string& list) {
  return list.substr(0, list.find_last_not_of(' ') + 1);
}

/** @returns the service of a line, or nothing when it is about something else. */
std::optional<ServiceStatus> serviceOf(const Tokens& tokens) {
  const std::string keyword = at(tokens, 0);
  const bool legacy = keyword == "service_legacy";
  if (!legacy && keyword != "service_instance" && keyword != "service_info") return std::nullopt;
  const bool given = at(tokens, 1) == "MT" || at(tokens, 1) == "ST";
  std::size_t place = given ? 2 : 1;
  ServiceStatus service;
  service.library = at(tokens, place++);
  service.creator = at(tokens, place++);
  // Those of a legacy one are counted without the mode, and so its creator may be among them.
  place = legacy ? 3 : place;
  if (!legacy) service.channel = at(tokens, place++);
  for (; place < tokens.size(); ++place) {
    if (!service.interfaces.empty()) service.interfaces += ' ';
    service.interfaces += tokens[place];
  }
  service.interfaces = trimmed(service.interfaces);
  service.mode = legacy ? "legacy" : given ? tokens[1] : "MT";
  if (keyword == "service_info") service.mode += ", lazy";
  return service;
}

bool sameLine(const ServiceStatus& one, const ServiceStatus& other) {
  return one.library == other.library && one.creator == other.creator &&
         one.channel == other.channel;
}

bool isNotMade(const ServiceStatus& service) {
  return service.state == ServiceState::Lazy || service.state == ServiceState::Failed;
}

bool isLazyOne(const ServiceStatus& service) {
  return service.mode.find("lazy") != std::string::npos;
}

void setWhereKnown(std::string& field, const std::string& value) {
  if (!value.empty()) field = value;
}

}  // namespace

StatusBoard::StatusBoard() : began_(Clock::now()) {}

void StatusBoard::enter(const std::string& phase) {
  const std::lock_guard lock(mutex_);
  phase_ = phase;
  if (phase != "stopping") return;
  for (Place place = 0; place < rows_.size(); ++place) {
    const ServiceState state = rows_[place].service.state;
    if (state == ServiceState::Running || state == ServiceState::Initialising) {
      become(place, ServiceState::Stopping);
    }
  }
}

void StatusBoard::awaits(const std::string& what) {
  const std::lock_guard lock(mutex_);
  awaits_ = what;
}

void StatusBoard::expect(const std::string& file) {
  std::vector<Row> rows;
  for (const DirectiveLine& line :
       readDirectiveLines(file).value_or(std::vector<DirectiveLine>())) {
    if (auto service = serviceOf(line.tokens)) rows.push_back({*std::move(service), Clock::now()});
  }
  const std::lock_guard lock(mutex_);
  file_ = file;
  rows_ = std::move(rows);
}

StatusBoard::Place StatusBoard::begins(const ServiceStatus& service) {
  const std::lock_guard lock(mutex_);
  const Place place = placeOf(service);
  become(place, ServiceState::Initialising);
  return place;
}

void StatusBoard::isLazy(const ServiceStatus& service) {
  const std::lock_guard lock(mutex_);
  become(placeOf(service), ServiceState::Lazy);
}

std::optional<StatusBoard::Place> StatusBoard::lazyBegins(const std::string& channel) {
  const std::lock_guard lock(mutex_);
  const auto fits = [&](const Row& row) {
    return isLazyOne(row.service) && isNotMade(row.service) && row.service.channel == channel;
  };
  const auto found = std::find_if(rows_.begin(), rows_.end(), fits);
  if (found == rows_.end() || std::any_of(found + 1, rows_.end(), fits)) return std::nullopt;
  const auto place = static_cast<Place>(found - rows_.begin());
  become(place, ServiceState::Initialising);
  return place;
}

std::optional<StatusBoard::Place> StatusBoard::lazyRecorded(const std::string& channel,
                                                            const std::string& interfaces) {
  const std::lock_guard lock(mutex_);
  const auto place = find([&](const ServiceStatus& service) {
    return isLazyOne(service) && isNotMade(service) && service.channel == channel &&
           service.interfaces == trimmed(interfaces);
  });
  if (place) become(*place, ServiceState::Initialising);
  return place;
}

void StatusBoard::advances(Place place, const std::string& doing) {
  const std::lock_guard lock(mutex_);
  rows_[place].service.doing = doing;
}

void StatusBoard::recorded(Place place, const std::string& type, const std::string& mode) {
  const std::lock_guard lock(mutex_);
  setWhereKnown(rows_[place].service.type, type);
  setWhereKnown(rows_[place].service.mode, mode);
}

void StatusBoard::isUp(Place place, std::chrono::milliseconds init) {
  const std::lock_guard lock(mutex_);
  // What comes up while the process stops is told to stop, too.
  if (rows_[place].service.state != ServiceState::Stopping) become(place, ServiceState::Running);
  rows_[place].service.initSeconds = std::chrono::duration<double>(init).count();
}

void StatusBoard::failed(Place place, const std::string& why) {
  const std::lock_guard lock(mutex_);
  become(place, ServiceState::Failed);
  rows_[place].service.why = why;
}

void StatusBoard::lazyFailed(const ServiceStatus& known, const std::string& why) {
  const std::lock_guard lock(mutex_);
  const auto place = find([&](const ServiceStatus& service) {
    return isLazyOne(service) && isNotMade(service) && service.channel == known.channel &&
           (known.library.empty() || service.library == known.library) &&
           (known.creator.empty() || service.creator == known.creator);
  });
  if (!place) return;
  become(*place, ServiceState::Failed);
  rows_[*place].service.why = why;
}

void StatusBoard::startEnds() {
  const std::lock_guard lock(mutex_);
  for (Place place = 0; place < rows_.size(); ++place) {
    if (rows_[place].service.state != ServiceState::Waiting) continue;
    become(place, ServiceState::Failed);
    rows_[place].service.why = "its line brought nothing up";
  }
}

void StatusBoard::deleted() {
  const std::lock_guard lock(mutex_);
  for (Place place = 0; place < rows_.size(); ++place) {
    if (rows_[place].service.state != ServiceState::Failed) become(place, ServiceState::Ended);
  }
}

ProcessStatus StatusBoard::read() const {
  const std::lock_guard lock(mutex_);
  ProcessStatus status;
  status.process = static_cast<int>(getpid());
  status.file = file_;
  status.phase = phase_;
  status.waitsFor = awaits_;
  status.upSeconds = secondsSince(began_);
  for (const Row& row : rows_) {
    status.services.push_back(row.service);
    status.services.back().stateSeconds = secondsSince(row.since);
  }
  return status;
}

/** Called with the lock held, as those below. @returns the first row that fits. */
std::optional<StatusBoard::Place> StatusBoard::find(
    const std::function<bool(const ServiceStatus&)>& fits) const {
  const auto found =
      std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) { return fits(row.service); });
  if (found == rows_.end()) return std::nullopt;
  return static_cast<Place>(found - rows_.begin());
}

/** @returns the row that waits for this line, or a new one when the file was not read before. */
StatusBoard::Place StatusBoard::placeOf(const ServiceStatus& service) {
  const auto waiting = find([&](const ServiceStatus& row) {
    return row.state == ServiceState::Waiting && sameLine(row, service);
  });
  if (!waiting) rows_.push_back({service, Clock::now()});
  const Place place = waiting.value_or(rows_.size() - 1);
  rows_[place].service.interfaces = trimmed(service.interfaces);
  setWhereKnown(rows_[place].service.mode, service.mode);
  return place;
}

void StatusBoard::become(Place place, ServiceState state) {
  Row& row = rows_[place];
  row.service.state = state;
  row.service.doing.clear();
  row.service.why.clear();
  row.since = Clock::now();
}

}  // namespace zerva
