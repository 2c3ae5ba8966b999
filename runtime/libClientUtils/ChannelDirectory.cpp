#include "runtime/libClientUtils/ChannelDirectory.h"

#include <algorithm>

#include "runtime/libClientUtils/Mailbox.h"

namespace zerva {

ChannelDirectory& ChannelDirectory::instance() {
  // Never destroyed: a thread that outlives main may still send.
  static ChannelDirectory& directory = *new ChannelDirectory;
  return directory;
}

void ChannelDirectory::add(const std::shared_ptr<Mailbox>& mailbox) {
  const std::lock_guard lock(mutex_);
  mailboxes_[mailbox->name()].push_back(mailbox);
}

void ChannelDirectory::remove(const Mailbox& mailbox) {
  const std::lock_guard lock(mutex_);
  const auto found = mailboxes_.find(mailbox.name());
  if (found == mailboxes_.end()) {
    return;
  }
  auto& ofName = found->second;
  ofName.erase(std::remove_if(ofName.begin(), ofName.end(),
                              [&](const auto& listed) { return listed.get() == &mailbox; }),
               ofName.end());
  if (ofName.empty()) {
    mailboxes_.erase(found);
  }
}

std::shared_ptr<Destination> ChannelDirectory::find(const std::string& name) const {
  if (auto here = findHere(name)) {
    return here;
  }
  const auto remote = remoteChannels();
  return remote != nullptr ? remote->find(name) : nullptr;
}

std::shared_ptr<Destination> ChannelDirectory::findHere(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  const auto found = mailboxes_.find(name);
  if (found != mailboxes_.end()) {
    for (const auto& mailbox : found->second) {
      if (mailbox->isServed()) {
        return mailbox;
      }
    }
  }
  return nullptr;
}

std::vector<std::string> ChannelDirectory::servedHere() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names;
  for (const auto& [name, mailboxes] : mailboxes_) {
    if (std::any_of(mailboxes.begin(), mailboxes.end(),
                    [](const auto& mailbox) { return mailbox->isServed(); })) {
      names.push_back(name);
    }
  }
  return names;
}

void ChannelDirectory::servedMayHaveChanged(const std::string& name) const {
  if (const auto remote = remoteChannels()) {
    remote->servedMayHaveChanged(name);
  }
}

std::shared_ptr<Mailbox> ChannelDirectory::findServing(const std::string& name,
                                                       const Executable* object) const {
  const auto candidates = listed(name);
  for (const auto wanted : {Mailbox::Serves::Object, Mailbox::Serves::OneInTheMaking}) {
    for (const auto& mailbox : candidates) {
      if (mailbox->serves(object) == wanted) {
        return mailbox;
      }
    }
  }
  return nullptr;
}

void ChannelDirectory::setRemoteChannels(std::shared_ptr<RemoteChannels> remote) {
  const std::lock_guard lock(mutex_);
  remote_.swap(remote);
}

std::shared_ptr<RemoteChannels> ChannelDirectory::remoteChannels() const {
  const std::lock_guard lock(mutex_);
  return remote_;
}

std::vector<std::shared_ptr<Mailbox>> ChannelDirectory::listed(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  const auto found = mailboxes_.find(name);
  return found != mailboxes_.end() ? found->second : std::vector<std::shared_ptr<Mailbox>>();
}

}  // namespace zerva
