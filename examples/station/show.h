// Prints what the station keeps, for people.
#pragma once

#include "quarn/properties/property_collection.h"

#include "journal.h"

#include <string>

namespace station {

// The tree of the settings.
void Show(Quarn::PropertyCollection const& settings);

// Every whole record of the journal as the library lists it.
JournalSummary ListJournal(std::string const& path);

} // namespace station
