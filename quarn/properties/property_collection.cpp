#include "quarn/properties/property_collection.h"

namespace Quarn {

PropertyCollection::PropertyCollection() : PropertyKey(string(), nullptr) {}

PropertyCollection::PropertyCollection(string const& name, string const& documentDescription)
    : PropertyKey(name, nullptr),
      m_documentDescription(documentDescription)
{}

PropertyCollection::PropertyCollection(PropertyCollection const& other) = default;

PropertyCollection& PropertyCollection::operator=(PropertyCollection const& other) = default;

PropertyCollection::~PropertyCollection() = default;

void PropertyCollection::SetDocumentDescription(string const& text)
{
    m_documentDescription = text;
}

} // namespace Quarn
