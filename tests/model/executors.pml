/*
 * What the models of this folder share: executors with their channels, the pool, requests and every
 * way to wait for something. A statement that cannot go on blocks; where nobody can go on any more
 * and somebody is in the middle of something, the checker reports an invalid end state: a deadlock.
 *
 * Whoever includes this defines EXECUTORS, REQUESTS and POOL_SIZE first. No wait times out unless
 * REPLY_TIMEOUT is defined: what is found free of deadlocks needs no time-out for that.
 *
 * NO_RULE_n takes one of the rules of docs/threads-and-locks.md out; see README.md.
 */
#define NONE 0         /* no request */
#define HOST EXECUTORS /* in place of an executor: a thread that serves none */

/* How a frame of a thread's stack came to be. */
#define OWN 0    /* taken by the executor's own thread */
#define POOLED 1 /* taken by a thread of the pool */
#define NESTED 2 /* taken by a thread of the executor that waits */

/* The state of a request. */
#define WAITING 1
#define ANSWERED 2
#define FAILED 3

/* A place that the check must come to: one that it never comes to makes it worth nothing. */
#define reached(number, what) assert(number)

/* -- the six locks of the system -- */
bool proxySem, invokerSem, registrySem, svcMapSem, proxyMapSem, invokerMapSem;
bool systemGone; /* the configurator was deleted, its locks with it */

inline take(semaphore) {
  atomic {
    !semaphore -> assert(!systemGone);
    semaphore = true
  }
}

inline give(semaphore) { semaphore = false }

/* Takes a lock, does something that cannot wait, and gives it back: nobody sees it taken. */
#define under(semaphore, ...) atomic { !semaphore -> assert(!systemGone); __VA_ARGS__ }

/* -- requests, and the chains that they form -- */
byte parent[REQUESTS];  /* the request on whose behalf it is made, and which waits for it */
byte chainOf[REQUESTS]; /* the first request of its chain */
byte target[REQUESTS];  /* the executor asked */
byte state[REQUESTS];
bool over[REQUESTS];    /* the frame that served it has ended */
byte usedBy[REQUESTS];  /* who waits for it and who serves it; 0 is a number that is free */
bool keepNumbers;       /* a wait was given up: numbers may still be known somewhere */

#define callerOf(r) (parent[r] -> target[parent[r]] : HOST)

/* Whether m waits for q, directly or along the chain. */
#define awaits(m, q) \
  (m != NONE && (parent[q] == m || parent[parent[q]] == m || parent[parent[parent[q]]] == m || \
                 parent[parent[parent[parent[q]]]] == m))

inline begin(q, to, waiter, chain, users) {
  q = 1;
  do
  :: usedBy[q] -> q++; assert(q < REQUESTS)
  :: else -> break
  od;
  usedBy[q] = users;
  parent[q] = waiter;
  chainOf[q] = (chain -> chain : q);
  target[q] = to;
  state[q] = (users == 2 -> WAITING : ANSWERED)
}

/* A number that nobody uses any more is given out again, which keeps the model small. */
inline release(q) {
  usedBy[q]--;
  if
  :: usedBy[q] == 0 && !keepNumbers ->
     parent[q] = NONE;
     chainOf[q] = NONE;
     target[q] = 0;
     state[q] = 0;
     over[q] = false
  :: usedBy[q] == 0 && keepNumbers -> usedBy[q] = 1
  :: else
  fi
}

/* Nobody serves it. */
inline refuse(q) {
  state[q] = (state[q] == WAITING -> FAILED : state[q]);
  release(q)
}

/* -- executors -- */
typedef Executor {
  bool multi;     /* a multi-threaded service: requests go to the pool */
  bool lazy;
  bool started;
  bool exists;    /* the service was made */
  bool recorded;  /* the repository knows it */
  bool wished;
  byte wishOf;    /* the request that asked for a lazy service first */
  byte making;    /* the making that is under way, as a request */
  bool closed;
  byte underWay;  /* requests and makings that were begun and not ended */
  byte inside;    /* how many frames of the service there are */
  byte insideFor; /* their chain */
  bool locked;    /* the executor's own lock, between steps; always free by rule 1 */
  byte delivering;
  bool threadEnded;
  bool gone;      /* deleted: executor, channel and service */
};
Executor executor[EXECUTORS + 1];

/* What waits in an executor's queue: whether its making waits for it, the chain, the request. */
chan queue[EXECUTORS] = [REQUESTS] of { bool, byte, byte };

/* -- the pool: a task tells an executor to take one of its requests -- */
chan tasks = [REQUESTS] of { byte };
byte running; /* tasks that run and do not wait */
byte workers; /* threads with a task */
bool poolEnding, poolGone;

#define onPool(e) (executor[e].multi && executor[e].exists)
#ifdef NO_RULE_3
#define goesToPool(e) (executor[e].multi)
#else
#define goesToPool(e) onPool(e)
#endif

inline wish(e, r) {
  if
  :: executor[e].lazy && !executor[e].exists && !executor[e].wished && !executor[e].making ->
     executor[e].wished = true;
     executor[e].wishOf = r
  :: else
  fi
}

/* Hands a request to an executor, if that is open: `ExecutorCore::receive`. */
inline receive(e, q) {
  if
  :: executor[e].closed -> refuse(q)
  :: else ->
     wish(e, q);
     queue[e] ! awaits(executor[e].making, q), chainOf[q], q;
     if
     :: executor[e].started && goesToPool(e) -> tasks ! e
     :: else
     fi
  fi
}

/* The table of names hands the channel out; the sender then hands the request over. */
inline deliver(e, q) {
  if
  :: atomic { executor[e].closed -> refuse(q) }
  :: atomic { !executor[e].closed -> executor[e].delivering++ }
     atomic {
       !executor[e].locked ->
       assert(!executor[e].gone); /* rule 7: the channel waits for deliveries before it goes */
       receive(e, q);
       executor[e].delivering--
     }
  fi
}

/* Sends a request on behalf of the request r and does not wait yet. */
inline send(r, to, q) {
  atomic { true -> begin(q, to, r, chainOf[r], 2) }
  deliver(to, q)
}

/* Sends a message that nobody waits for. */
inline post(r, to, q) {
  atomic { true -> begin(q, to, NONE, chainOf[r], 1) }
  deliver(to, q)
}

/* Rule 4: a thread of the pool that waits makes its place free; it goes on without asking. */
inline leavePlace(kind) {
  if
#ifndef NO_RULE_4
  :: kind == POOLED -> running--
#endif
  :: else
  fi
}

inline comeBack(kind) {
  if
#ifndef NO_RULE_4
  :: kind == POOLED -> running++
#endif
  :: else
  fi
}

/* Whether a message waits that rule 2 lets the waiting thread serve: one of its own chain, and
 * while the service is being made only one that the making waits for. */
#if defined(NO_RULE_2)
#define nextOfChain(e, r) false
#elif defined(ANY_CHAIN)
#define nextOfChain(e, r) (nempty(queue[e]))
#else
#define nextOfChain(e, r) \
  ((executor[e].making && queue[e]??[true, _, _]) || \
   (!executor[e].making && queue[e]??[_, eval(chainOf[r]), _]))
#endif

inline takeNextOfChain(e, r, n) {
  if
#ifdef ANY_CHAIN
  :: queue[e] ? _, _, n
#else
  :: executor[e].making -> queue[e] ?? true, _, n
  :: else -> queue[e] ?? _, eval(chainOf[r]), n
#endif
  fi
}

#ifdef NO_RULE_5
#define parkedForReply parked
#else
#define parkedForReply false
#endif

#ifdef NO_RULE_6_WAKE
#define wokenByShutdown(e) false
#else
#define wokenByShutdown(e) (executor[e].closed)
#endif

/*
 * Waits for the reply to q, on a thread that serves r at e: `Mailbox::awaitReply`. One place to
 * park (rule 5): the reply, a message of the own chain and the shutdown all end the wait.
 */
inline await(e, r, kind, q, n) {
  atomic { true -> leavePlace(kind); parked = false }
  do
  :: atomic { state[q] != WAITING -> comeBack(kind); answered = state[q] == ANSWERED; release(q); break }
  :: atomic {
       e != HOST && state[q] == WAITING && wokenByShutdown(e) ->
       state[q] = FAILED; /* a reply that comes later is dropped */
       keepNumbers = true;
       comeBack(kind);
       answered = false;
       break
     }
  :: atomic {
       e != HOST && state[q] == WAITING && !executor[e].closed && !onPool(e) &&
       nextOfChain(e, r) && !parkedForReply ->
       takeNextOfChain(e, r, n);
       run Frame(e, n, NESTED)
     }
     atomic { over[n] -> release(n); n = NONE }
#ifdef REPLY_TIMEOUT
  :: atomic {
       timeout && state[q] == WAITING -> /* long after everything else has come to rest */
       state[q] = FAILED;
       keepNumbers = true;
       comeBack(kind);
       answered = false;
       break
     }
#endif
#ifdef NO_RULE_5
  :: atomic { e != HOST && state[q] == WAITING && !parked && !nextOfChain(e, r) -> parked = true }
#endif
  od
}

/* A call: the thread that serves r at e asks another executor and waits. */
inline call(e, r, kind, to) {
  send(r, to, q);
  await(e, r, kind, q, n);
  q = NONE
}

/* What the threads of a service look at must be there, and only one may be inside. */
inline enter(e, r) {
  atomic {
    assert(!executor[e].gone);
    assert(executor[e].multi || executor[e].inside == 0 || executor[e].insideFor == chainOf[r]);
    executor[e].insideFor = chainOf[r];
    executor[e].inside++
  }
}

inline answer(r) { state[r] = (state[r] == WAITING -> ANSWERED : state[r]) }

/* Closes an executor: queued requests get an error at once. Only signals. */
inline shutDown(e, x) {
  atomic {
    executor[e].closed = true;
#ifndef NO_RULE_6_REFUSE
    do
    :: nempty(queue[e]) ->
       queue[e] ? _, _, x;
       refuse(x)
    :: empty(queue[e]) -> break
    od;
#endif
    x = 0
  }
}
