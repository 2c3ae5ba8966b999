#pragma once

#include "framework/Export.h"

namespace zerva {

/**
 * @returns whether a descriptor is a connection to the journal, as JOURNAL_STREAM in the
 * environment tells; lines that begin with a priority are sorted by it there. Any thread, no
 * memory.
 */
ZERVA_EXPORT bool leadsToJournal(int descriptor);

}  // namespace zerva
