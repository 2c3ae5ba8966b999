/*
 * A registry that is made lazily and is a service as any other: it announces itself through a proxy
 * to itself while it is being made. Meanwhile the host announces an immediate service, and has to make
 * a proxy to the registry as well; that service calls its own channel in its `init`. And a legacy
 * service's thread looks a service up and calls it.
 *
 * REGISTRY_MULTI makes the registry a multi-threaded service.
 */
#define EXECUTORS 3
#define REQUESTS 9
#define POOL_SIZE 1
#define INTERFACES 2

#define REGISTRY 0
#define PLAIN 1 /* multi-threaded: its requests take a place of the pool */
#define IMMEDIATE 2 /* single-threaded: its `init` calls its own channel */

#include "executors.pml"
#include "lookups.pml"

/* The registry calls nobody while it serves. */
inline program(e, r, kind) {
  if
  :: e == REGISTRY && kind == NESTED -> reached(1, "the registry served its own request")
  :: e == PLAIN ->
     findInvoker(e, r, kind, PLAIN, found);
     assert(found);
     reached(2, "an invoker was found")
  :: else
  fi
}

inline creation(e, r, kind) {
  under(svcMapSem, executor[e].recorded = true);
  findService(e, r, kind, REGISTRY, found);
  assert(found);
  call(e, r, kind, REGISTRY);
  assert(answered);
  reached(3, "the registry announced itself")
}

#include "threads.pml"

proctype Host() {
  byte q, n;
  bool parked, answered, found;
  /* The registry's own record goes there as text, and asks for it. */
  post(NONE, REGISTRY, q);
  q = NONE;
  under(svcMapSem, executor[IMMEDIATE].recorded = true);
  findService(HOST, NONE, OWN, REGISTRY, found);
  assert(found);
  call(HOST, NONE, OWN, REGISTRY);
  assert(answered);
  /* `init`, before the executor is started. */
  executor[IMMEDIATE].exists = true;
  send(NONE, IMMEDIATE, q);
#ifndef NO_RULE_8
  /* Whoever has built an executor and not started it would wait for it in vain, and is told so. */
  state[q] = FAILED;
#endif
  await(HOST, NONE, OWN, q, n);
  atomic { executor[IMMEDIATE].started = true; run OwnThread(IMMEDIATE) };
  reached(4, "an immediate service is up")
}

proctype Legacy() {
  byte q, n;
  bool parked, answered, found;
  findService(HOST, NONE, OWN, PLAIN, found);
  assert(found);
  call(HOST, NONE, OWN, PLAIN);
  assert(answered);
  reached(5, "a legacy service was answered")
}

init {
  atomic {
    executor[REGISTRY].lazy = true;
    executor[REGISTRY].started = true;
#ifdef REGISTRY_MULTI
    executor[REGISTRY].multi = true;
#endif
    executor[PLAIN].multi = true;
    executor[PLAIN].exists = true;
    executor[PLAIN].started = true;
    run OwnThread(REGISTRY);
    run Pool();
    run Host();
    run Legacy()
  }
}
