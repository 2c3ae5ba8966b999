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
  RemoteChannels* remote = nullptr;
  {
    const std::lock_guard lock(mutex_);
    const auto found = mailboxes_.find(name);
    if (found != mailboxes_.end()) {
      for (const auto& mailbox : found->second) {
        if (mailbox->isServed()) {
          return mailbox;
        }
      }
    }
    remote = remote_;
  }
  return remote != nullptr ? remote->find(name) : nullptr;
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

void ChannelDirectory::setRemoteChannels(RemoteChannels* remote) {
  const std::lock_guard lock(mutex_);
  remote_ = remote;
}

std::vector<std::shared_ptr<Mailbox>> ChannelDirectory::listed(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  const auto found = mailboxes_.find(name);
  return found != mailboxes_.end() ? found->second : std::vector<std::shared_ptr<Mailbox>>();
}

}  // namespace zerva
