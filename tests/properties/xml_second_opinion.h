// What another XML library says of a settings document.
#pragma once

#include "quarn/properties/property_collection.h"

#include <string>

namespace documents {

struct SecondOpinion
{
    bool isWellFormed = false;
    std::string error; // of what is not
    // Why a well-formed document may be refused all the same; null where it must be read.
    char const* deliberate = nullptr;
    // The settings in it, for a document that is read whole.
    Quarn::PropertyCollection settings;
};

SecondOpinion Judge(std::string const& document);

} // namespace documents
