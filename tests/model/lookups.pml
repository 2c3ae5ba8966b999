/*
 * How the configurator finds proxies and invokers: which lock it holds over what. Needs executors.pml
 * and, from whoever includes it, REGISTRY (the executor of the registry) and INTERFACES.
 */
bool proxyMade[INTERFACES], invokerMade[INTERFACES];
bool proxiesGone, invokersGone;

#ifdef ASK_UNDER_PROXYSEM
#define proxySemBeforeAsking take(proxySem)
#define proxySemAfterAsking skip
#else
#define proxySemBeforeAsking skip
#define proxySemAfterAsking take(proxySem)
#endif

/* `findInRegistry`: `registrySem` is held over the counter of ids, not over the wait. */
inline askRegistry(e, r, kind) {
#ifdef ASK_UNDER_REGISTRYSEM
  take(registrySem);
  call(e, r, kind, REGISTRY);
  give(registrySem)
#else
  under(registrySem, skip);
  call(e, r, kind, REGISTRY)
#endif
}

/* `findService`, and `findProxy` as well: the repository first, then the registry, then a proxy is
 * made under `proxySem`. Two who ask at once make two; that is so. */
inline findService(e, r, kind, ifc, found) {
  under(proxyMapSem, assert(!proxiesGone); found = proxyMade[ifc]);
  if
  :: found
  :: !found ->
     proxySemBeforeAsking;
     askRegistry(e, r, kind);
     found = answered;
     if
     :: !found
#ifdef ASK_UNDER_PROXYSEM
        -> give(proxySem)
#endif
     :: found -> makeProxy(ifc)
     fi
  fi
}

/* `initProxyAndAddToRepository` */
inline makeProxy(ifc) {
  proxySemAfterAsking;
#ifdef NO_RULE_9
  take(proxySem); /* the proxy's `initialise` looks another one up */
  give(proxySem);
#endif
  under(proxyMapSem, assert(!proxiesGone); proxyMade[ifc] = true);
  give(proxySem)
}

/* `findInvoker`: once more under `invokerSem`, so that one is made however many ask. */
inline findInvoker(e, r, kind, ifc, found) {
  under(invokerMapSem, assert(!invokersGone); found = invokerMade[ifc]);
  if
  :: found
  :: !found ->
     askRegistry(e, r, kind);
     found = answered;
     if
     :: !found
     :: found ->
        take(invokerSem);
        under(invokerMapSem, found = invokerMade[ifc]);
        if
        :: found
        :: !found ->
           under(invokerMapSem, assert(!invokersGone && !invokerMade[ifc]); invokerMade[ifc] = true);
           found = true
        fi;
        give(invokerSem)
     fi
  fi
}
