// Empty: it gives the precompiled header of the tests a target to be built by.
