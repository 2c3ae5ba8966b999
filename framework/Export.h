#pragma once

/**
 * Marks what a library gives to others: a platform or public class, or the creator function of a
 * service, proxy or invoker library. Everything without it stays private to its library, since all
 * libraries of a process are built with hidden visibility.
 */
#define ZERVA_EXPORT __attribute__((visibility("default")))
