#pragma once

#include "framework/Export.h"

/**
 * Writes a log line. Any thread may call it; the line is complete or not there at all.
 *
 * @param module who logs; levels are set per module.
 * @param file name of the source, a text that lives as long as the process.
 * @param level how much it matters: 1 fatal, 2 error, 3 warning, 4 information, 5 progress,
 *     6 and more detail. The line is written whatever `loggingOnAppUni` says: whoever does not want
 *     that asks first.
 * @param line line in the source.
 * @param format as for `printf`, followed by its arguments. A line feed at the end is not needed.
 */
ZERVA_EXPORT void logAppUni(const char* module, const char* file, int level, int line,
                            const char* format, ...) __attribute__((format(printf, 5, 6)));

/**
 * Tells whether a level is on for a module. Cheap enough to ask before every line. Any thread may
 * ask, at any time; a level that was changed before the question counts for it, on threads that run
 * already too.
 *
 * @param module as for `logAppUni`; only its text matters, not where that is.
 * @param level as for `logAppUni`.
 */
ZERVA_EXPORT bool loggingOnAppUni(const char* module, int level);
