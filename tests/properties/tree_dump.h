// A settings tree as text, for comparisons: everything that a file keeps, in order.
#pragma once

#include "quarn/properties/property_collection.h"

#include <ostream>
#include <sstream>
#include <string>

inline void DumpKey(std::ostream& out, Quarn::PropertyKey const& key, std::string const& indent)
{
    out << indent << "key [" << key.GetName() << "]\n";
    for (std::uint64_t i = 0; i < key.GetValueCount(); ++i) {
        Quarn::PropertyValue const& value = *key.GetValue(i);
        out << indent << "  " << value.GetDatatypeName() << " [" << value.GetName() << "] = ["
            << value.GetValueString() << "]\n";
    }
    for (std::uint64_t i = 0; i < key.GetKeyCount(); ++i) {
        DumpKey(out, *key.GetSubKey(i), indent + "  ");
    }
}

inline std::string Dump(Quarn::PropertyCollection const& collection)
{
    std::ostringstream out;
    out << "document [" << collection.GetDocumentDescription() << "]\n";
    DumpKey(out, collection, "");
    return out.str();
}
