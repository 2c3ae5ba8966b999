#pragma once

#include <string>

namespace zerva::fault {

// One call of the system that is to fail, once. The functions that can fail are defined in the
// program itself, so that its libraries call those instead of the system's; each counts its calls
// and asks here.

/** Which functions count together. */
enum class Kind {
  None,
  New,            // operator new
  Malloc,         // malloc, calloc and realloc of the C library; not where it is instrumented
  DlOpen,         // dlopen: there is no such file
  DlSym,          // dlsym: there is no such symbol
  Thread,         // pthread_create: EAGAIN
  Socket,         // socket: EMFILE
  Bind,           // bind: ENOSPC
  Listen,         // listen: ENOBUFS
  Connect,        // connect: EAGAIN
  Accept,         // accept4: EMFILE
  Send,           // send and sendmsg: ECONNRESET
  SendPart,       // they take one byte and no more
  SendFull,       // they: EAGAIN
  Receive,        // recv and recvmsg: ECONNRESET
  Spawn,          // posix_spawnp: EAGAIN
  OpenFile,       // opening the directive file: EMFILE
  ReadFile,       // reading the directive file: EIO
  OpenBusFile,    // opening a file of the bus: EMFILE
  BusFileFull,    // the same: ENOSPC
  BusFileQuota,   // the same: EDQUOT
  BusFileDenied,  // the same: EACCES
  DiskFull,       // writing to a file that is not a standard one: ENOSPC, from that call on
  Descriptor,     // eventfd, timerfd_create, epoll_create1, signalfd, pidfd_open: EMFILE
  Proxy,          // the creator of a proxy throws std::bad_alloc
  Death,          // any of the calls above but those for memory: the process is killed before it
  Clock           // each look at the wall clock finds it put forward or back, by up to a day
};

/** @returns the kind that has a name, which is as above with small letters; None when none has. */
Kind kindOf(const std::string& name);

/** Chooses which call fails: the Nth of a kind, counted from 1. */
void choose(Kind kind, long nth);

/** Begins to count, or ends it. */
void count(bool on);

/**
 * Counts a call. @returns whether it is the one that is to fail; then standard error says so, and
 * with ZERVA_FAULT_STACK in the environment also where.
 */
bool hits(Kind kind);

/** Counts a call. @returns whether it is the one that is to fail or one that comes after it. */
bool hitsFrom(Kind kind);

/** @returns whether a kind was chosen, whichever call. */
bool isChosen(Kind kind);

/** @returns how many calls were counted of the kind that was chosen. */
long calls();

/** @returns the system's own function that a function of this program stands before. */
void* systems(const char* name);

}  // namespace zerva::fault
