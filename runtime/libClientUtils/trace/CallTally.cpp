#include "runtime/libClientUtils/trace/CallTally.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "runtime/libClientUtils/ExceptionText.h"

namespace zerva {
namespace {

/** A key with its names, for the time of a visit. */
using Names = std::array<std::string, 4>;

Names namesOf(const CallKey& key) {
  return {std::string(key.service), std::string(key.channel), std::string(key.interface),
          std::string(key.method)};
}

struct Visited {
  CallFigures figures;
  bool changed = false;
};

}  // namespace

std::size_t CallTally::Hash::operator()(const CallKey& key) const {
  const std::hash<std::string_view> hash;
  std::size_t all = hash(key.method);
  // A method of a channel is seldom one of several interfaces.
  for (const std::string_view name : {key.channel, key.service}) all = all * 31 + hash(name);
  return all;
}

bool CallTally::add(unsigned which, const CallKey& key, std::int64_t duration,
                    bool failed) noexcept {
  Guarded& guarded = shares_[which % kShares];
  const std::size_t step = stepOf(duration);
  const std::lock_guard lock(guarded.mutex);
  Counts* counts = nullptr;
  const auto error = exceptionOf([&] { counts = findOrMake(guarded.share, key); });
  if (error || counts == nullptr) return false;
  ++counts->times[step];
  ++counts->count;
  if (failed) ++counts->failures;
  counts->total += duration;
  counts->changed = true;
  return true;
}

CallTally::Counts* CallTally::findOrMake(Share& share, const CallKey& key) const {
  const auto found = share.find(key);
  if (found != share.end()) return found->second.get();
  if (share.size() >= largestShare_) return nullptr;
  auto counts = std::make_unique<Counts>();
  std::string all;
  for (const std::string_view name : {key.service, key.channel, key.interface, key.method}) {
    all += name;
  }
  counts->names = std::make_shared<const std::string>(std::move(all));
  std::string_view names = *counts->names;
  const auto next = [&](std::string_view name) {
    const std::string_view kept = names.substr(0, name.size());
    names.remove_prefix(name.size());
    return kept;
  };
  CallKey kept;
  kept.service = next(key.service);
  kept.channel = next(key.channel);
  kept.interface = next(key.interface);
  kept.method = next(key.method);
  return share.emplace(kept, std::move(counts)).first->second.get();
}

void CallTally::clear() noexcept {
  for (Guarded& guarded : shares_) {
    const std::lock_guard lock(guarded.mutex);
    guarded.share.clear();
  }
}

/** Those who count wait meanwhile: not even memory is asked for. */
std::vector<CallTally::Copied> CallTally::copyOf(const Guarded& guarded, bool told) const {
  std::vector<Copied> copies;
  copies.reserve(largestShare_);
  const std::lock_guard lock(guarded.mutex);
  for (const auto& [key, counts] : guarded.share) {
    copies.push_back({key, *counts});
    if (told) counts->changed = false;
  }
  return copies;
}

void CallTally::visitChanged(const Visit& visit) {
  std::map<Names, Visited> all;
  for (const Guarded& guarded : shares_) {
    for (const auto& [key, counts] : copyOf(guarded, true)) {
      Visited& visited = all[namesOf(key)];
      addUp(counts, visited.figures);
      visited.changed = visited.changed || counts.changed;
    }
  }
  for (const auto& [names, visited] : all) {
    if (visited.changed) visit({names[0], names[1], names[2], names[3]}, visited.figures);
  }
}

void CallTally::visitAll(const Visit& visit) const {
  std::map<Names, CallFigures> all;
  for (const Guarded& guarded : shares_) {
    for (const auto& [key, counts] : copyOf(guarded, false)) addUp(counts, all[namesOf(key)]);
  }
  for (const auto& [names, figures] : all) {
    visit({names[0], names[1], names[2], names[3]}, figures);
  }
}

void CallTally::changeAll() noexcept {
  for (Guarded& guarded : shares_) {
    const std::lock_guard lock(guarded.mutex);
    for (const auto& [key, counts] : guarded.share) counts->changed = true;
  }
}

void CallTally::addUp(const Counts& counts, CallFigures& figures) {
  figures.count += counts.count;
  figures.failures += counts.failures;
  figures.total += counts.total;
  for (std::size_t step = 0; step < kSteps; ++step) {
    if (counts.times[step] > 0) figures.times[lastOf(step)] += counts.times[step];
  }
}

std::size_t CallTally::stepOf(std::int64_t duration) {
  if (duration < 4) return static_cast<std::size_t>(std::max<std::int64_t>(0, duration));
  const auto number = static_cast<std::uint64_t>(duration);
  const auto power = static_cast<unsigned>(std::bit_width(number)) - 1;
  const std::size_t quarter = (number >> (power - 2)) & 3U;
  return std::min(kSteps - 1, std::size_t{4} * (power - 1) + quarter);
}

std::int64_t CallTally::lastOf(std::size_t step) {
  if (step < 4) return static_cast<std::int64_t>(step);
  const std::size_t power = step / 4 + 1;
  return (static_cast<std::int64_t>(4 + step % 4 + 1) << (power - 2)) - 1;
}

}  // namespace zerva
