/*
 * What the rules do not keep from waiting for each other, and only the reply time-out ends: two
 * single-threaded services that call each other on behalf of two chains; and, with CALLED_IN_INIT,
 * an immediate service that calls another in its `init`, which calls back.
 */
#define EXECUTORS 2
#define REQUESTS 9
#define POOL_SIZE 1

#define A 0
#define B 1

#include "executors.pml"

/* Each calls the other, which does not call back. */
inline program(e, r, kind) {
  if
  :: e == A && callerOf(r) != B -> call(e, r, kind, B)
  :: e == B && callerOf(r) != A -> call(e, r, kind, A)
  :: else
  fi;
  reached(1, "a request came to its end")
}

inline creation(e, r, kind) { skip }

#include "threads.pml"

proctype Caller(byte to) {
  byte q, n;
  bool parked, answered;
  call(HOST, NONE, OWN, to);
  if
  :: answered -> reached(2, "a caller was answered")
  :: !answered -> reached(3, "a caller got an error")
  fi
}

init {
  byte e;
  atomic {
    for (e : A .. B) {
      executor[e].exists = true;
      executor[e].started = true
    }
    run OwnThread(B);
#ifndef CALLED_IN_INIT
    run OwnThread(A);
    run Caller(A)
#endif
    run Caller(B)
  }
#ifdef CALLED_IN_INIT
  /* The call of B is made in the `init` of A, whose executor is started when that is over. */
  _nr_pr <= 2;
  run OwnThread(A)
#endif
}
