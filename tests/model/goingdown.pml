/*
 * A host goes down while a lazy service is being made, or is asked for only now, and while a legacy
 * service's thread looks others up and calls them. The order is that of docs/architecture.md, "A
 * process goes down". To keep each check small, the rest comes one at a time:
 *   WITH_FAR      a request waits for a process that may never answer
 *   WITH_TIMER    a timer's expiry asks for the lazy service, in place of the legacy service
 *   WITH_OUTSIDE  another process does
 */
#define EXECUTORS 4
#define REQUESTS 13
#define POOL_SIZE 1

#define LAZY 0    /* lazy, single-threaded; recorded nowhere before it is made; calls PLAIN, then */
                  /* looks its own channel up, which needs the map of services */
#define PLAIN 1   /* multi-threaded: looks a proxy up */
#define ASKING 2  /* single-threaded: asks LAZY, then FAR; has a timer */
#define FAR 3     /* in another process: answers, or does not */

#include "executors.pml"

bool goingDown, openToOutside = true;
bool timersOver, timerCalls; /* a timer's owner is being called */
bool legacyEnded;
bool proxiesGone, invokersGone;

/* A lookup that makes or removes a proxy. */
inline lookUp() {
  take(proxySem);
  under(proxyMapSem, assert(!proxiesGone));
  give(proxySem)
}

inline program(e, r, kind) {
  if
  :: e == PLAIN ->
     under(invokerMapSem, assert(!invokersGone));
     lookUp()
  :: e == ASKING && state[r] == WAITING ->
#ifdef WITH_FAR
     call(e, r, kind, FAR);
#endif
     call(e, r, kind, LAZY)
  :: e == ASKING && state[r] != WAITING -> /* an expiry */
     if
     :: atomic { timersOver -> skip }
        reached(1, "an expiry came too late")
     :: atomic { !timersOver -> timerCalls = true }
        call(e, r, kind, LAZY);
        timerCalls = false
     fi
  :: else
  fi
}

inline creation(e, r, kind) {
  under(svcMapSem, executor[e].recorded = true);
  call(e, r, kind, PLAIN);
  under(svcMapSem, skip);
  if
  :: goingDown -> reached(2, "a service was made while the host went down")
  :: else
  fi
}

#include "threads.pml"

proctype Far() {
  byte r;
end_idle:
  queue[FAR] ? _, _, r;
  if
  :: atomic { true -> answer(r); release(r) }
  :: true -> reached(3, "a process never answered")
  fi
}

proctype Timer() {
  byte q;
  if
  :: atomic { !timersOver -> begin(q, ASKING, NONE, NONE, 1) }
     deliver(ASKING, q)
  :: timersOver
  fi
}

/* The thread of a legacy service, which sees that it is over when its timer no longer runs. */
proctype Legacy() {
  byte q, n;
  bool parked, answered;
#if !defined(WITH_TIMER) && !defined(WITH_OUTSIDE)
  call(HOST, NONE, OWN, ASKING);
#endif
  lookUp();
  timersOver;
  lookUp();
  legacyEnded = true
}

/* A caller in another process. */
proctype Outside() {
  byte q, n;
  bool parked, answered;
  if
  :: atomic { openToOutside -> assert(!goingDown); begin(q, LAZY, NONE, NONE, 2) }
     deliver(LAZY, q);
     await(HOST, NONE, OWN, q, n);
     if
     :: answered -> reached(4, "an outside caller was answered")
     :: !answered -> reached(5, "an outside caller got an error")
     fi
  :: !openToOutside
  fi
}

/* What `stop` of a service may do: nothing that waits. */
inline stop(e) {
#if defined(NO_RULE_10)
  executor[e].underWay == 0 /* it waits until its work is over */
#elif defined(STOP_CALLS_SHUTDOWN)
  take(svcMapSem);
  give(svcMapSem)
#else
  skip
#endif
}

inline shutDownRecorded() {
  take(svcMapSem);
  for (e : LAZY .. ASKING) {
    if
    :: executor[e].recorded ->
       shutDown(e, x);
#ifdef NO_RULE_6_SIGNAL
       executor[e].underWay == 0;
#endif
       stop(e)
    :: else
    fi
  }
  give(svcMapSem)
}

/* The destructor of an executor; its channel goes last. */
inline deleteExecutor(e) {
  shutDown(e, x);
#ifndef NO_RULE_6_DESTRUCTOR
  executor[e].underWay == 0;
  executor[e].multi || executor[e].threadEnded;
#endif
#ifndef NO_RULE_7
  executor[e].delivering == 0;
#endif
  executor[e].gone = true
}

inline deleteProxies() {
  take(proxyMapSem);
#ifdef NO_RULE_9
  take(proxyMapSem); /* a proxy's destructor looks something up */
  give(proxyMapSem);
#endif
  proxiesGone = true;
  give(proxyMapSem)
}

inline drain() {
  for (e : LAZY .. ASKING) {
#ifdef DRAIN_RECORDED_ONLY
    if
    :: executor[e].recorded -> shutDown(e, x)
    :: else
    fi
#else
    shutDown(e, x)
#endif
  }
  for (e : LAZY .. ASKING) {
#ifdef DRAIN_RECORDED_ONLY
    executor[e].underWay == 0 || !executor[e].recorded
#else
    executor[e].underWay == 0
#endif
  }
}

proctype Host() {
  byte e, x;
  atomic {
    goingDown = true;
#ifndef OPEN_TO_OUTSIDE
    openToOutside = false
#endif
  }
  /* `shutdown()`: the timers, then the services. */
  timersOver = true;
  !timerCalls;
  shutDownRecorded();
#ifndef NO_DRAIN
  drain();
#endif
  /* The configurator's destructor. */
#ifdef PROXIES_FIRST
  deleteProxies();
#endif
  take(svcMapSem);
  e = LAZY;
  if
  :: executor[LAZY].recorded -> deleteExecutor(LAZY)
  :: else
  fi;
  legacyEnded; /* `waitForThreadCompletion` */
  deleteExecutor(PLAIN);
  deleteExecutor(ASKING);
  give(svcMapSem);
#ifndef PROXIES_FIRST
  deleteProxies();
#endif
  under(invokerMapSem, invokersGone = true);
  /* The pool: the executors that nobody else has deleted, then its threads. */
  if
  :: !executor[LAZY].gone ->
     deleteExecutor(LAZY);
     reached(6, "a service that nobody asked for goes with the pool")
  :: else
  fi;
  poolEnding = true;
  poolGone;
  systemGone = true;
  reached(7, "the host is down")
}

init {
  byte e;
  atomic {
    for (e : LAZY .. FAR) {
      executor[e].started = true;
      executor[e].exists = (e != LAZY);
      executor[e].lazy = (e == LAZY);
      executor[e].multi = (e == PLAIN);
      executor[e].recorded = (e == PLAIN || e == ASKING)
    }
    run OwnThread(LAZY);
    run OwnThread(ASKING);
    run Pool();
#ifdef WITH_FAR
    run Far();
#endif
#ifdef WITH_TIMER
    run Timer();
#endif
#ifdef WITH_OUTSIDE
    run Outside();
#endif
    run Legacy();
    run Host()
  }
}
