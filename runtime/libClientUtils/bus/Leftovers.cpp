#include "runtime/libClientUtils/bus/Leftovers.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <set>
#include <string_view>
#include <vector>

#include "runtime/libClientUtils/bus/BusId.h"
#include "runtime/libClientUtils/bus/FileDescriptor.h"

namespace zerva {

namespace {

enum class File { Missing, Locked, Abandoned };

/** A process that has ended holds no lock any more, however it ended. */
File look(const BusDirectory& directory, const std::string& name, FileDescriptor& file) {
  file = directory.open(name, O_RDONLY);
  if (!file) {
    return errno == ENOENT ? File::Missing : File::Locked;
  }
  // Shared: another one that looks at the same moment does not take it for the owner.
  return ::flock(file.get(), LOCK_SH | LOCK_NB) == 0 ? File::Abandoned : File::Locked;
}

/** @returns whether the name is still that of the file that was looked at. */
bool sameFile(const FileDescriptor& file) {
  struct stat status {};
  return ::fstat(file.get(), &status) == 0 && status.st_nlink > 0;
}

void removeUnfinished(const BusDirectory& directory, const std::string& name) {
  FileDescriptor file;
  if (look(directory, name, file) == File::Abandoned) {
    // One that is only just being made fails to take its place then, and is made again.
    directory.remove(name);
  }
}

}  // namespace

bool removeLeftover(const BusDirectory& directory, const std::string& id) {
  FileDescriptor file;
  const std::string journal = BusDirectory::journalName(id);
  const File found = look(directory, journal, file);
  // A file that was replaced meanwhile lost its lock by that, and its owner lives.
  if (found == File::Locked || (found == File::Abandoned && !sameFile(file))) {
    return false;
  }
  // The list of names comes before the socket and goes after it, so a socket alone is a leftover.
  directory.remove(BusDirectory::socketName(id));
  directory.remove(journal);
  return true;
}

void removeLeftovers(const BusDirectory& directory) {
  std::set<std::string> ids;
  for (const std::string& name : directory.list().value_or(std::vector<std::string>())) {
    const std::string id = name.substr(0, name.find('.'));
    if (!isBusId(id)) {
      continue;  // not ours, whatever it is
    }
    if (name == BusDirectory::unfinishedName(id)) {
      removeUnfinished(directory, name);
    } else {
      ids.insert(id);
    }
  }
  for (const std::string& id : ids) {
    removeLeftover(directory, id);
  }
}

}  // namespace zerva
