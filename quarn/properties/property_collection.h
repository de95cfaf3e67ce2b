// Quarn::PropertyCollection: the root key of a settings tree, with a description of the document that the
// tree is kept in. A tree belongs to one thread at a time.
#pragma once

#include "quarn/export.h"
#include "quarn/properties/property_key.h"
#include "quarn/text/string.h"

namespace Quarn {

class QUARN_API PropertyCollection : public PropertyKey
{
public:
    // Empty name, empty description.
    PropertyCollection();
    PropertyCollection(string const& name, string const& documentDescription);
    // As for keys, and the description.
    PropertyCollection(PropertyCollection const& other);
    PropertyCollection& operator=(PropertyCollection const& other);
    ~PropertyCollection() override;

    // A free text; stores in XML name the document's root element by it.
    string const& GetDocumentDescription() const { return m_documentDescription; }
    // Does not mark the collection dirty.
    void SetDocumentDescription(string const& text);

private:
    string m_documentDescription;
};

} // namespace Quarn
