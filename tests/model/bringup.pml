/*
 * Two callers ask at once for a lazy service whose `init` looks another one up and calls it, and is
 * called back meanwhile; serving, it does the same. The pool has one place.
 *
 * LAZY_MULTI makes the lazy service a multi-threaded one.
 */
#define EXECUTORS 3
#define REQUESTS 9
#define POOL_SIZE 1
#define INTERFACES 3

#define REGISTRY 0  /* single-threaded, running */
#define LAZY 1      /* finds and calls PLAIN while it is made, and again when it serves */
#define PLAIN 2     /* multi-threaded, running: calls back into LAZY */

#include "executors.pml"
#include "lookups.pml"

inline program(e, r, kind) {
  if
  :: e == LAZY && callerOf(r) == HOST ->
     call(e, r, kind, PLAIN);
     reached(1, "a lazy service served")
  :: e == PLAIN && callerOf(r) == LAZY && parent[parent[r]] ->
     call(e, r, kind, LAZY);
     reached(2, "a service called back")
  :: else
  fi
}

inline creation(e, r, kind) {
  under(svcMapSem, executor[e].recorded = true);
  findService(e, r, kind, PLAIN, found);
  assert(found);
  call(e, r, kind, PLAIN);
  assert(answered);
  /* A heartbeat service's channel is looked up at the end of the making. */
  under(svcMapSem, skip);
  reached(3, "a lazy service called another while it was made")
}

#include "threads.pml"

proctype Caller() {
  byte q, n;
  bool parked, answered;
  call(HOST, NONE, OWN, LAZY);
  assert(answered);
  reached(4, "a caller was answered")
}

/* `findRealService`: whoever finds the service recorded waits, without a lock, until it is made. */
proctype Awaiter() {
  bool found;
  under(svcMapSem, found = executor[LAZY].recorded);
  if
  :: found ->
     atomic { executor[LAZY].exists || executor[LAZY].closed -> skip }
     reached(5, "a service in the making was awaited")
  :: !found
  fi
}

init {
  atomic {
    executor[REGISTRY].exists = true;
    executor[REGISTRY].started = true;
    run OwnThread(REGISTRY);
    executor[LAZY].lazy = true;
    executor[LAZY].started = true;
#ifdef LAZY_MULTI
    executor[LAZY].multi = true;
#endif
    run OwnThread(LAZY);
    executor[PLAIN].multi = true;
    executor[PLAIN].exists = true;
    executor[PLAIN].started = true;
    run Pool();
    run Caller();
    run Caller();
    run Awaiter()
  }
}
