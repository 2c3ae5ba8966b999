/*
 * What runs on the threads of executors and of the pool. Whoever includes this, after executors.pml,
 * has defined
 *   program(e, r, kind)   what the service of executor e does for the request r
 *   creation(e, r, kind)  what the making of the lazy service of e does, as the request r
 */
/* One request on the stack of a thread, from taking it to answering it: `ExecutorCore::serve`. */
proctype Frame(byte e; byte r; byte kind) {
  byte q, n;
  bool parked, answered, found;
#ifdef COUNT_LATER
  if
  :: kind != NESTED -> executor[e].underWay++
  :: else
  fi;
#endif
#ifdef NO_RULE_3
  /* A thread of the pool waits for the creation of the service that its request is for. */
  executor[e].exists || executor[e].closed || kind != POOLED;
#endif
  if
  :: executor[e].making -> /* nested in the making: what is recorded of the service so far */
     under(svcMapSem, assert(executor[e].recorded))
  :: else
  fi;
  enter(e, r);
  program(e, r, kind);
  atomic {
    executor[e].inside--;
    executor[e].insideFor = (executor[e].inside -> executor[e].insideFor : NONE);
    assert(!executor[e].gone);
    answer(r);
    over[r] = true;
    if
    :: kind != NESTED -> executor[e].underWay--
    :: else
    fi;
    if
    :: kind == POOLED -> running--; workers--; release(r)
    :: else
    fi
  }
}

/* The making of a lazy service, on the executor's own thread: `ExecutorCore::callContext`. */
proctype Making(byte e; byte r) {
  byte q, n;
  bool parked, answered, found;
#ifdef COUNT_LATER
  executor[e].underWay++;
#endif
  creation(e, r, OWN);
  atomic { /* `settle`: everyone who waits is told */
    assert(!executor[e].gone);
    executor[e].making = NONE;
    executor[e].exists = true;
    if
    :: executor[e].multi && !executor[e].closed ->
#ifndef NO_RULE_3
       n = len(queue[e]);
       do
       :: n > 0 -> tasks ! e; n--
       :: else -> break
       od
#else
       skip
#endif
    :: else
    fi;
    executor[e].underWay--;
    over[r] = true
  }
}

#ifdef COUNT_LATER
#define beginUnderWay(e) skip
#else
#define beginUnderWay(e) executor[e].underWay++
#endif

#ifdef NO_RULE_1
#define holdOwnLock(e) executor[e].locked = true
#else
#define holdOwnLock(e) skip
#endif

/* The executor's own thread: `ExecutorCore::serveOnOwnThread`. */
proctype OwnThread(byte e) {
  byte r;
end_idle:
  do
  :: atomic { executor[e].closed || onPool(e) -> executor[e].threadEnded = true; break }
  :: atomic {
       !executor[e].closed && !executor[e].exists && executor[e].wished ->
       executor[e].wished = false;
       begin(r, e, executor[e].wishOf, chainOf[executor[e].wishOf], 1);
       executor[e].wishOf = NONE;
       executor[e].making = r;
       beginUnderWay(e);
       run Making(e, r)
     }
     atomic { over[r] -> release(r); r = NONE }
  :: atomic {
       !executor[e].closed && executor[e].exists && !executor[e].multi && nempty(queue[e]) ->
       queue[e] ? _, _, r;
       beginUnderWay(e);
       holdOwnLock(e);
       run Frame(e, r, OWN)
     }
     atomic { over[r] -> executor[e].locked = false; release(r); r = NONE }
  od
}

/* Starts tasks as long as fewer than its size run; a thread is made for each that may start. */
proctype Pool() {
  byte e, r;
end_idle:
  do
  :: atomic {
       nempty(tasks) && running < POOL_SIZE ->
       tasks ? e;
       if
       :: nempty(queue[e]) ->
          queue[e] ? _, _, r;
          beginUnderWay(e);
          running++;
          workers++;
          run Frame(e, r, POOLED)
       :: empty(queue[e]) -> skip /* refused meanwhile */
       fi
     }
  :: atomic { poolEnding && empty(tasks) && workers == 0 -> poolGone = true; break }
  od
}

