#include "quarn/properties/win32/xml_persist.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/settings_document.h"
#include "quarn/properties/win32/xml_library.h"

namespace Quarn::Win32 {

XMLPropPersist::XMLPropPersist(Quarn::string const& path)
    : m_path(path),
      m_xmlStarted(detail::StartXmlLibrary())
{}

XMLPropPersist::XMLPropPersist(XMLPropPersist const& other)
    : m_path(other.m_path),
      m_xmlStarted(detail::StartXmlLibrary()),
      m_spoiled(other.m_spoiled)
{}

XMLPropPersist& XMLPropPersist::operator=(XMLPropPersist const& other)
{
    m_path = other.m_path;
    m_spoiled = other.m_spoiled;
    return *this;
}

XMLPropPersist::~XMLPropPersist()
{
    if (m_xmlStarted) {
        detail::StopXmlLibrary();
    }
}

bool XMLPropPersist::Exists() const
{
    return ::GetFileAttributesA(m_path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool XMLPropPersist::Persist(PropertyCollection const* collection) const
{
    return collection != nullptr && detail::SaveSettings(m_path, *collection, m_spoiled);
}

bool XMLPropPersist::Populate(PropertyCollection* collection) const
{
    return collection != nullptr && detail::LoadSettings(m_path, *collection, m_spoiled);
}

bool XMLPropPersist::Remove() const // NOLINT(readability-convert-member-functions-to-static)
{
    return false;
}

} // namespace Quarn::Win32
