/*
 * Calls while the system runs: two single-threaded services that call themselves and back into each
 * other, two multi-threaded ones that do the same on a pool with one place, and three callers.
 */
#define EXECUTORS 4
#define REQUESTS 14
#define POOL_SIZE 1

#define A 0 /* single-threaded: calls itself, then B */
#define B 1 /* single-threaded: calls back into A */
#define M 2 /* multi-threaded: calls N */
#define N 3 /* multi-threaded: calls back into M, then A */

#include "executors.pml"

inline creation(e, r, kind) { skip }

inline program(e, r, kind) {
  if
  :: e == A && callerOf(r) != A && callerOf(r) != B -> call(e, r, kind, A); call(e, r, kind, B)
  :: e == B -> call(e, r, kind, A)
  :: e == M && callerOf(r) != N -> call(e, r, kind, N)
  :: e == N -> call(e, r, kind, M); call(e, r, kind, A)
  :: else
  fi
}

#include "threads.pml"

proctype Caller(byte to) {
  byte q, n;
  bool parked, answered;
  call(HOST, NONE, OWN, to);
  assert(answered)
}

init {
  byte e;
  atomic {
    for (e : A .. N) {
      executor[e].multi = (e >= M);
      executor[e].started = true;
      executor[e].exists = true;
      if
      :: e < M -> run OwnThread(e)
      :: else
      fi
    }
    run Pool();
    run Caller(A);
    run Caller(M)
  }
}
