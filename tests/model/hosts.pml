/*
 * A first host and one that it started: the first ends its own services, tells the started one to
 * end, waits, and kills it if it does not. Or the first host vanishes. Meanwhile a service of the
 * started host waits for one of the first.
 */
#define reached(number, what) assert(number)

bool servicesDown; /* the first host's */
bool toldToEnd, killed, vanished;
bool asked, answered;
bool started = true; /* the started host is there */

proctype FirstHost() {
  if
  :: vanished = true; reached(1, "the first host vanished")
  :: true ->
#ifdef CHILDREN_FIRST
     toldToEnd = true;
     !started;
     servicesDown = true
#else
     servicesDown = true;
     toldToEnd = true;
     if
     :: !started -> reached(2, "the started host ended when told to")
#ifndef NO_KILL
     :: timeout -> /* it had the time that it is given */
        killed = true;
        !started;
        reached(3, "the started host was killed")
#endif
     fi
#endif
  fi
}

/* The first host's service; it counts on the other host as long as it is not told to stop. */
proctype FirstService() {
end_idle:
  do
  :: atomic { asked && !answered && !vanished -> answered = true }
  :: atomic { !servicesDown && !vanished && !started -> assert(false) }
  :: atomic { servicesDown || vanished -> break }
  od
}

/* What waits in the started host for the first one, until it ends in one way or another. */
proctype StartedHost() {
  asked = true;
  if
  :: atomic { answered -> skip }
  :: atomic { servicesDown && !answered -> skip } /* its channel was closed: an error */
#ifndef NO_CONNECTION_END
  :: atomic { vanished && !answered -> skip } /* the connection has ended: an error */
#endif
  fi;
  if
  :: atomic { toldToEnd -> started = false }
  :: atomic { toldToEnd -> skip }
     reached(4, "the started host hangs");
     killed;
     started = false
#ifndef NO_CONNECTION_END
  :: atomic { vanished -> started = false } /* nobody else would tell it */
#endif
  fi
}

init {
  atomic {
    run FirstHost();
    run FirstService();
    run StartedHost()
  }
}
